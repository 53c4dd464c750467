#include "bindings/linux/modem/tables/account_status.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <vector>

#include "bindings/linux/bus/tree.h"
#include "platform/sysint.h"

namespace binding {

namespace {

using nlohmann::json;
using Bytes = std::span<const std::uint8_t>;

// 3GPP TS 24.008, 10.5.6.3.
constexpr std::uint8_t kElementIdentifier = 0x27;
constexpr std::uint8_t kExtensionBit = 0x80;
/// Container for the operator's own use: its network, and then what it likes.
constexpr unsigned kOperatorContainer = 0xFF00;

/// An information element of type 4 has at most 255 bytes of content.
constexpr std::size_t kMostBytes = 257;

/// The carriers that tell of accounts do so with one byte after the number of their network.
struct Meaning {
    std::uint8_t byte;
    int status;
};
constexpr std::array kMeanings = {
    Meaning{0, 0},
    Meaning{2, SYS_ACCOUNT_RESTRICTED},
    Meaning{3, SYS_ACCOUNT_OUT_OF_CREDIT},
    Meaning{5, SYS_ACCOUNT_NOT_ACTIVE},
};

std::vector<std::uint8_t> BytesOf(const json& list) {
    std::vector<std::uint8_t> bytes;
    if (!list.is_array() || list.size() > kMostBytes) {
        return bytes;
    }
    for (const json& element : list) {
        const auto number = Integer(element);
        if (!number || *number < 0 || *number > UINT8_MAX) {
            return {};
        }
        bytes.push_back(static_cast<std::uint8_t>(*number));
    }
    return bytes;
}

/// Whether the IMSI begins with the network @p coded: two digits in a byte, the lower half first,
/// and 0xF in place of a third digit of the MNC (3GPP TS 24.008, 10.5.1.13).
bool IsNetworkOf(Bytes coded, std::string_view imsi) {
    constexpr std::uint8_t kHalf = 0x0F;
    constexpr std::uint8_t kNoDigit = 0x0F;
    const auto low = [&](std::size_t index) { return coded[index] & kHalf; };
    const auto high = [&](std::size_t index) { return coded[index] >> 4; };
    const std::array<int, 6> digits = {low(0), high(0), low(1), low(2), high(2), high(1)};
    const std::size_t count = digits.back() == kNoDigit ? digits.size() - 1 : digits.size();
    if (imsi.size() < count) {
        return false;
    }
    for (std::size_t index = 0; index < count; ++index) {
        if (imsi[index] - '0' != digits.at(index)) {
            return false;
        }
    }
    return true;
}

std::optional<int> StatusIn(Bytes content, std::string_view imsi) {
    constexpr std::size_t kNetworkBytes = 3;
    if (content.size() != kNetworkBytes + 1 || !IsNetworkOf(content.first(kNetworkBytes), imsi)) {
        return std::nullopt;
    }
    for (const Meaning& meaning : kMeanings) {
        if (meaning.byte == content.back()) {
            return meaning.status;
        }
    }
    return std::nullopt;
}

/// What follows the configuration protocol, with which complete options begin. Some modems deliver
/// the identifier and the length of the element before it.
Bytes Containers(Bytes element, bool isComplete) {
    if (!isComplete) {
        return element;
    }
    if (element.size() >= 2 && element[0] == kElementIdentifier &&
        element[1] == element.size() - 2) {
        element = element.subspan(2);
    }
    return element.empty() || (element[0] & kExtensionBit) == 0 ? Bytes() : element.subspan(1);
}

std::optional<int> StatusInContainers(Bytes rest, std::string_view imsi) {
    constexpr std::size_t kHead = 3;
    while (rest.size() >= kHead) {
        const unsigned identifier = rest[0] * 0x100U + rest[1];
        const std::size_t length = rest[2];
        rest = rest.subspan(kHead);
        if (length > rest.size()) {
            break;
        }
        if (identifier == kOperatorContainer) {
            if (const auto status = StatusIn(rest.first(length), imsi)) {
                return status;
            }
        }
        rest = rest.subspan(length);
    }
    return std::nullopt;
}

}  // namespace

std::optional<int> AccountStatusOf(const json& list, std::string_view imsi) {
    if (!list.is_array()) {
        return std::nullopt;
    }
    for (const json& entry : list) {
        constexpr std::size_t kMembers = 3;
        if (!entry.is_array() || entry.size() != kMembers || !entry[1].is_boolean()) {
            continue;
        }
        const std::vector<std::uint8_t> bytes = BytesOf(entry[2]);
        const Bytes containers = Containers(bytes, entry[1].get<bool>());
        if (const auto status = StatusInContainers(containers, imsi)) {
            return status;
        }
    }
    return std::nullopt;
}

}  // namespace binding
