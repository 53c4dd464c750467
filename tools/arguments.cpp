#include "tools/arguments.h"

#include <charconv>
#include <system_error>

std::optional<int> NumberIn(const std::string& text, Parameter::Range range) {
    int number = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    if (error != std::errc() || end != last || number < range.first || number > range.last) {
        return std::nullopt;
    }
    return number;
}
