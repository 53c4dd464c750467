#include "bindings/linux/storage/sharing_source.h"

#include <array>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "bindings/linux/board.h"
#include "bindings/linux/bus/tree.h"
#include "bindings/linux/log.h"
#include "bindings/linux/text.h"

namespace binding {

namespace {

constexpr const char* kManager = "org.freedesktop.systemd1";
constexpr const char* kManagerPath = "/org/freedesktop/systemd1";
constexpr const char* kUnitInterface = "org.freedesktop.systemd1.Unit";

constexpr auto kKinds = std::to_array<ExpectedKind>({
    {kUnitInterface, "ActiveState", ValueKind::text},
    {kUnitInterface, "LoadState", ValueKind::text},
});

/// The object of the unit @p name; empty when there can be none of this name.
std::string UnitPath(const std::string& name) {
    char* encoded = nullptr;
    if (sd_bus_path_encode("/org/freedesktop/systemd1/unit", name.c_str(), &encoded) < 0) {
        return "";
    }
    const std::unique_ptr<char, decltype(&std::free)> owner(encoded, &std::free);
    return encoded;
}

}  // namespace

void SharingSource::Start() {
    unitPath = UnitPath(GetBoard().GetSettings().sambaUnit);
    constexpr std::uint64_t kSecond = 1'000'000;
    manager = std::make_unique<BusObjects>(
        GetBoard().SystemBus(),
        BusObjects::Daemon{.service = kManager,
                           .manager = "",
                           .objects = {{unitPath, {kUnitInterface}}},
                           .kinds = kKinds,
                           .limit = GetBoard().GetSettings().silenceSeconds * kSecond},
        [this] { Evaluate(); });
    Evaluate();
}

void SharingSource::Check() {
    manager->Check();
    if (isRefused) {
        Subscribe();
    }
}

void SharingSource::Subscribe() {
    // The service manager tells of changes only while somebody has asked for them.
    subscribed = true;
    subscription = GetBoard().SystemBus().Call(
        kManager, kManagerPath, "org.freedesktop.systemd1.Manager", "Subscribe", nullptr,
        [this](const nlohmann::json& /*arguments*/, const BusError& error) { OnSubscribed(error); },
        0);
}

void SharingSource::OnSubscribed(const BusError& error) {
    const bool wasRefused = isRefused;
    // The sources before a change of the settings have had the same connection.
    isRefused = error && error.name != "org.freedesktop.systemd1.AlreadySubscribed";
    if (isRefused && !complained) {
        LINUX_LOG(TORU_DBG_ERROR, "the service manager: Subscribe: %s", error.Text().c_str());
    }
    complained = isRefused;
    if (wasRefused && !isRefused) {
        // What has changed meanwhile has not been told.
        manager->Reread();
    }
}

void SharingSource::Evaluate() {
    using Presence = BusObjects::Presence;
    const Presence presence = manager ? manager->GetPresence() : Presence::unknown;
    if (presence == Presence::absent || presence == Presence::unknown) {
        subscribed = false;
        isRefused = false;
    } else if (!subscribed) {
        Subscribe();
    }
    if (presence == Presence::silent) {
        Lost("the service manager " + manager->Problem());
    } else if (presence == Presence::absent) {
        if (GetState() == State::unknown || GetState() == State::absent) {
            Absent();
        } else {
            Lost("the service manager is gone");
        }
    } else if (presence == Presence::present) {
        const nlohmann::json& unit = Member(Member(manager->Tree(), unitPath), kUnitInterface);
        activeState = Printable(Text(unit, "ActiveState").value_or(""));
        if (Text(unit, "LoadState").value_or("not-found") == "loaded") {
            Present();
        } else {
            Absent();
        }
    }
}

void SharingSource::Fill(Device& device) const {
    Tell(device.getSambaEnabled, activeState == "active" || activeState == "reloading");
}

void SharingSource::Fail(Device& device, int code) const {
    FailAll(code, device.getSambaEnabled, device.getSambaShareInfo);
}

nlohmann::json SharingSource::Said() const {
    return {{"unit", GetBoard().GetSettings().sambaUnit}, {"state", activeState}};
}

}  // namespace binding
