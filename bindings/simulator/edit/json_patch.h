// Writing a changed document so that people can still read it.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace binding {

/// @p value as text: on one line where that fits, otherwise with one member or element per line,
/// indented by four spaces per level. It begins at column @p column of a line whose own indentation
/// is that of @p level.
std::string Formatted(const nlohmann::ordered_json& value, std::size_t level = 0,
                      std::size_t column = 0);

/// The text @p text of the document @p before, changed to that of @p after. Only values that differ
/// are written again.
std::string Patched(const std::string& text, const nlohmann::ordered_json& before,
                    const nlohmann::ordered_json& after);

}  // namespace binding
