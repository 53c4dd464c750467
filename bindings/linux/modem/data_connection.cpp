#include "bindings/linux/modem/data_connection.h"

#include <utility>

#include "bindings/device/codes.h"
#include "bindings/linux/log.h"
#include "bindings/linux/modem/modem_manager.h"
#include "bindings/linux/modem/tables/modem_numbers.h"

namespace binding {

namespace {

constexpr std::uint64_t kSecond = 1'000'000;

/// A network may need three minutes to answer a modem.
constexpr std::uint64_t kNetworkLimit = 190 * kSecond;
constexpr std::uint64_t kSignLimit = 10 * kSecond;

// NMActiveConnectionState.
constexpr std::int64_t kUnknown = 0;
constexpr std::int64_t kActivating = 1;
constexpr std::int64_t kActivated = 2;
constexpr std::int64_t kDeactivating = 3;
constexpr std::int64_t kDeactivated = 4;

DataAction::Manager StateOf(const NetworkManager& manager) {
    if (manager.IsStarting()) {
        return DataAction::Manager::starting;
    }
    switch (manager.ActiveState().value_or(kDeactivated)) {
        case kUnknown:
            return DataAction::Manager::starting;
        case kActivating:
        case kActivated:
            return DataAction::Manager::active;
        case kDeactivating:
            return DataAction::Manager::ending;
        default:
            return DataAction::Manager::idle;
    }
}

}  // namespace

DataConnection::DataConnection(Board& newBoard, ModemMemory& newMemory,
                               std::function<void()> newChanged)
    : board(newBoard),
      changed(std::move(newChanged)),
      memory(newMemory),
      manager(newBoard.SystemBus(), newBoard.GetSettings().profile,
              newBoard.GetSettings().silenceSeconds * kSecond, [this] {
                  Refresh();
                  changed();
              }) {}

void DataConnection::Update(const Modem* newModem) {
    if (newModem == nullptr || (modem && modem->path != newModem->path)) {
        action.Forget();
        call.reset();
    }
    modem = newModem == nullptr ? std::nullopt : std::optional(*newModem);
    Refresh();
}

void DataConnection::Refresh() {
    const DataAction::Kind before = action.UnderWay();
    action.Update(ModemStatus(), StateOf(manager));
    NoteGivenUp(before);
    RefreshMemory();
    SetLimit();
}

void DataConnection::NoteGivenUp(DataAction::Kind before) const {
    // The modem may still be told to be connecting.
    const auto status = action.Status();
    if (before == DataAction::Kind::connect && action.UnderWay() == DataAction::Kind::none &&
        status != SYS_DATA_CONNECTION_CONNECTED && status != SYS_DATA_CONNECTION_DORMANT) {
        LINUX_LOG(TORU_DBG_ERROR, "data connection: not connected: NetworkManager has given up");
    }
}

void DataConnection::RefreshMemory() {
    if (!modem || !modem->dataConnectionStatus) {
        wasReady = false;
        return;
    }
    const auto status = *modem->dataConnectionStatus;
    if (status == SYS_DATA_CONNECTION_READY) {
        wasReady = true;
    } else if (status == SYS_DATA_CONNECTION_CONNECTED && std::exchange(wasReady, false) &&
               action.UnderWay() != DataAction::Kind::disconnect && board.IsService()) {
        // Another program has connected.
        memory.SetDataOff(false);
    }
}

sys_data_connection_status_e DataConnection::ModemStatus() const {
    constexpr auto kNone = SYS_DATA_CONNECTION_READY;
    return modem ? modem->dataConnectionStatus.value_or(kNone) : kNone;
}

void DataConnection::OnMemory() {
    // Another program that switches data off ends also a connection that is being made.
    wasReady = wasReady && ModemStatus() == SYS_DATA_CONNECTION_READY;
    wasConnectedInVain = false;
}

void DataConnection::Check() {
    manager.Check();
    // The program that has switched data off may have failed to disconnect, and not told so.
    const bool isConnectedInVain = memory.IsDataOff() &&
                                   action.UnderWay() == DataAction::Kind::none &&
                                   ModemStatus() == SYS_DATA_CONNECTION_CONNECTED;
    if (std::exchange(wasConnectedInVain, isConnectedInVain) && isConnectedInVain &&
        board.IsService()) {
        TakeBackDataOff();
        changed();
    }
}

void DataConnection::TakeBackDataOff() {
    if (ModemStatus() != SYS_DATA_CONNECTION_READY) {
        memory.SetDataOff(false);
    }
}

bool DataConnection::IsEnabled() const {
    return !memory.IsDataOff() && manager.IsWwanEnabled().value_or(true);
}

DataOutlook DataConnection::Outlook() const {
    const bool isReady = modem && modem->simStatus == SYS_SIM_READY;
    return {
        .readiness = isReady ? static_cast<int>(SYS_SUCCESS) : static_cast<int>(kNothingToConnect),
        .afterConnect = StatusAfter(DataAction::Kind::connect),
        .afterDisconnect = StatusAfter(DataAction::Kind::disconnect)};
}

sys_data_connection_status_e DataConnection::StatusAfter(DataAction::Kind kind) const {
    DataAction asked = action;
    asked.Ask(kind, manager.HasProfile());
    return asked.Status();
}

void DataConnection::Make(DataRequest request) {
    // What was there when the request was accepted may have gone.
    if (!modem) {
        LINUX_LOG(TORU_DBG_NOTICE, "data connection: the modem has gone before it could be asked");
        return;
    }
    const DataAction::Kind kind =
        request == DataRequest::connect ? DataAction::Kind::connect : DataAction::Kind::disconnect;
    // At once, because this process may end before it is done.
    memory.SetDataOff(kind == DataAction::Kind::disconnect);
    Send(action.Ask(kind, manager.HasProfile()));
    SetLimit();
    changed();
}

void DataConnection::Send(DataAction::Kind kind) {
    if (kind == DataAction::Kind::connect) {
        SendConnect();
    } else if (kind == DataAction::Kind::disconnect) {
        SendDisconnect();
    }
}

void DataConnection::SendConnect() {
    if (manager.HasProfile()) {
        call = manager.Activate(
            [this](const BusError& error) { OnAnswer(DataAction::Kind::connect, error); });
        return;
    }
    if (modem->state.value_or(kModemStateUnknown) >= kModemEnabled) {
        SendSimpleConnect();
        return;
    }
    call = board.SystemBus().Call(
        kModemManager, modem->path, kModemInterface, "Enable",
        [](sd_bus_message* message) { return sd_bus_message_append(message, "b", 1); },
        [this](const nlohmann::json& /*arguments*/, const BusError& error) {
            if (!error && action.UnderWay() == DataAction::Kind::connect) {
                SendSimpleConnect();
            } else {
                OnAnswer(DataAction::Kind::connect, error);
            }
        },
        kNetworkLimit);
}

void DataConnection::SendSimpleConnect() {
    const Settings& settings = board.GetSettings();
    call = board.SystemBus().Call(
        kModemManager, modem->path, kSimpleInterface, "Connect",
        [apn = settings.apn, roaming = settings.roamingAllowed ? 1 : 0](sd_bus_message* message) {
            constexpr const char* kRoaming = "allow-roaming";
            return apn.empty() ? sd_bus_message_append(message, "a{sv}", 1, kRoaming, "b", roaming)
                               : sd_bus_message_append(message, "a{sv}", 2, kRoaming, "b", roaming,
                                                       "apn", "s", apn.c_str());
        },
        [this](const nlohmann::json& /*arguments*/, const BusError& error) {
            OnAnswer(DataAction::Kind::connect, error);
        },
        kNetworkLimit);
}

void DataConnection::SendDisconnect() {
    if (manager.HasConnection()) {
        call = manager.Deactivate(
            [this](const BusError& error) { OnAnswer(DataAction::Kind::disconnect, error); });
        return;
    }
    call = board.SystemBus().Call(
        kModemManager, modem->path, kSimpleInterface, "Disconnect",
        // The path of no bearer stands for all bearers.
        [](sd_bus_message* message) { return sd_bus_message_append(message, "o", kNoObject); },
        [this](const nlohmann::json& /*arguments*/, const BusError& error) {
            OnAnswer(DataAction::Kind::disconnect, error);
        },
        kNetworkLimit);
}

void DataConnection::OnAnswer(DataAction::Kind kind, const BusError& error) {
    call.reset();
    if (error) {
        LINUX_LOG(TORU_DBG_ERROR, "data connection: not %s: %s",
                  kind == DataAction::Kind::connect ? "connected" : "disconnected",
                  error.Text().c_str());
    }
    // What NetworkManager has answered tells of its connection, too.
    Refresh();
    const DataAction::Kind before = action.UnderWay();
    Send(action.Answered(static_cast<bool>(error)));
    if (!error) {
        NoteGivenUp(before);
    }
    if (error && kind == DataAction::Kind::disconnect &&
        action.UnderWay() == DataAction::Kind::none) {
        TakeBackDataOff();
    }
    SetLimit();
    changed();
}

void DataConnection::SetLimit() {
    const DataAction::Wait wait = action.WaitsFor();
    if (wait == limited) {
        return;
    }
    limited = wait;
    // A call has its own limit.
    if (wait == DataAction::Wait::nothing || wait == DataAction::Wait::answer) {
        limit.Reset();
        return;
    }
    limit.After(board.Event(), wait == DataAction::Wait::sign ? kSignLimit : kNetworkLimit, kSecond,
                [this] {
                    LINUX_LOG(TORU_DBG_ERROR, "data connection: not %s in time",
                              action.UnderWay() == DataAction::Kind::connect ? "connected"
                                                                             : "disconnected");
                    if (action.UnderWay() == DataAction::Kind::disconnect) {
                        TakeBackDataOff();
                    }
                    action.GiveUp();
                    manager.GiveUp();
                    SetLimit();
                    changed();
                });
}

}  // namespace binding
