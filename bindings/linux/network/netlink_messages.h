// What the kernel tells about interfaces and neighbours (rtnetlink).
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "bindings/linux/text.h"

namespace binding {

/// A network interface.
struct Link {
    int index = 0;
    std::string name;
    bool up = false;       ///< whether it is switched on
    bool carrier = false;  ///< whether a cable is connected
};

struct LinkGone {
    int index = 0;
};

/// A device that was seen at an interface.
struct Neighbour {
    /// The interface that has the address or, of an entry of a bridge's forwarding table, the port.
    int index = 0;
    bool forwarding = false;  ///< whether it is an entry of a bridge's forwarding table
    MacAddress mac = 0;
    std::string address;   ///< IP address; empty for an entry of a forwarding table
    bool present = false;  ///< whether the kernel takes the device for reachable
    /// How long ago the device has last answered, when the kernel does not know whether it is still
    /// there. An entry of a forwarding table has none: the bridge drops it when the device is
    /// quiet.
    std::optional<std::chrono::seconds> quiet = std::nullopt;
    /// Whether the kernel is about to find out if the device is there, because somebody sends to
    /// it.
    bool asked = false;
};

/// The answer to a request that asked for all of something ends.
struct ListEnd {
    int error = 0;  ///< why it is not complete (errno); 0 when it is
};

using NetworkMessage = std::variant<Link, LinkGone, Neighbour, ListEnd>;

/// The messages in one datagram of the kernel, without those that are of no concern here. The rest
/// of a datagram that is cut is left out.
std::vector<NetworkMessage> ParseNetworkMessages(std::span<const std::byte> datagram);

}  // namespace binding
