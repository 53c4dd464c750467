#include "bindings/linux/traffic.h"

#include "bindings/linux/kernel/attribute_file.h"
#include "bindings/linux/text.h"

namespace binding {

namespace {

constexpr const char* kClassNet = "/sys/class/net";
constexpr std::chrono::seconds kInterval{1};

bool ReadCounter(const std::string& path, std::uint64_t& counter) {
    const auto number = NumberIn<std::uint64_t>(ReadAttribute(path).value_or(""));
    counter = number.value_or(0);
    return number.has_value();
}

/// Bytes since @p before; a counter that is smaller than before has begun anew.
std::uint64_t Since(std::uint64_t before, std::uint64_t now) {
    return now >= before ? now - before : now;
}

sys_traffic_status_e Direction(bool received, bool transmitted) {
    if (received) {
        return transmitted ? SYS_TRAFFIC_BOTH : SYS_TRAFFIC_DOWNLINK;
    }
    return transmitted ? SYS_TRAFFIC_UPLINK : SYS_TRAFFIC_NONE;
}

}  // namespace

bool ReadTrafficCounters(const std::string& classNet, const std::string& interface,
                         TrafficCounters& counters) {
    // A name with a slash would lead to another folder.
    if (interface.empty() || interface.find('/') != std::string::npos) {
        return false;
    }
    const std::string folder = classNet + "/" + interface + "/statistics/";
    return ReadCounter(folder + "rx_bytes", counters.received) &&
           ReadCounter(folder + "tx_bytes", counters.transmitted);
}

void TrafficMeter::Begin(const Connection& newConnection) {
    if (active && connection == newConnection) {
        return;
    }
    connection = newConnection;
    active = true;
    known = false;
    stats = {};
}

bool TrafficMeter::Update(std::chrono::steady_clock::time_point now) {
    if (!active || (known && now - readAt < kInterval)) {
        return false;
    }
    readAt = now;
    TrafficCounters counters;
    if (ReadTrafficCounters(kClassNet, connection.interface, counters)) {
        const std::uint64_t received = Since(connection.atBegin.received, counters.received);
        const std::uint64_t transmitted =
            Since(connection.atBegin.transmitted, counters.transmitted);
        stats.trafficStatus = known ? Direction(received != stats.bytesReceived1,
                                                transmitted != stats.bytesTransmitted1)
                                    : SYS_TRAFFIC_NONE;
        stats.bytesReceived1 = received;
        stats.bytesTransmitted1 = transmitted;
    }
    known = true;
    stats.duration = static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::seconds>(now - connection.since).count());
    return true;
}

}  // namespace binding
