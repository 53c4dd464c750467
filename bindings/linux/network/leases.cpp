#include "bindings/linux/network/leases.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <utf8.h>

#include <algorithm>
#include <array>
#include <optional>

namespace binding {

namespace {

bool IsAddress(int family, const std::string& text) {
    std::array<std::byte, sizeof(in6_addr)> address{};
    return inet_pton(family, text.c_str(), address.data()) == 1;
}

/// Whether people can read all of @p name.
bool IsPlain(std::string_view name) {
    return utf8::is_valid(name.begin(), name.end()) &&
           std::none_of(name.begin(), name.end(), [](char byte) {
               return static_cast<unsigned char>(byte) < ' ' || byte == '\x7f';
           });
}

/// What has been read of a line.
struct Line {
    std::optional<Lease> lease;
    const char* problem = nullptr;  ///< null when nothing is wrong
};

Line Wrong(const char* problem) {
    return {.lease = std::nullopt, .problem = problem};
}

/// Fields of a line: expiry, hardware address, address, name ("*" without one), client identifier.
/// The identifier may be missing: nobody reads it. With DHCPv6, there are a line with the server's
/// own identifier and, in a lease, another number in place of the hardware address.
Line ParseLine(std::string_view line) {
    const std::string_view first = TakeWord(line);
    if (first.empty() || first == "duid") {
        return {};
    }
    const auto expiry = NumberIn<std::int64_t>(first);
    if (!expiry || *expiry < 0) {
        return Wrong("the time at which the lease ends is none");
    }
    const auto mac = MacIn(TakeWord(line));
    const std::string address(TakeWord(line));
    const std::string_view name = TakeWord(line);
    if (IsAddress(AF_INET6, address)) {
        return {};
    }
    if (!mac) {
        return Wrong("the hardware address is none");
    }
    if (!IsAddress(AF_INET, address)) {
        return Wrong("the address is none");
    }
    if (name.empty()) {
        return Wrong("the name is missing");
    }
    return {.lease = Lease{*expiry, *mac, address, name == "*" ? "" : Printable(name)},
            .problem = IsPlain(name) ? nullptr : "the name is not plain UTF-8"};
}

/// Tells the first problem, and how many lines have one.
class Problems {
  public:
    void Add(std::size_t line, const char* what) {
        if (++count == 1) {
            first = "line " + std::to_string(line) + ": " + what;
        }
    }

    std::string Text() const {
        return count < 2 ? first : first + " (" + std::to_string(count) + " lines are wrong)";
    }

  private:
    std::string first;
    std::size_t count = 0;
};

}  // namespace

LeaseFile ParseLeases(std::string_view text) {
    LeaseFile file;
    Problems problems;
    for (std::size_t number = 1; !text.empty(); ++number) {
        if (text.find('\n') == std::string_view::npos) {
            problems.Add(number, "it is cut");
            break;
        }
        if (file.leases.size() == kMostClients) {
            problems.Add(number, "it and those after it are too many");
            break;
        }
        Line line = ParseLine(TakeLine(text));
        if (line.problem != nullptr) {
            problems.Add(number, line.problem);
        }
        if (line.lease) {
            file.leases.push_back(std::move(*line.lease));
        }
    }
    file.problem = problems.Text();
    return file;
}

}  // namespace binding
