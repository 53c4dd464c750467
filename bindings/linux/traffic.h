// The traffic of the data call: the counters of its network interface.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "platform/sysint.h"

namespace binding {

/// Bytes since the interface exists.
struct TrafficCounters {
    std::uint64_t received = 0;
    std::uint64_t transmitted = 0;
};

/// Reads the counters of @p interface in the folder @p classNet, usually /sys/class/net. Returns
/// whether there are such.
bool ReadTrafficCounters(const std::string& classNet, const std::string& interface,
                         TrafficCounters& counters);

/// Reads the counters when they are asked for, but not more often than once a second.
class TrafficMeter {
  public:
    struct Connection {
        std::string interface;
        std::chrono::steady_clock::time_point since;
        TrafficCounters atBegin;  ///< what the interface had counted before the data call

        bool operator==(const Connection& other) const {
            return interface == other.interface && since == other.since;
        }
    };

    void Begin(const Connection& newConnection);
    void End() { active = false; }
    bool IsActive() const { return active; }

    /// Whether the counters have been read at @p now, because a second has passed.
    bool Update(std::chrono::steady_clock::time_point now);

    const sys_cellular_data_connection_stats_t& Stats() const { return stats; }

  private:
    bool active = false;
    Connection connection;
    bool known = false;
    std::chrono::steady_clock::time_point readAt;
    sys_cellular_data_connection_stats_t stats{};
};

}  // namespace binding
