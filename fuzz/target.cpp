#include "fuzz/target.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

/// The byte that two hexadecimal digits stand for; -1 when @p digits are something else.
int HexByte(std::string_view digits) {
    int byte = -1;
    const char* const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, byte, 16);
    return digits.size() == 2 && result.ec == std::errc() && result.ptr == end ? byte : -1;
}

}  // namespace

void Require(bool held, std::string_view rule, std::string_view evidence) {
    if (held) {
        return;
    }
    (void)std::fprintf(stderr, "Not held: %.*s\n%.*s\n", static_cast<int>(rule.size()), rule.data(),
                       static_cast<int>(evidence.size()), evidence.data());
    std::abort();
}

std::string InputText(const std::uint8_t* data, std::size_t size) {
    return {data, data + size};
}

std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        lines.push_back(TakeUntil(text, '\n'));
    }
    return lines;
}

std::string_view TakeUntil(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return taken;
}

std::string Unescaped(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        std::size_t used = 1;
        char byte = text.front();
        if (text.starts_with("\\n")) {
            byte = '\n';
            used = 2;
        } else if (text.starts_with("\\x") && HexByte(text.substr(2, 2)) >= 0) {
            byte = static_cast<char>(HexByte(text.substr(2, 2)));
            used = 4;
        }
        bytes += byte;
        text.remove_prefix(used);
    }
    return bytes;
}

std::int64_t Integer(std::string_view text) {
    std::int64_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec == std::errc::result_out_of_range) {
        using Limits = std::numeric_limits<std::int64_t>;
        return text.front() == '-' ? Limits::min() : Limits::max();
    }
    return number;
}
