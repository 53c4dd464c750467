// Who is connected, from all that know something of it.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bindings/linux/network/hostapd_reply.h"
#include "bindings/linux/network/leases.h"
#include "bindings/linux/network/network_table.h"
#include "platform/sysint.h"

namespace binding {

/// A connected client.
struct Client {
    MacAddress mac = 0;
    sys_connection_kind_e kind = SYS_CONNECTION_WIFI;
    std::string address;  ///< empty when unknown
    std::string name;     ///< empty when unknown
};

/// What the interfaces of the machine are there for.
struct ClientInterfaces {
    std::string bridge;
    /// Each is a port of the bridge or has a network of its own.
    std::vector<std::string> ethernet;
    std::vector<std::string> usb;  ///< networks over USB
    std::vector<std::string> wifi;
    std::vector<std::string> guestWifi;
};

/// What is known of clients.
struct ClientSightings {
    std::vector<Lease> leases;
    std::vector<Sighting> neighbours;
    std::vector<Station> stations;       ///< of the main Wi-Fi
    std::vector<Station> guestStations;  ///< of the guest Wi-Fi
    /// Interfaces whose hostapd has told its stations. Nobody else is connected there, even if the
    /// kernel still remembers the address of one that has left.
    std::vector<std::string> told;
    /// For how long a neighbour counts that has been quiet, and that the kernel has not asked for
    /// since. Who sleeps stays for a while, and who has left does not stay for ever: the kernel
    /// itself would drop such a neighbour only when it has many of them.
    std::chrono::seconds quietLimit{300};
};

struct ClientList {
    /// Each once, in the order of their hardware addresses; at most kMostClients.
    std::vector<Client> clients;
    bool isCut = false;  ///< whether there are more
};

/// The connected clients. A lease does not
/// make a client, because it outlasts the connection; it tells name and address of one.
ClientList JoinClients(const ClientSightings& seen, const ClientInterfaces& interfaces,
                       std::int64_t now);

/// In what time the next quiet neighbour stops being a client; nothing if none will.
std::optional<std::chrono::seconds> NextDeparture(const ClientSightings& seen,
                                                  const ClientInterfaces& interfaces);

/// The records that sys_getConnectedDeviceList answers.
std::vector<sys_connected_device_t> ClientRecords(const std::vector<Client>& clients);

}  // namespace binding
