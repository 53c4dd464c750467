#include "bindings/linux/network/client_list.h"

#include <algorithm>
#include <map>
#include <utility>

namespace binding {

namespace {

struct ClientMap {
    std::map<MacAddress, Client> clients;
    bool isCut = false;
};

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// How a client that is seen at @p interface is connected; nothing when it is none of ours.
std::optional<sys_connection_kind_e> KindAt(const std::string& interface,
                                            const ClientInterfaces& interfaces) {
    if (Contains(interfaces.guestWifi, interface)) {
        return SYS_CONNECTION_GUEST_WIFI;
    }
    if (Contains(interfaces.wifi, interface)) {
        return SYS_CONNECTION_WIFI;
    }
    if (Contains(interfaces.ethernet, interface)) {
        return SYS_CONNECTION_WIRED_A;
    }
    if (Contains(interfaces.usb, interface)) {
        return SYS_CONNECTION_WIRED_B;
    }
    return std::nullopt;
}

void Add(ClientMap& map, MacAddress mac, sys_connection_kind_e kind) {
    if (map.clients.size() < kMostClients) {
        map.clients.try_emplace(mac, Client{mac, kind, {}, {}});
    } else if (!map.clients.contains(mac)) {
        map.isCut = true;
    }
}

void AddStations(ClientMap& map, const std::vector<Station>& stations, sys_connection_kind_e kind) {
    for (const Station& station : stations) {
        if (station.authorized) {
            Add(map, station.mac, kind);
        }
    }
}

/// Whether it has been quiet for so long that it counts as gone.
bool IsSilent(const Sighting& neighbour, const ClientSightings& seen) {
    return neighbour.quiet && *neighbour.quiet >= seen.quietLimit;
}

void AddAddress(Client& client, const std::string& address) {
    // People know a client by its IPv4 address; those of IPv6 are many and change.
    const bool isFirst = client.address.empty();
    const bool isBetter = client.address.find(':') != std::string::npos &&
                          address.find(':') == std::string::npos && !address.empty();
    if (isFirst || isBetter) {
        client.address = address;
    }
}

}  // namespace

ClientList JoinClients(const ClientSightings& seen, const ClientInterfaces& interfaces,
                       std::int64_t now) {
    ClientMap map;
    auto& clients = map.clients;
    AddStations(map, seen.stations, SYS_CONNECTION_WIFI);
    AddStations(map, seen.guestStations, SYS_CONNECTION_GUEST_WIFI);
    for (const Sighting& neighbour : seen.neighbours) {
        // The bridge as a whole does not tell how a client is connected; its ports do.
        const auto kind = KindAt(neighbour.interface, interfaces);
        if (kind && !IsSilent(neighbour, seen) && !Contains(seen.told, neighbour.interface)) {
            Add(map, neighbour.mac, *kind);
        }
    }
    for (const Sighting& neighbour : seen.neighbours) {
        const auto client = clients.find(neighbour.mac);
        const bool isOurs = neighbour.interface == interfaces.bridge ||
                            KindAt(neighbour.interface, interfaces).has_value();
        if (client != clients.end() && isOurs) {
            AddAddress(client->second, neighbour.address);
        }
    }
    for (const Lease& lease : seen.leases) {
        const auto client = clients.find(lease.mac);
        if (client != clients.end() && (lease.expiry == 0 || lease.expiry > now)) {
            client->second.address = lease.address;
            client->second.name = lease.name;
        }
    }
    ClientList list{.clients = {}, .isCut = map.isCut};
    list.clients.reserve(clients.size());
    for (auto& [mac, client] : clients) {
        list.clients.push_back(std::move(client));
    }
    return list;
}

std::optional<std::chrono::seconds> NextDeparture(const ClientSightings& seen,
                                                  const ClientInterfaces& interfaces) {
    std::optional<std::chrono::seconds> next;
    for (const Sighting& neighbour : seen.neighbours) {
        if (neighbour.quiet && !IsSilent(neighbour, seen) &&
            KindAt(neighbour.interface, interfaces)) {
            const auto left = seen.quietLimit - *neighbour.quiet;
            next = next ? std::min(*next, left) : left;
        }
    }
    return next;
}

std::vector<sys_connected_device_t> ClientRecords(const std::vector<Client>& clients) {
    std::vector<sys_connected_device_t> records(clients.size());
    std::transform(clients.begin(), clients.end(), records.begin(), [](const Client& client) {
        sys_connected_device_t record{};
        record.connectionKind = client.kind;
        return record;
    });
    return records;
}

}  // namespace binding
