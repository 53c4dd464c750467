#include "tools/arguments.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <system_error>

std::optional<std::int64_t> NumberIn(const std::string& text, Parameter::Range range) {
    std::int64_t number = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    if (error != std::errc() || end != last || number < range.first || number > range.last) {
        return std::nullopt;
    }
    return number;
}

const Argument& Arguments::Named(const std::string& name) const {
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Argument& one) { return one.name == name; });
    if (found == all.end()) {
        throw std::logic_error("the command does not take " + name);
    }
    return *found;
}
