// The interfaces of the machine and who is seen at them.
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bindings/linux/network/netlink_messages.h"

namespace binding {

/// Where a client is seen.
struct Sighting {
    std::string interface;
    MacAddress mac = 0;
    std::string address;  ///< IP address; empty when only a bridge has seen the client
    /// Whether a bridge's forwarding table says so: the interface is a port then.
    bool forwarding = false;
    /// How long ago it has last answered; nothing while the kernel knows that it is there.
    std::optional<std::chrono::seconds> quiet = std::nullopt;
};

/// A client has several entries: one of the bridge, and one for each of its addresses.
constexpr std::size_t kMostNeighbours = 4 * kMostClients;

class NetworkTable {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// Takes over one message that has come at @p now. Returns whether that changed what is known.
    bool Apply(const NetworkMessage& message, Time now);

    /// The interface of this name; null when there is none.
    const Link* FindLink(std::string_view name) const;

    /// Who is seen, as of @p now.
    std::vector<Sighting> Sightings(Time now) const;

    /// Whether there were more neighbours than have room.
    bool LeavesOut() const { return leavesOut; }

    /// Whether neighbours that were left out would have room by now. Not as soon as one has: to
    /// list all again whenever one of many goes would cost much.
    bool HasRoomAgain() const {
        return leavesOut && neighbours.size() < kMostNeighbours - kMostNeighbours / 10;
    }

  private:
    /// The interface, and the IP address or, in a forwarding table, the hardware address.
    using NeighbourKey = std::pair<int, std::string>;
    struct Known {
        MacAddress mac = 0;
        std::optional<Time> quietSince;
    };

    bool Take(const Link& link, Time now);
    bool Take(const LinkGone& gone, Time now);
    bool Take(const Neighbour& neighbour, Time now);
    static bool Take(const ListEnd& end, Time now);

    std::map<int, Link> links;
    std::map<NeighbourKey, Known> neighbours;
    bool leavesOut = false;
};

}  // namespace binding
