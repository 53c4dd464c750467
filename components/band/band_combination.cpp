#include "components/band/band_combination.h"

#include <cstdlib>
#include <optional>

#include "components/band/technology.h"
#include "framework/log.h"
#include "framework/text_domain.h"

namespace {

constexpr const char* kNotAvailable = "-";

/// Technology of the connection: SYS_TECHNOLOGY_NONE without a ready SIM, nothing if it cannot be
/// read. Logs in the name of the function with @p signature.
std::optional<int> ReadTechnology(const char* signature) {
    int simStatus = 0;
    const int simResult = sys_getSIMStatus(&simStatus);
    if (simResult != SYS_SUCCESS) {
        KESTAL_FAILURE(
            "sys_getSIMStatus failed, returned error code %d. Try sysintcli getSIMStatus from "
            "command line.",
            simResult);
        return std::nullopt;
    }
    if (simStatus != SYS_SIM_READY) {
        return SYS_TECHNOLOGY_NONE;
    }
    sys_cellular_service_stats_t stats{};
    const int statsResult = sys_getCellularServiceStats(&stats);
    if (statsResult != SYS_SUCCESS) {
        // The line names another call than the one that failed. It stays so, because those who
        // search the logs know it by this text.
        KESTAL_FAILURE(
            "sys_getCellularServiceStatus failed, returned error code %d. Try sysintcli "
            "getCellularServiceStatus from command line.",
            statsResult);
        return std::nullopt;
    }
    KESTAL_DEBUG("technology: [%d]", stats.technology);
    return stats.technology;
}

/// Whether @p band is the number of a band. The device reports band 0 if there is none.
bool NamesBand(const std::string& band) {
    return std::strtol(band.c_str(), nullptr, 10) != 0;
}

std::string InMegahertz(int bandwidth) {
    return std::to_string(bandwidth) + " " + Translated("webui_app_megahertz_text");
}

}  // namespace

PageError BandCombination::GetBandCombinationString(std::string& text) {
    KESTAL_SIGNATURE(
        "virtual PageError BandCombination::GetBandCombinationString(std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    const std::optional<int> technology = ReadTechnology(signature);
    if (technology.has_value()) {
        if (*technology == SYS_TECHNOLOGY_5G) {
            sys_wan_5g_mode_e mode = SYS_WAN_5G_NONE;
            Get5GMode(mode);
            GetFiveGBandString(mode, text);
        } else if (IsLte(*technology)) {
            GetFourGBandString(text);
        } else if (IsSecondOrThirdGeneration(*technology)) {
            GetThreeGBandString(text);
        } else {
            text = kNotAvailable;
        }
    }
    KESTAL_DEBUG_UNSEPARATED("- END returning %d", PAGE_ERROR_NONE);
    return PAGE_ERROR_NONE;
}

PageError BandCombination::GetBandwidthString(std::string& text) {
    KESTAL_SIGNATURE(
        "virtual PageError BandCombination::GetBandwidthString(std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    const std::optional<int> technology = ReadTechnology(signature);
    if (technology.has_value()) {
        if (*technology == SYS_TECHNOLOGY_5G) {
            sys_wan_5g_mode_e mode = SYS_WAN_5G_NONE;
            Get5GMode(mode);
            Get5GBandwidth(mode, text);
        } else if (IsLte(*technology) || IsSecondOrThirdGeneration(*technology)) {
            GetBandwidth(text);
        } else {
            text = kNotAvailable;
        }
    }
    KESTAL_DEBUG_UNSEPARATED("- END returning %d", PAGE_ERROR_NONE);
    return PAGE_ERROR_NONE;
}

void BandCombination::Get3GBandValue(std::string& band) {
    KESTAL_SIGNATURE("void BandCombination::Get3GBandValue(std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    int value = 0;
    const int result = sys_getCellular3GBand(&value);
    if (result == SYS_SUCCESS) {
        band = std::to_string(value);
    } else {
        KESTAL_FAILURE(
            "sys_getCellular3GBand failed returning error code %d, try sysinicli getCellular3GBand "
            "on command line ",
            result);
    }
    KESTAL_DEBUG_UNSEPARATED("- END ");
}

void BandCombination::Get4GBandValue(std::string& band) {
    KESTAL_SIGNATURE("void BandCombination::Get4GBandValue(std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    int value = 0;
    const int result = sys_getCellularBand(&value);
    if (result == SYS_SUCCESS) {
        band = std::to_string(value);
    } else {
        KESTAL_FAILURE(
            "sys_getCellularBand failed returning error code %d, try sysinicli getCellularBand on "
            "command line ",
            result);
    }
    KESTAL_DEBUG_UNSEPARATED("- END ");
}

void BandCombination::Get5GBandValue(std::string& band) {
    KESTAL_SIGNATURE("void BandCombination::Get5GBandValue(std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    int value = 0;
    int second = 0;
    const int result = sys_getCellular5GBand(&value, &second);
    if (result == SYS_SUCCESS) {
        band = std::to_string(value);
    } else {
        KESTAL_FAILURE(
            "sys_getCellular5GBand failed returning error code %d, try sysinicli getCellular5GBand "
            "on command line ",
            result);
    }
    KESTAL_DEBUG_UNSEPARATED("- END ");
}

void BandCombination::Get5GMode(sys_wan_5g_mode_e& mode) {
    KESTAL_SIGNATURE("void BandCombination::Get5GMode(sys_wan_5g_mode_e&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    sys_wan_5g_mode_e value = SYS_WAN_5G_NONE;
    const int result = sys_getCellular5GMode(&value);
    if (result == SYS_SUCCESS) {
        mode = value;
    } else {
        KESTAL_FAILURE(
            "sys_getCellular5GMode failed returning error code %d, try sysinicli getCellular5GMode "
            "on command line ",
            result);
    }
    KESTAL_DEBUG_UNSEPARATED("- END ");
}

void BandCombination::GetThreeGBandString(std::string& text) {
    KESTAL_SIGNATURE("void BandCombination::GetThreeGBandString(std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    std::string band;
    Get3GBandValue(band);
    text += "B" + band;
    KESTAL_DEBUG_UNSEPARATED("- END ");
}

void BandCombination::GetFourGBandString(std::string& text) {
    KESTAL_SIGNATURE("void BandCombination::GetFourGBandString(std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    std::string band;
    Get4GBandValue(band);
    text += "B" + band;
    KESTAL_DEBUG_UNSEPARATED("- END ");
}

void BandCombination::GetFiveGBandString(int mode, std::string& text) {
    KESTAL_SIGNATURE("void BandCombination::GetFiveGBandString(int, std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    std::string band;
    Get5GBandValue(band);
    switch (mode) {
        case SYS_WAN_5G_STANDALONE:
            text += NamesBand(band) ? "n" + band : kNotAvailable;
            break;
        case SYS_WAN_5G_NON_STANDALONE:
            GetFourGBandString(text);
            if (NamesBand(band)) {
                text += ", n" + band;
            }
            break;
        default:
            KESTAL_DEBUG("5G is not available.");
            break;
    }
    KESTAL_DEBUG_UNSEPARATED("- END ");
}

void BandCombination::GetBandwidth(std::string& text) {
    KESTAL_SIGNATURE("void BandCombination::GetBandwidth(std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    int bandwidth = 0;
    const int result = sys_getCABandWidth(&bandwidth);
    if (result == SYS_SUCCESS) {
        text += InMegahertz(bandwidth);
    } else {
        KESTAL_FAILURE(
            "sys_getCABandwidth failed returning error code %d, try sysinicli getCABandwidth on "
            "command line ",
            result);
    }
    KESTAL_DEBUG_UNSEPARATED("- END ");
}

void BandCombination::Get5GBandwidth(int mode, std::string& text) {
    KESTAL_SIGNATURE("void BandCombination::Get5GBandwidth(int, std::__cxx11::string&)");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    std::string band;
    Get5GBandValue(band);
    int bandwidth = 0;
    const int result = sys_get5GBandWidth(&bandwidth);
    if (result != SYS_SUCCESS) {
        bandwidth = 0;
        // The line is that of the other bandwidth. It stays so, because those who search the logs
        // know it by this text.
        KESTAL_FAILURE(
            "sys_getCABandwidth failed returning error code %d, try sysinicli getCABandwidth on "
            "command line ",
            result);
    }
    switch (mode) {
        case SYS_WAN_5G_STANDALONE:
            text += InMegahertz(bandwidth);
            break;
        case SYS_WAN_5G_NON_STANDALONE:
            GetBandwidth(text);
            if (NamesBand(band)) {
                text += ", " + InMegahertz(bandwidth);
            }
            break;
        default:
            KESTAL_DEBUG("5G is not available.");
            break;
    }
    KESTAL_DEBUG_UNSEPARATED("- END");
}
