// Interfaces and neighbours, as the kernel tells of their changes.
#pragma once

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

    const NetworkTable& Table() const { return table; }

  private:
    void Receive();
    /// Fills the table with a new list. Throws std::system_error, and tries again later then.
    void Renew();

    sd_event* event;
    Scope scope;
    std::function<void()> changed;
    FileDescriptor changes;  ///< tells what changes
    NetworkTable table;
    bool complete = false;  ///< whether the table has been listed once
    EventSource incoming;
    EventSource renewal;
};

}  // namespace binding
