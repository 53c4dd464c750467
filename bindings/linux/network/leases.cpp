#include "bindings/linux/network/leases.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <optional>

namespace binding {

namespace {

bool IsAddress(const std::string& text) {
    in_addr address{};
    return inet_pton(AF_INET, text.c_str(), &address) == 1;
}

/// Fields of a line: expiry, hardware address, address, name ("*" without one), client identifier.
/// The identifier may be missing: nobody reads it.
std::optional<Lease> ParseLease(std::string_view line) {
    const auto expiry = NumberIn<std::int64_t>(TakeWord(line));
    const auto mac = MacIn(TakeWord(line));
    const std::string address(TakeWord(line));
    const std::string_view name = TakeWord(line);
    if (!expiry || *expiry < 0 || !mac || name.empty() || !IsAddress(address)) {
        return std::nullopt;
    }
    return Lease{*expiry, *mac, address, name == "*" ? "" : Printable(name)};
}

}  // namespace

std::vector<Lease> ParseLeases(std::string_view text) {
    std::vector<Lease> leases;
    while (text.find('\n') != std::string_view::npos && leases.size() < kMostClients) {
        if (auto lease = ParseLease(TakeLine(text))) {
            leases.push_back(std::move(*lease));
        }
    }
    return leases;
}

}  // namespace binding
