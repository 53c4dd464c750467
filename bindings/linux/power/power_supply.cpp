#include "bindings/linux/power/power_supply.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "bindings/linux/kernel/attribute_file.h"

namespace binding {

namespace {

using Folder = std::filesystem::path;

std::optional<int> Percent(const Folder& battery) {
    if (const auto capacity = ReadNumber(battery / "capacity")) {
        return static_cast<int>(std::clamp<std::int64_t>(*capacity, 0, 100));
    }
    // Some gauges leave it to the reader to divide.
    for (const char* unit : {"energy", "charge"}) {
        const auto now = ReadNumber(battery / (unit + std::string("_now")));
        const auto full = ReadNumber(battery / (unit + std::string("_full")));
        if (now && full && *now >= 0 && *full > 0) {
            const double share = static_cast<double>(*now) / static_cast<double>(*full);
            return static_cast<int>(std::min(share, 1.0) * 100);
        }
    }
    return std::nullopt;
}

void ReadBattery(const Folder& battery, PowerSupplies& supplies) {
    const bool isPeripheral = ReadAttribute(battery / "scope") == "Device";
    // Where the attribute is missing, the battery is built in.
    const bool isPresent = ReadNumber(battery / "present").value_or(1) != 0;
    if (isPeripheral || supplies.battery) {
        return;
    }
    supplies.emptySlot = !isPresent;
    if (!isPresent) {
        return;
    }
    supplies.battery = true;
    supplies.percent = Percent(battery);
    supplies.charging = ReadAttribute(battery / "status") == "Charging";
}

void ReadCharger(const Folder& charger, const std::string& type, PowerSupplies& supplies) {
    if (ReadNumber(charger / "online").value_or(0) == 0) {
        return;
    }
    // USB, USB_DCP, USB_PD and so on: the kinds of chargers at a USB port.
    if (type.starts_with("USB")) {
        supplies.source = SYS_CHARGING_SOURCE_USB;
    } else if (type == "Mains" || type == "Wireless") {
        if (supplies.source == SYS_CHARGING_SOURCE_NONE) {
            supplies.source = SYS_CHARGING_SOURCE_AC;
        }
    }
}

}  // namespace

PowerSupplies ReadPowerSupplies(const Folder& folder) {
    PowerSupplies supplies;
    for (const Folder& supply : EntriesOf(folder)) {
        const std::string type = ReadAttribute(supply / "type").value_or("");
        if (type == "Battery") {
            ReadBattery(supply, supplies);
        } else {
            ReadCharger(supply, type, supplies);
        }
    }
    return supplies;
}

sys_battery_status_t BatteryRecord(const PowerSupplies& supplies) {
    sys_battery_status_t record{};
    record.detection = supplies.battery ? SYS_BATTERY_PRESENT : SYS_BATTERY_NOT_PRESENT;
    record.chargingSource = supplies.source;
    if (supplies.battery) {
        record.chargePercent = supplies.percent.value_or(0);
        record.chargingState = supplies.charging ? 1 : 0;
        // A battery of unknown charge is not an empty one.
        if (!supplies.percent) {
            record.detection = SYS_BATTERY_INVALID;
        }
    }
    return record;
}

}  // namespace binding
