// Interfaces and neighbours, as the kernel tells of their changes.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "bindings/linux/event.h"
#include "bindings/linux/network/network_table.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

class RouteSocket {
  public:
    enum class Scope { links, linksAndNeighbours };

    /// Calls @p newChanged when the table has been listed, and after each change; and @p newFailed
    /// when it cannot be listed, which is tried again then. Throws std::system_error.
    RouteSocket(sd_event* newEvent, Scope newScope, std::function<void()> newChanged,
                std::function<void(const std::string& why)> newFailed);
    ~RouteSocket() = default;
    RouteSocket(const RouteSocket&) = delete;
    RouteSocket& operator=(const RouteSocket&) = delete;

    const NetworkTable& Table() const { return table; }

  private:
    void Receive();
    /// Fills the table with a new list.
    void Renew();
    void RenewAfter(std::chrono::microseconds pause);

    sd_event* event;
    Scope scope;
    std::function<void()> changed;
    std::function<void(const std::string&)> failed;
    FileDescriptor changes;  ///< tells what changes
    NetworkTable table;
    bool complete = false;  ///< whether the table could be listed
    std::chrono::steady_clock::time_point listedAt;
    EventSource incoming;
    EventSource renewal;
};

}  // namespace binding
