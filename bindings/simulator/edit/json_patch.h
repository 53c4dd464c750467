// Writing a changed document so that people can still read it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace binding {

/// The text @p text of the document @p before, changed to that of @p after. Only values that differ
/// are written again.
std::string Patched(const std::string& text, const nlohmann::ordered_json& before,
                    const nlohmann::ordered_json& after);

}  // namespace binding
