#include "bindings/linux/power/power_source.h"

#include <array>
#include <nlohmann/json.hpp>
#include <system_error>

#include "bindings/linux/board.h"
#include "bindings/linux/bus/tree.h"
#include "bindings/linux/log.h"
#include "bindings/linux/power/upower.h"

namespace binding {

namespace {

constexpr const char* kDisplayDevice = "/org/freedesktop/UPower/devices/DisplayDevice";
constexpr const char* kDeviceInterface = "org.freedesktop.UPower.Device";

constexpr auto kKinds = std::to_array<ExpectedKind>({
    {kDeviceInterface, "IsPresent", ValueKind::boolean},
    {kDeviceInterface, "Percentage", ValueKind::number},
    {kDeviceInterface, "State", ValueKind::integer},
});

}  // namespace

void PowerSource::Start() {
    try {
        events =
            std::make_unique<Uevents>(GetBoard().Event(), "power_supply", [this] { ReadKernel(); });
    } catch (const std::system_error& error) {
        // The values are still read at the start, and UPower may tell of changes.
        LINUX_LOG(TORU_DBG_NOTICE, "%s: %s", Name().c_str(), error.what());
    }
    constexpr std::uint64_t kSecond = 1'000'000;
    upower = std::make_unique<BusObjects>(
        GetBoard().SystemBus(),
        BusObjects::Daemon{.service = "org.freedesktop.UPower",
                           .manager = "",
                           .objects = {{kDisplayDevice, {kDeviceInterface}}},
                           .kinds = kKinds,
                           .limit = GetBoard().GetSettings().silenceSeconds * kSecond},
        [this] { Evaluate(); });
    ReadKernel();
}

void PowerSource::Check() {
    upower->Check();
    // Some drivers do not tell of a change of the charge.
    ReadKernel();
}

void PowerSource::ReadKernel() {
    kernel = ReadPowerSupplies(GetBoard().GetSettings().powerSupplies);
    Evaluate();
}

void PowerSource::Evaluate() {
    using Presence = BusObjects::Presence;
    const Presence presence = upower ? upower->GetPresence() : Presence::unknown;
    const PowerSupplies before = supplies;
    supplies = kernel;
    if (presence == Presence::present) {
        supplies =
            ReadUPower(Member(Member(upower->Tree(), kDisplayDevice), kDeviceInterface), kernel);
    } else if (!kernel.battery && presence != Presence::absent) {
        // UPower may know of a battery that the kernel does not show.
        supplies = before;
        if (presence == Presence::silent) {
            Lost("UPower " + upower->Problem());
        }
        return;
    } else if (!kernel.battery && (GetState() == State::lost || before.battery)) {
        supplies = before;
        Lost("UPower is gone");
        return;
    }
    if (supplies.battery && GetState() == State::present) {
        if (!(supplies == before)) {
            Changed();
        }
    } else if (supplies.battery) {
        Present();
    } else if (GetState() != State::absent) {
        Absent();
    }
}

void PowerSource::Fill(Device& device) const {
    Tell(device.getBatteryStatus, BatteryRecord(supplies));
}

void PowerSource::Fail(Device& device, int code) const {
    FailAll(code, device.getBatteryStatus);
}

nlohmann::json PowerSource::Said() const {
    nlohmann::json said = {
        {"battery", supplies.battery},
        {"charging", supplies.charging},
        {"source", supplies.source},
        {"upower", upower && upower->GetPresence() == BusObjects::Presence::present}};
    if (supplies.percent) {
        said["percent"] = *supplies.percent;
    }
    return said;
}

}  // namespace binding
