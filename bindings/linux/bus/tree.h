// Reading trees that other programs have sent: a value that is missing or of another type is not
// told.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace binding {

/// The member @p name of @p object; null when there is none, and when @p object is no object.
const nlohmann::json& Member(const nlohmann::json& object, std::string_view name);

/// The integer that @p value is.
std::optional<std::int64_t> Integer(const nlohmann::json& value);

std::optional<std::int64_t> Number(const nlohmann::json& object, std::string_view name);
std::optional<double> Real(const nlohmann::json& object, std::string_view name);
std::optional<bool> Boolean(const nlohmann::json& object, std::string_view name);
std::optional<std::string> Text(const nlohmann::json& object, std::string_view name);

}  // namespace binding
