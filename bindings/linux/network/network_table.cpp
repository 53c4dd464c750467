#include "bindings/linux/network/network_table.h"

#include <algorithm>
#include <utility>

namespace binding {

namespace {

constexpr std::size_t kMostLinks = 1024;
/// The kernel tells how long a device has been quiet in parts of a second, which are left out.
constexpr std::chrono::seconds kRounding{1};

/// Whether a device was heard of in between.
bool IsHeardOf(const NetworkTable::Time& before, const NetworkTable::Time& now) {
    return now - before > kRounding;
}

}  // namespace

bool NetworkTable::Apply(const NetworkMessage& message, Time now) {
    return std::visit([this, now](const auto& kind) { return this->Take(kind, now); }, message);
}

const Link* NetworkTable::FindLink(std::string_view name) const {
    const auto found = std::find_if(links.begin(), links.end(),
                                    [&](const auto& entry) { return entry.second.name == name; });
    return found == links.end() ? nullptr : &found->second;
}

std::vector<Sighting> NetworkTable::Sightings(Time now) const {
    std::vector<Sighting> sightings;
    for (const auto& [key, known] : neighbours) {
        const auto link = links.find(key.first);
        if (link != links.end()) {
            const bool forwarding = MacIn(key.second).has_value();
            Sighting& sighting = sightings.emplace_back();
            sighting = {link->second.name, known.mac, forwarding ? "" : key.second, forwarding};
            if (known.quietSince) {
                sighting.quiet =
                    std::chrono::duration_cast<std::chrono::seconds>(now - *known.quietSince);
            }
        }
    }
    return sightings;
}

bool NetworkTable::Take(const Link& link, Time /*now*/) {
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

bool NetworkTable::Take(const LinkGone& gone, Time /*now*/) {
    const auto first = neighbours.lower_bound({gone.index, ""});
    const auto last = std::find_if(first, neighbours.end(), [&](const auto& entry) {
        return entry.first.first != gone.index;
    });
    neighbours.erase(first, last);
    return links.erase(gone.index) > 0;
}

bool NetworkTable::Take(const Neighbour& neighbour, Time now) {
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
    Known known{.mac = neighbour.mac, .quietSince = std::nullopt};
    if (neighbour.quiet) {
        known.quietSince = now - *neighbour.quiet;
    }
    if (found == neighbours.end()) {
        leavesOut = leavesOut || neighbours.size() >= kMostNeighbours;
        return neighbours.size() < kMostNeighbours && neighbours.emplace(key, known).second;
    }
    const Known before = std::exchange(found->second, known);
    if (before.mac != known.mac) {
        return true;
    }
    if (neighbour.asked) {
        // Whether it is there will be known when it has answered, or has not.
        found->second.quietSince = before.quietSince;
        return false;
    }
    return before.quietSince.has_value() != known.quietSince.has_value() ||
           (known.quietSince && IsHeardOf(*before.quietSince, *known.quietSince));
}

bool NetworkTable::Take(const ListEnd& /*end*/, Time /*now*/) {
    return false;
}

}  // namespace binding
