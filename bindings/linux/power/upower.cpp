#include "bindings/linux/power/upower.h"

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "bindings/linux/bus/tree.h"

namespace binding {

namespace {

/// Values of the property State.
enum UPowerState {
    kUnknown = 0,
    kCharging = 1,
    kDischarging = 2,
    kEmpty = 3,
    kFullyCharged = 4,
    kPendingCharge = 5,
};

bool IsUnplugged(std::int64_t state) {
    return state == kDischarging || state == kEmpty;
}

bool IsOnCharger(std::int64_t state) {
    return state == kCharging || state == kFullyCharged || state == kPendingCharge;
}

}  // namespace

PowerSupplies ReadUPower(const nlohmann::json& displayDevice, const PowerSupplies& kernel) {
    const auto present = Boolean(displayDevice, "IsPresent");
    if (!present) {
        return kernel;
    }
    PowerSupplies supplies;
    // UPower goes on to tell of a battery in an empty slot, with a charge of nothing.
    supplies.battery = *present && !kernel.emptySlot;
    supplies.emptySlot = kernel.emptySlot;
    supplies.source = kernel.source;
    if (!supplies.battery) {
        return supplies;
    }
    const auto percentage = Real(displayDevice, "Percentage");
    supplies.percent =
        percentage ? static_cast<int>(std::clamp(*percentage, 0.0, 100.0)) : kernel.percent;
    const auto told = Number(displayDevice, "State");
    supplies.charging = told ? *told == kCharging : kernel.charging;
    const std::int64_t state = told.value_or(kUnknown);
    if (IsUnplugged(state)) {
        supplies.source = SYS_CHARGING_SOURCE_NONE;
    } else if (IsOnCharger(state) && supplies.source == SYS_CHARGING_SOURCE_NONE) {
        supplies.source = SYS_CHARGING_SOURCE_AC;
    }
    return supplies;
}

}  // namespace binding
