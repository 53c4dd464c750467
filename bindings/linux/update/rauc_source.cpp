#include "bindings/linux/update/rauc_source.h"

#include <array>
#include <nlohmann/json.hpp>

#include "bindings/linux/board.h"
#include "bindings/linux/bus/tree.h"
#include "bindings/linux/log.h"
#include "bindings/linux/update/rauc.h"

namespace binding {

namespace {

constexpr std::uint64_t kSecond = 1'000'000;
constexpr const char* kInstaller = "de.pengutronix.rauc.Installer";

constexpr auto kKinds = std::to_array<ExpectedKind>({
    {kInstaller, "Operation", ValueKind::text},
    {kInstaller, "LastError", ValueKind::text},
    {kInstaller, "Progress", ValueKind::integerFirst},
});

}  // namespace

void RaucSource::Start() {
    rauc = std::make_unique<BusObjects>(
        GetBoard().SystemBus(),
        BusObjects::Daemon{.service = "de.pengutronix.rauc",
                           .manager = "",
                           .objects = {{"/", {kInstaller}}},
                           .kinds = kKinds,
                           .limit = GetBoard().GetSettings().silenceSeconds * kSecond},
        [this] { Evaluate(); });
    Evaluate();
}

void RaucSource::Evaluate() {
    using Presence = BusObjects::Presence;
    switch (rauc ? rauc->GetPresence() : Presence::unknown) {
        case Presence::unknown:
        case Presence::reading:
            break;
        case Presence::absent:
            state = RaucStateAfterItsEnd(state);
            slots.reset();
            if (GetState() == State::unknown || GetState() == State::absent) {
                Absent();
            } else {
                Lost("RAUC is gone");
            }
            break;
        case Presence::silent:
            Lost("RAUC " + rauc->Problem());
            break;
        case Presence::present:
            state = NextRaucState(state, Member(Member(rauc->Tree(), "/"), kInstaller));
            if (state.status == UpdateStatus::installed) {
                AskForVersion();
            } else {
                slots.reset();
            }
            Present();
            break;
    }
}

void RaucSource::AskForVersion() {
    if (slots) {
        return;
    }
    slots = GetBoard().SystemBus().Call(
        rauc->Service(), "/", kInstaller, "GetSlotStatus", nullptr,
        [this](const nlohmann::json& arguments, const BusError& error) {
            if (error) {
                LINUX_LOG(TORU_DBG_ERROR, "RAUC: GetSlotStatus: %s", error.Text().c_str());
            } else if (arguments.empty() || !AreSlots(arguments.front())) {
                LINUX_LOG(TORU_DBG_ERROR, "RAUC: GetSlotStatus: the answer is no list of slots");
            } else {
                state.version = LastInstalledVersion(arguments.front());
                Changed();
            }
        },
        GetBoard().GetSettings().silenceSeconds * kSecond);
}

void RaucSource::Fill(Device& device) const {
    FillUpdate(device, state);
}

void RaucSource::Fail(Device& device, int code) const {
    FailUpdate(device, code);
}

nlohmann::json RaucSource::Said() const {
    return DescribeUpdate(state);
}

}  // namespace binding
