#include <cmath>
#include <nlohmann/json.hpp>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/modem/cells.h"
#include "bindings/linux/modem/modem_manager.h"
#include "bindings/linux/modem/read_parts.h"
#include "bindings/linux/modem/tables/access_technology.h"
#include "bindings/linux/modem/tables/modem_band.h"
#include "bindings/linux/modem/tables/registration.h"
#include "bindings/linux/modem/tables/signal_bars.h"
#include "bindings/linux/modem/tree_lists.h"

namespace binding {

namespace {

using nlohmann::json;

std::vector<int> ReadBands(const json& properties, const char* name,
                           std::optional<int> (*bandOf)(std::int64_t)) {
    std::vector<int> bands;
    const json& list = Member(properties, name);
    if (list.is_array()) {
        for (const json& element : list) {
            const auto number = Integer(element);
            if (const auto band = number ? bandOf(*number) : std::nullopt) {
                bands.push_back(*band);
            }
        }
    }
    return bands;
}

/// The band that a modem uses because it may use no other one of the generation.
std::optional<int> OnlyBand(const std::vector<int>& bands) {
    return bands.size() == 1 ? std::optional(bands.front()) : std::nullopt;
}

/// A ratio in dB, rounded. Modems tell numbers far outside for what they have not measured.
std::optional<int> ReadSignalToNoise(const json& signal) {
    constexpr double kMost = 60;
    const auto ratio = Real(signal, "snr");
    return ratio && std::fabs(*ratio) <= kMost
               ? std::optional(static_cast<int>(std::lround(*ratio)))
               : std::nullopt;
}

std::optional<int> ReadBars(const json& signal) {
    const auto power = Real(signal, "rsrp");
    return power ? BarsOfPower(*power) : std::nullopt;
}

void ReadSignal(const json& object, const json& properties, Modem& modem) {
    const json& signal = Member(object, kSignalInterface);
    const json& lte = Member(signal, "Lte");
    const json& nr = Member(signal, "Nr5g");
    if (modem.technology == SYS_TECHNOLOGY_5G) {
        modem.signalBars = ReadBars(nr);
        modem.signalToNoise = ReadSignalToNoise(nr);
    }
    // Where 5G is beside LTE, the modem may have measured only the latter.
    if (modem.technology == SYS_TECHNOLOGY_LTE || modem.fiveGMode == SYS_WAN_5G_NON_STANDALONE) {
        modem.signalBars = modem.signalBars ? modem.signalBars : ReadBars(lte);
        modem.signalToNoise = modem.signalToNoise ? modem.signalToNoise : ReadSignalToNoise(lte);
    }
    const auto percent = Integer(Element(properties, "SignalQuality", 0));
    if (!modem.signalBars && percent) {
        modem.signalBars = BarsOfPercent(*percent);
    }
}

void ReadCellsInUse(const json& properties, const json& cells, Modem& modem) {
    const auto current = [&](std::optional<int> (*bandOf)(std::int64_t)) {
        return ReadBands(properties, "CurrentBands", bandOf);
    };
    auto nrBands = current(NrBandOfNumber);
    const auto onlyNrBand = OnlyBand(nrBands);
    if (nrBands.empty()) {
        nrBands = ReadBands(properties, "SupportedBands", NrBandOfNumber);
    }
    const ServingCells serving = ReadCells(cells, RegionOf(modem.networkId.value_or("")), nrBands);
    const auto orElse = [](std::optional<int> band, std::optional<int> other) {
        return band ? band : other;
    };
    modem.umtsBand = orElse(serving.umtsBand, OnlyBand(current(UmtsBandOfNumber)));
    modem.lteBand = orElse(serving.lteBand, OnlyBand(current(LteBandOfNumber)));
    modem.nrBand = orElse(serving.nrBand, onlyNrBand);
    modem.lteBandwidth = serving.lteBandwidth;
    modem.nrBandwidth = serving.nrBandwidth;
    if (modem.technology == SYS_TECHNOLOGY_5G) {
        modem.physicalCell = orElse(serving.nrCell, serving.lteCell);
        modem.fiveGType =
            modem.nrBand && IsMillimetreBand(*modem.nrBand) ? SYS_5G_ULTRA_WIDEBAND : SYS_5G_OTHER;
    } else {
        modem.physicalCell = serving.lteCell;
    }
    if (modem.technology == SYS_TECHNOLOGY_LTE && serving.lteCarriers > 1) {
        modem.technology = SYS_TECHNOLOGY_LTE_PLUS;
    }
}

}  // namespace

void ReadRadio(const json& object, const json& properties, const json& cells, Modem& modem) {
    modem.radioEnabled = RadioEnabledOf(modem.state, Number(properties, "PowerState"));
    if (const auto allowed = Integer(Element(properties, "CurrentModes", 0))) {
        modem.enabledTechnologies =
            EnabledTechnologies(*allowed, Number(properties, "CurrentCapabilities").value_or(0));
    }
    if (modem.serviceStatus != SYS_SERVICE_AVAILABLE) {
        return;
    }
    if (const auto bits = Number(properties, "AccessTechnologies")) {
        const Technology technology = TechnologyOf(*bits);
        modem.technology = technology.technology;
        modem.fiveGMode = technology.fiveGMode;
    }
    ReadSignal(object, properties, modem);
    ReadCellsInUse(properties, cells, modem);
}

}  // namespace binding
