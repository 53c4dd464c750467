// Starting and ending the data connection, as the user asks for it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "bindings/linux/board.h"
#include "bindings/linux/bus/bus.h"
#include "bindings/linux/event.h"
#include "bindings/linux/modem/data_action.h"
#include "bindings/linux/modem/modem.h"
#include "bindings/linux/modem/modem_memory.h"
#include "bindings/linux/modem/network_manager.h"

namespace binding {

/// NetworkManager connects where it has a profile for the modem, because it would fight with
/// anybody else who does; ModemManager itself connects otherwise. A method that hangs blocks
/// nobody: it has a limit, and the next action does not wait for it (see DataAction).
class DataConnection final : public DataCall {
  public:
    /// Calls @p newChanged when the status may have changed for another reason than the modem.
    DataConnection(Board& newBoard, ModemMemory& newMemory, std::function<void()> newChanged);

    /// Another program has changed the memory.
    void OnMemory();

    /// Follows a modem; null for none.
    void Update(const Modem* newModem);

    /// State of the connection with the action under way.
    sys_data_connection_status_e Status() const { return action.Status(); }

    /// Whether the user wants data: after a disconnection, not until the next connection.
    bool IsEnabled() const;

    const NetworkManager& Manager() const { return manager; }
    void Check();

    // DataCall.
    DataOutlook Outlook() const override;
    void Make(DataRequest request) override;
    bool IsSending() const override { return action.WaitsFor() == DataAction::Wait::answer; }

  private:
    sys_data_connection_status_e StatusAfter(DataAction::Kind kind) const;
    void Refresh();
    /// Logs it if the action under way, @p before, has just ended in vain.
    void NoteGivenUp(DataAction::Kind before) const;
    void RefreshMemory();
    void TakeBackDataOff();
    void Send(DataAction::Kind kind);
    void SendConnect();
    void SendSimpleConnect();
    void SendDisconnect();
    sys_data_connection_status_e ModemStatus() const;
    void OnAnswer(DataAction::Kind kind, const BusError& error);
    void SetLimit();

    Board& board;
    std::function<void()> changed;
    std::optional<Modem> modem;
    DataAction action;
    DataAction::Wait limited = DataAction::Wait::nothing;
    EventSource limit;
    Bus::PendingCall call;
    /// Whether a connection that the modem tells of would be a new one, because it has told that it
    /// has none.
    bool wasReady = false;
    /// Whether the last check has found a connection although data is off.
    bool wasConnectedInVain = false;
    ModemMemory& memory;
    NetworkManager manager;
};

}  // namespace binding
