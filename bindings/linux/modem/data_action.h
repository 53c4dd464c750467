// What the user has asked of the data connection, until it is done.
#pragma once

#include "platform/sysint.h"

namespace binding {

/// An action is under way until the modem has reached what is wanted, or until that has failed. A
/// second action of the same kind joins the first; one of the other kind replaces it: what has been
/// asked for last counts.
///
/// The replacement is sent when what is on the way has been answered, because ModemManager refuses
/// a connection while it disconnects, and NetworkManager must first tell what it has begun. But
/// ModemManager, which answers only when the network has, ends a connection that is being made when
/// it is told to disconnect; so that is sent at once.
class DataAction {
  public:
    enum class Kind { none, connect, disconnect };

    /// What an action that is under way waits for.
    enum class Wait {
        nothing,  ///< no action is under way
        answer,   ///< of what has been sent
        sign,     ///< a sign that what has been answered happens; it should come soon
        manager,  ///< NetworkManager, which has begun; it may take as long as the network does
    };

    /// What NetworkManager does with its connection; it is idle where it is not there.
    enum class Manager {
        idle,      ///< it has none
        starting,  ///< it has said that it will make one
        active,    ///< it makes or has one
        ending,
    };

    Kind UnderWay() const { return kind; }
    Wait WaitsFor() const;

    // Each returns what must be sent now.

    /// @p byManager says that NetworkManager makes the connection, else ModemManager does.
    Kind Ask(Kind newKind, bool byManager);
    Kind Answered(bool failed);

    /// What modem and NetworkManager tell of the connection.
    void Update(sys_data_connection_status_e newStatus, Manager newManager);

    /// Ends the action: it has taken too long.
    void GiveUp() { kind = Kind::none; }

    /// The modem has gone, and with it what was sent to it.
    void Forget() { *this = DataAction(); }

    /// What the action under way makes of what the modem tells: who has pressed a button sees that
    /// something happens, even before the modem knows.
    sys_data_connection_status_e Status() const;

  private:
    void EndIfReached();

    Kind kind = Kind::none;
    /// What has been sent and not been answered.
    Kind sent = Kind::none;
    sys_data_connection_status_e status = SYS_DATA_CONNECTION_READY;
    /// Whether the connection that the modem tells of is the one that the action before this one
    /// ends.
    bool ending = false;
    Manager manager = Manager::idle;
    /// Whether NetworkManager has begun what the action asks for.
    bool managerHasBegun = false;
    /// Whether it has answered that it will.
    bool managerHasAnnounced = false;
};

}  // namespace binding
