// Leases of dnsmasq. The input is the lease file.
#include "bindings/linux/network/leases.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <utf8.h>

#include "bindings/linux/network/client_list.h"
#include "fuzz/target.h"

namespace {

constexpr std::int64_t kNow = 1'795'356'060;

void CheckLease(const binding::Lease& lease) {
    in_addr address{};
    Require(lease.expiry >= 0, "a lease does not end before the epoch");
    Require(inet_pton(AF_INET, lease.address.c_str(), &address) == 1, "an address is one",
            lease.address);
    Require(utf8::is_valid(lease.name.begin(), lease.name.end()), "a name is UTF-8", lease.name);
    Require(lease.name.size() <= 64, "a name is short", lease.name);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = InputText(data, size);
    const auto leases = binding::ParseLeases(text).leases;
    Require(leases.size() <= binding::kMostClients, "leases are limited");
    for (const binding::Lease& lease : leases) {
        CheckLease(lease);
    }
    const std::string whole = text.substr(0, text.rfind('\n') + 1);
    Require(binding::ParseLeases(whole).leases.size() == leases.size(),
            "a last line that is cut is no lease", text);

    binding::ClientSightings seen;
    seen.leases = leases;
    Require(binding::JoinClients(seen, {}, kNow).clients.empty(), "a lease is no client");
    for (const binding::Lease& lease : leases) {
        seen.stations.push_back({.mac = lease.mac});
    }
    const auto clients = binding::JoinClients(seen, {}, kNow).clients;
    for (std::size_t index = 1; index < clients.size(); ++index) {
        Require(clients[index - 1].mac < clients[index].mac, "a client is listed once");
    }
    return 0;
}
