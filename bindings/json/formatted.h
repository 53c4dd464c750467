// JSON as text that people can read.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace binding {

/// @p value as text: on one line where that fits, otherwise with one member or element per line,
/// indented by four spaces per level. It begins at column @p column of a line whose own indentation
/// is that of @p level. Throws nlohmann::json::type_error for a text that is not UTF-8.
std::string Formatted(const nlohmann::ordered_json& value, std::size_t level = 0,
                      std::size_t column = 0);

/// The column at which the value of a member @p name begins on a line of its own at @p level.
std::size_t ColumnOfMember(const std::string& name, std::size_t level);

}  // namespace binding
