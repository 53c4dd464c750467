// Reading texts that other programs wrote. Nothing here throws on bad input.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace binding {

/// How many clients, stations, neighbours or leases are kept; whatever is beyond is dropped, so
/// that a daemon which goes wrong cannot fill the memory.
constexpr std::size_t kMostClients = 10000;

/// Removes the first line of @p rest, and its line feed, and returns the line without it.
std::string_view TakeLine(std::string_view& rest);

/// Removes the first word of @p rest, and the blanks around it, and returns the word; empty when
/// there is none.
std::string_view TakeWord(std::string_view& rest);

/// @p text without the blanks and line feeds around it.
std::string_view Trimmed(std::string_view text);

/// At most @p limit bytes of @p text as valid UTF-8 without control characters. What is neither is
/// replaced by "?".
std::string Printable(std::string_view text, std::size_t limit = 64);

/// The number that the whole of @p text is; nothing when it is none or does not fit.
template <typename T>
std::optional<T> NumberIn(std::string_view text) {
    T number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return number;
}

/// A hardware address in the lower 48 bits.
using MacAddress = std::uint64_t;

/// The address that the whole of @p text is, such as "02:11:22:aa:BB:cc".
std::optional<MacAddress> MacIn(std::string_view text);

/// The address in lower case.
std::string MacText(MacAddress address);

}  // namespace binding
