#include "bindings/linux/modem/data_action.h"

#include <utility>

namespace binding {

namespace {

bool IsConnected(sys_data_connection_status_e status) {
    return status == SYS_DATA_CONNECTION_CONNECTED || status == SYS_DATA_CONNECTION_DORMANT;
}

}  // namespace

DataAction::Wait DataAction::WaitsFor() const {
    if (kind == Kind::none) {
        return Wait::nothing;
    }
    if (sent != Kind::none) {
        return Wait::answer;
    }
    return managerHasBegun ? Wait::manager : Wait::sign;
}

DataAction::Kind DataAction::Ask(Kind newKind, bool byManager) {
    if (newKind == kind) {
        return Kind::none;
    }
    ending = kind == Kind::disconnect && IsConnected(status);
    kind = newKind;
    managerHasBegun = false;
    managerHasAnnounced = false;
    EndIfReached();
    const bool waits = sent != Kind::none && (byManager || kind == Kind::connect);
    if (kind == Kind::none || kind == sent || waits) {
        return Kind::none;
    }
    sent = kind;
    return kind;
}

DataAction::Kind DataAction::Answered(bool failed) {
    const Kind answered = std::exchange(sent, Kind::none);
    if (failed && answered == Kind::disconnect) {
        ending = false;
    }
    if (kind != Kind::none && kind != answered) {
        sent = kind;
        return kind;
    }
    if (failed) {
        kind = Kind::none;
    }
    EndIfReached();
    return Kind::none;
}

void DataAction::Update(sys_data_connection_status_e newStatus, Manager newManager) {
    status = newStatus;
    manager = newManager;
    ending = ending && IsConnected(status);
    EndIfReached();
}

sys_data_connection_status_e DataAction::Status() const {
    switch (kind) {
        case Kind::connect:
            return SYS_DATA_CONNECTION_CONNECTING;
        case Kind::disconnect:
            return SYS_DATA_CONNECTION_DISCONNECTING;
        case Kind::none:
            break;
    }
    return status;
}

void DataAction::EndIfReached() {
    const bool isAnswered = sent == Kind::none;
    if (kind == Kind::connect) {
        // While a disconnection is still under way, modem and manager tell what was before.
        if (ending || sent == Kind::disconnect) {
            return;
        }
        const bool isManagerActive = manager == Manager::active;
        const bool hasLeftOut = managerHasAnnounced && manager == Manager::idle;
        const bool hasManagerGivenUp =
            isAnswered && ((managerHasBegun && !isManagerActive) || hasLeftOut);
        managerHasAnnounced = managerHasAnnounced || (isAnswered && manager == Manager::starting);
        managerHasBegun = managerHasBegun || isManagerActive;
        if (IsConnected(status) || hasManagerGivenUp) {
            kind = Kind::none;
        }
    } else if (kind == Kind::disconnect) {
        // A modem that has not begun to connect yet is ready, too.
        managerHasBegun = managerHasBegun || manager == Manager::ending;
        if (status == SYS_DATA_CONNECTION_READY && manager == Manager::idle && isAnswered) {
            kind = Kind::none;
        }
    }
}

}  // namespace binding
