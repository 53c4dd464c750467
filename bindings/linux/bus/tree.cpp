#include "bindings/linux/bus/tree.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

namespace binding {

using nlohmann::json;

const json& Member(const json& object, std::string_view name) {
    static const json nothing;
    const auto found = object.is_object() ? object.find(name) : object.end();
    return found == object.end() ? nothing : *found;
}

std::optional<std::int64_t> Integer(const json& value) {
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const bool fits = value.is_number_unsigned() ? value.get<std::uint64_t>() <= kMost
                                                 : value.is_number_integer();
    return fits ? std::optional(value.get<std::int64_t>()) : std::nullopt;
}

std::optional<std::int64_t> Number(const json& object, std::string_view name) {
    return Integer(Member(object, name));
}

std::optional<double> Real(const json& object, std::string_view name) {
    const json& value = Member(object, name);
    if (!value.is_number()) {
        return std::nullopt;
    }
    const auto number = value.get<double>();
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<bool> Boolean(const json& object, std::string_view name) {
    const json& value = Member(object, name);
    return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
}

std::optional<std::string> Text(const json& object, std::string_view name) {
    const json& value = Member(object, name);
    return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

}  // namespace binding
