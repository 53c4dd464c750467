// The addresses that dnsmasq has given to clients.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "bindings/linux/text.h"

namespace binding {

struct Lease {
    std::int64_t expiry = 0;  ///< seconds since the epoch; 0 when it never ends
    MacAddress mac = 0;
    std::string address;
    std::string name;  ///< empty when the client gave none
};

struct LeaseFile {
    std::vector<Lease> leases;
    /// The first line that is wrong, and why, for people; empty when none is.
    std::string problem;
};

/// The IPv4 leases of dnsmasq's lease file. Lines that are none are left out, and so is a last line
/// without a line feed: dnsmasq is still writing it, and an address that is cut is another one.
/// Blank lines, and those of DHCPv6, are not wrong.
LeaseFile ParseLeases(std::string_view text);

}  // namespace binding
