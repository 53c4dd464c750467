// The interfaces of the machine and who is seen at them.
#pragma once

#include <map>
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
};

class NetworkTable {
  public:
    /// Takes one message over. Returns whether that changed what is known.
    bool Apply(const NetworkMessage& message);

    /// Forgets everything, before all is listed again.
    void Clear();

    /// The interface of this name; null when there is none.
    const Link* FindLink(std::string_view name) const;

    std::vector<Sighting> Sightings() const;

  private:
    /// The interface, and the IP address or, in a forwarding table, the hardware address.
    using NeighbourKey = std::pair<int, std::string>;

    bool Take(const Link& link);
    bool Take(const LinkGone& gone);
    bool Take(const Neighbour& neighbour);
    static bool Take(const ListComplete& complete);

    std::map<int, Link> links;
    std::map<NeighbourKey, MacAddress> neighbours;
};

}  // namespace binding
