#include "bindings/linux/modem/traffic_follower.h"

#include <algorithm>
#include <chrono>

namespace binding {

namespace {

constexpr const char* kClassNet = "/sys/class/net";

/// Where the bearer counts, the interface had counted the rest before. Its figures may be those of
/// half a minute ago, so that the connection seems to have done a little less.
TrafficCounters BeforeConnection(const TrafficCounters& now, const BearerStats& ofConnection) {
    return {now.received - std::min(now.received, ofConnection.received),
            now.transmitted - std::min(now.transmitted, ofConnection.transmitted)};
}

}  // namespace

void TrafficFollower::Update(const Modem& modem, const std::string& managerInterface) {
    if (!modem.interface) {
        End();
        seenDisconnected = true;
        return;
    }
    TrafficCounters counters;
    std::string newInterface = *modem.interface;
    if (!ReadTrafficCounters(kClassNet, newInterface, counters)) {
        newInterface = managerInterface;
        if (!ReadTrafficCounters(kClassNet, newInterface, counters)) {
            newInterface = *modem.interface;
            if (modem.bearerStats) {
                End();
                return;
            }
        }
    }
    if (newInterface == interface) {
        return;
    }
    interface = newInterface;
    TrafficMeter::Connection connection;
    connection.interface = interface;
    connection.since = std::chrono::steady_clock::now();
    if (seenDisconnected) {
        connection.atBegin = counters;
    } else if (modem.bearerStats) {
        // The connection is older than this service.
        connection.since -= std::chrono::seconds(modem.bearerStats->seconds);
        connection.atBegin = BeforeConnection(counters, *modem.bearerStats);
    }
    seenDisconnected = false;
    board.SetTraffic(connection);
}

void TrafficFollower::End() {
    if (!interface.empty()) {
        interface.clear();
        board.SetTraffic(std::nullopt);
    }
}

}  // namespace binding
