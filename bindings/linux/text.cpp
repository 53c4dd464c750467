#include "bindings/linux/text.h"

#include <utf8.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace binding {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::size_t kMacLength = 17;

}  // namespace

std::string_view TakeLine(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return line;
}

std::string_view TakeWord(std::string_view& rest) {
    rest = Trimmed(rest);
    const std::size_t end = std::min(rest.find_first_of(kBlanks), rest.size());
    const std::string_view word = rest.substr(0, end);
    rest = Trimmed(rest.substr(end));
    return word;
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string Printable(std::string_view text, std::size_t limit) {
    // Each byte that is no UTF-8 becomes one byte, so no character is longer than it was.
    const std::string_view part = text.substr(0, limit);
    std::string valid;
    utf8::replace_invalid(part.begin(), part.end(), std::back_inserter(valid), '?');
    std::replace_if(
        valid.begin(), valid.end(),
        [](char byte) {
            const auto value = static_cast<unsigned char>(byte);
            return value < ' ' || value == 0x7f;
        },
        '?');
    return valid;
}

std::optional<MacAddress> MacIn(std::string_view text) {
    if (text.size() != kMacLength) {
        return std::nullopt;
    }
    MacAddress address = 0;
    for (std::size_t at = 0; at < kMacLength; at += 3) {
        std::uint8_t byte = 0;
        const char* pair = text.data() + at;
        const auto [stop, error] = std::from_chars(pair, pair + 2, byte, 16);
        const bool ended = at + 2 == kMacLength || text[at + 2] == ':';
        if (error != std::errc() || stop != pair + 2 || !ended) {
            return std::nullopt;
        }
        address = address << 8U | byte;
    }
    return address;
}

std::string MacText(MacAddress address) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (unsigned int shift = 48; shift > 0; shift -= 8) {
        const auto byte = static_cast<unsigned int>(address >> (shift - 8) & 0xffU);
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 0xfU];
        text += ':';
    }
    text.pop_back();
    return text;
}

}  // namespace binding
