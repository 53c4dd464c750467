#include <utility>

#include "components/band/technology.h"
#include "components/status/cellular/internet_texts.h"
#include "components/status/status_component.h"
#include "components/status/status_texts.h"
#include "framework/log.h"
#include "platform/fixed_text.h"
#include "platform/sysint.h"

namespace {

/// What the group reads of the device. The initial values remain if a call writes nothing.
struct Readings {
    sys_cellular_service_stats_t service{};
    sys_cellular_data_connection_stats_t connection{};
    int radioEnabled = 1;
    int serviceStatus = 0;
    int dataConnectionStatus = 0;
    int accountStatus = 0;
};

/// Reads everything, in this order, before it checks any result. Returns whether all but the
/// account could be read; the result of the account is not checked. Logs in the name of the
/// function with @p signature.
bool Read(const char* signature, bool isPCOSupported, Readings& readings) {
    const int serviceStats = sys_getCellularServiceStats(&readings.service);
    const int connectionStats = sys_getCellularDataConnectionStats(&readings.connection);
    const int radio = sys_getRadioEnabled(&readings.radioEnabled);
    const int service = sys_getCellularServiceStatus(&readings.serviceStatus);
    const int connection = sys_getCellularDataConnectionStatus(&readings.dataConnectionStatus);
    if (isPCOSupported) {
        (void)sys_getCellularDataAccountStatus(&readings.accountStatus);
    }
    if (serviceStats == SYS_SUCCESS && connectionStats == SYS_SUCCESS && radio == SYS_SUCCESS &&
        service == SYS_SUCCESS && connection == SYS_SUCCESS) {
        return true;
    }
    // The fifth name is not that of the fifth call. It stays so, because those who search the logs
    // know the line by this text.
    KESTAL_FAILURE_UNSEPARATED(
        " sys_getCellularServiceStats failed, returned error code [%d], "
        "sys_getCellularDataConnectionStats failed, returned error code [%d], sys_getRadioEnabled "
        "failed, returned error code[%d], sys_getCellularServiceStatus failed, returned error code "
        "[%d], sys_getCellularDataAccountStatus failed, returned error code [%d]",
        serviceStats, connectionStats, radio, service, connection);
    return false;
}

/// The first word of @p text, words being separated by white space.
std::string FirstWord(const std::string& text) {
    constexpr const char* kWhiteSpace = " \t\n\v\f\r";
    const std::size_t begin = text.find_first_not_of(kWhiteSpace);
    if (begin == std::string::npos) {
        return "";
    }
    const std::size_t end = text.find_first_of(kWhiteSpace, begin);
    return text.substr(begin, end == std::string::npos ? end : end - begin);
}

/// The texts that are computed from the readings.
struct Texts {
    std::string network;
    std::string technology;
    std::string roaming;
    std::string traffic;
    std::string airplaneMode;
    std::string femtoCell;
    std::string connectionState;
    std::string networkId;
    std::string bytesReceived;
    std::string bytesTransmitted;
    std::string bytesTotal;
    std::string connectionDuration;
    std::string signalBars;
};

Texts Compute(const char* signature, const Readings& readings, SubscriberCache& subscriber) {
    const sys_cellular_service_stats_t& service = readings.service;
    const sys_cellular_data_connection_stats_t& connection = readings.connection;
    Texts texts;
    texts.network = FixedText(service.networkName);
    (void)GetTechnologyText(service.technology, texts.technology, service.fiveGType);
    KESTAL_DEBUG("wan technology %d", service.technology);
    (void)GetRoamingText(subscriber, service.roaming, texts.roaming);
    (void)GetTrafficStatusText(connection.trafficStatus, texts.traffic);
    (void)GetAirplaneModeText(readings.radioEnabled, texts.airplaneMode);
    (void)GetFemtoCellText(service.femtoCell, texts.femtoCell);
    (void)GetConnectionStateText(readings.serviceStatus, readings.dataConnectionStatus,
                                 readings.accountStatus, texts.connectionState);
    texts.networkId = FirstWord(FixedText(service.networkId));
    const std::uint64_t received = connection.bytesReceived1 + connection.bytesReceived2;
    const std::uint64_t transmitted = connection.bytesTransmitted1 + connection.bytesTransmitted2;
    texts.bytesReceived = std::to_string(received);
    texts.bytesTransmitted = std::to_string(transmitted);
    texts.bytesTotal = std::to_string(received + transmitted);
    texts.connectionDuration = std::to_string(connection.duration);
    texts.signalBars = std::to_string(service.signalBars);
    return texts;
}

std::string PreferredTechnology(const char* signature) {
    int technologies = 0;
    const int result = sys_getEnabledRadioTechnologies(&technologies);
    if (result == SYS_SUCCESS) {
        KESTAL_DEBUG("preferred technology %d", technologies);
    } else {
        technologies = 0;
        KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR,
                            "sys_getEnabledRadioTechnologies failed, returned error code [%d].Try "
                            "sysintcli getEnabledRadioTechnologies from command line.",
                            result);
    }
    std::string text;
    (void)GetPreferredNetworkText(technologies, text);
    return text;
}

}  // namespace

void StatusComponent::GetInternetStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetInternetStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    Readings readings;
    if (Read(signature, isPCOSupported, readings)) {
        Texts texts = Compute(signature, readings, subscriber);
        if (readings.accountStatus == SYS_ACCOUNT_OUT_OF_CREDIT ||
            readings.accountStatus == SYS_ACCOUNT_NOT_ACTIVE) {
            std::string text;
            (void)GetDataConnectionStatusText(readings.dataConnectionStatus, text);
            statusData["pcoInitiatedConnectionStatus"] = text;
        }
        if (!isDualSIMSupported) {
            statusData["statusBarNetwork"] = std::move(texts.network);
            statusData["statusBarConnectionState"] = std::move(texts.connectionState);
        }
        statusData["statusBarNetworkID"] = std::move(texts.networkId);
        const bool secondSim = isDualSIMSupported && IsSecondSimActive();
        if (isDualSIMSupported) {
            statusData["statusBarSim2Technology"] = secondSim ? texts.technology : "";
            statusData["statusBarSim2TechnologyText"] = "";
        }
        statusData["statusBarTechnology"] = secondSim ? "" : texts.technology;
        statusData["statusBarTechnologyText"] = "";
        statusData["statusBarPCI"] = std::to_string(readings.service.pci);
        if (IsSecondOrThirdGeneration(readings.service.technology)) {
            statusData["statusBarSINR"] = std::to_string(readings.service.sinr);
        } else {
            statusData["statusBarSNR"] = std::to_string(readings.service.snr);
        }
        std::string band;
        (void)bandCombination->GetBandCombinationString(band);
        statusData["statusBarBand"] = std::move(band);
        std::string bandwidth;
        (void)bandCombination->GetBandwidthString(bandwidth);
        statusData["statusBarBandwidth"] = std::move(bandwidth);
        if (ConfigurationNumber("ShowRoamingIndicator").value_or(0) != 0) {
            statusData["statusBarRoaming"] = std::move(texts.roaming);
        }
        statusData["statusBarBytesReceived"] = std::move(texts.bytesReceived);
        statusData["statusBarBytesTransmitted"] = std::move(texts.bytesTransmitted);
        statusData["statusBarBytesTotal"] = std::move(texts.bytesTotal);
        statusData["statusBarConnectionDuration"] = std::move(texts.connectionDuration);
        statusData["statusBarTrafficStatus"] = std::move(texts.traffic);
        statusData["statusBarAirplaneMode"] = std::move(texts.airplaneMode);
        statusData["statusBarFemtoCellStatus"] = std::move(texts.femtoCell);
        if (isDualSIMSupported) {
            statusData["statusBarSim2SignalBars"] = secondSim ? texts.signalBars : "";
        }
        statusData["statusBarSignalBars"] = secondSim ? "" : texts.signalBars;
        // The preferred technology is shown only on devices that hide technologies which are not
        // the carrier's own.
        if (ConfigurationNumber("ShowNonOrvaneTechnologies") == 0) {
            statusData["statusBarPreferredTechnology"] = PreferredTechnology(signature);
        }
    }
    KESTAL_END();
}
