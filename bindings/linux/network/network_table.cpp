#include "bindings/linux/network/network_table.h"

#include <algorithm>

namespace binding {

namespace {

constexpr std::size_t kMostLinks = 1024;

}  // namespace

bool NetworkTable::Apply(const NetworkMessage& message) {
    return std::visit([this](const auto& kind) { return this->Take(kind); }, message);
}

void NetworkTable::Clear() {
    links.clear();
    neighbours.clear();
}

const Link* NetworkTable::FindLink(std::string_view name) const {
    const auto found = std::find_if(links.begin(), links.end(),
                                    [&](const auto& entry) { return entry.second.name == name; });
    return found == links.end() ? nullptr : &found->second;
}

std::vector<Sighting> NetworkTable::Sightings() const {
    std::vector<Sighting> sightings;
    for (const auto& [key, mac] : neighbours) {
        const auto link = links.find(key.first);
        if (link != links.end()) {
            const bool forwarding = MacIn(key.second).has_value();
            sightings.push_back({link->second.name, mac, forwarding ? "" : key.second, forwarding});
        }
    }
    return sightings;
}

bool NetworkTable::Take(const Link& link) {
    const auto found = links.find(link.index);
    if (found == links.end()) {
        return links.size() < kMostLinks && links.emplace(link.index, link).second;
    }
    Link& known = found->second;
    const bool same =
        known.name == link.name && known.up == link.up && known.carrier == link.carrier;
    known = link;
    return !same;
}

bool NetworkTable::Take(const LinkGone& gone) {
    const auto first = neighbours.lower_bound({gone.index, ""});
    const auto last = std::find_if(first, neighbours.end(), [&](const auto& entry) {
        return entry.first.first != gone.index;
    });
    neighbours.erase(first, last);
    return links.erase(gone.index) > 0;
}

bool NetworkTable::Take(const Neighbour& neighbour) {
    const NeighbourKey key(neighbour.index,
                           neighbour.forwarding ? MacText(neighbour.mac) : neighbour.address);
    const auto found = neighbours.find(key);
    if (!neighbour.present) {
        if (found == neighbours.end()) {
            return false;
        }
        neighbours.erase(found);
        return true;
    }
    if (found == neighbours.end()) {
        return neighbours.size() < kMostClients && neighbours.emplace(key, neighbour.mac).second;
    }
    const bool same = found->second == neighbour.mac;
    found->second = neighbour.mac;
    return !same;
}

bool NetworkTable::Take(const ListComplete& /*complete*/) {
    return false;
}

}  // namespace binding
