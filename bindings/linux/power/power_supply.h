// The kernel's power supplies: /sys/class/power_supply.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/sysint.h"

namespace binding {

/// The power supplies of the device.
struct PowerSupplies {
    bool battery = false;        ///< whether a battery is there
    bool emptySlot = false;      ///< whether it has been taken out
    std::optional<int> percent;  ///< its charge
    bool charging = false;
    /// The charger that is connected.
    sys_charging_source_e source = SYS_CHARGING_SOURCE_NONE;

    bool operator==(const PowerSupplies&) const = default;
};

/// Reads the supplies below @p folder. Batteries of peripherals do not count. Of several batteries
/// the first that is there counts.
PowerSupplies ReadPowerSupplies(const std::filesystem::path& folder);

/// The record that sys_getBatteryStatus answers.
sys_battery_status_t BatteryRecord(const PowerSupplies& supplies);

}  // namespace binding
