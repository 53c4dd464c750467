// The connection to the system bus.
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "bindings/linux/bus/bus_error.h"
#include "bindings/linux/bus/complaints.h"
#include "bindings/linux/event.h"

namespace binding {

struct BusDeleter {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};

struct SlotDeleter {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
/// A registration with the bus, which ends with this object.
using BusSlot = std::unique_ptr<sd_bus_slot, SlotDeleter>;

/// One connection to the system bus, which never blocks. While there is no bus, the kernel is asked
/// to tell when one appears; when the bus goes away, the connection is made anew.
class Bus {
  public:
    /// Appends the arguments of a call; returns a negative errno on failure.
    using Append = std::function<int(sd_bus_message* message)>;
    /// Receives the arguments of the reply as a list; or an error, and then the list is empty.
    using OnReply = std::function<void(const nlohmann::json& arguments, const BusError& error)>;
    using OnSignal = std::function<void(sd_bus_message* message)>;

    /// A call that has been sent. Its reply is not delivered any more when this object has gone.
    class Pending;
    using PendingCall = std::shared_ptr<Pending>;

    /// After @p newLimit microseconds, a bus whose socket is there and that does not answer counts
    /// as absent.
    Bus(sd_event* newEvent, std::uint64_t newLimit);
    ~Bus();
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    /// What is wrong with what daemons tell.
    Complaints& GetComplaints() { return complaints; }

    bool IsConnected() const { return connected; }

    /// Whether there is a bus without a connection to it, because it is silent or refuses.
    bool IsOutOfReach() const { return hasComplained; }

    /// Calls @p changed whenever the connection is made or lost, at once if it stands, and soon if
    /// there is no bus to connect to or it does not answer. Returns what ends that when it is
    /// destroyed.
    std::shared_ptr<void> OnConnection(std::function<void(bool connected)> changed);

    /// Tries again to connect to a bus that has not answered since the last check: nothing tells
    /// when somebody begins to listen at a socket.
    void Check();

    /// Calls @p member of @p interface. @p timeout is in microseconds. The reply comes later,
    /// always; without a connection, or when it is lost before there is an answer, it is the error
    /// "org.freedesktop.DBus.Error.Disconnected".
    [[nodiscard]] PendingCall Call(const std::string& destination, const std::string& path,
                                   const std::string& interface, const std::string& member,
                                   const Append& append, OnReply onReply, std::uint64_t timeout);

  private:
    struct Callbacks;

    friend class BusMatch;

    int AddMatch(sd_bus_slot** slot, const std::string& rule, sd_bus_message_handler_t onMessage,
                 void* owner);
    void Open();
    void OnLocal(sd_bus_message* message);
    void SetConnected(bool newConnected);
    void TellListeners();
    void TellListenersSoon();
    void OnNoAnswer();
    void Complain(const std::string& what);

    sd_event* event;
    std::uint64_t limit;
    std::unique_ptr<sd_bus, BusDeleter> bus;
    bool connected = false;
    EventSource reopening;
    EventSource absence;
    EventSource answerLimit;
    /// Whether the last check has found a socket and no connection.
    bool wasUnanswered = false;
    std::vector<std::weak_ptr<std::function<void(bool)>>> listeners;
    /// Whether it has been said that there is no connection.
    bool hasComplained = false;
    Complaints complaints;
};

/// Receives signals for as long as it and the connection exist.
class BusMatch {
  public:
    BusMatch() = default;
    ~BusMatch() = default;
    BusMatch(const BusMatch&) = delete;
    BusMatch& operator=(const BusMatch&) = delete;

    /// Calls @p newOnSignal for each signal that fits @p rule, a match rule of the bus. Without a
    /// connection it does nothing.
    void Begin(Bus& bus, const std::string& rule, Bus::OnSignal newOnSignal);
    void End() { slot.reset(); }

  private:
    static int OnMessage(sd_bus_message* message, void* owner, sd_bus_error* error);

    BusSlot slot;
    Bus::OnSignal onSignal;
};

}  // namespace binding
