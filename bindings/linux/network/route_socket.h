// Interfaces and neighbours, as the kernel tells of their changes.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>

#include "bindings/linux/event.h"
#include "bindings/linux/network/network_table.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

class RouteSocket {
  public:
    enum class Scope { links, linksAndNeighbours };

    /// Calls @p newChanged when the table is complete for the first time, and after each change.
    /// Throws std::system_error.
    RouteSocket(sd_event* newEvent, Scope newScope, std::function<void()> newChanged);
    ~RouteSocket() = default;
    RouteSocket(const RouteSocket&) = delete;
    RouteSocket& operator=(const RouteSocket&) = delete;

    /// Whether the table has been listed once.
    bool IsComplete() const { return complete; }
    const NetworkTable& Table() const { return table; }

  private:
    /// A list that the kernel is asked for.
    struct List {
        int type;
        int family;
    };

    void AskForAll();
    void AskForNext();
    void Receive();
    /// Returns whether the table has changed.
    bool Take(const NetworkMessage& message);

    Scope scope;
    std::function<void()> changed;
    FileDescriptor socket;
    NetworkTable table;
    /// What is being listed; it replaces the table when it is whole.
    NetworkTable listed;
    /// What is still to be listed: the kernel answers one request for a list at a time.
    std::deque<List> lists;
    bool complete = false;
    bool again = false;  ///< whether all is to be listed once more
    EventSource incoming;
};

}  // namespace binding
