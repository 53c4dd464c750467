// Reading lists and numbers of trees; what is missing or of another type is not told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace binding {

/// Element @p index of the list @p name of @p object; null without one.
const nlohmann::json& Element(const nlohmann::json& object, const char* name, std::size_t index);

/// The texts in the list @p name of @p object, such as paths of objects.
std::vector<std::string> Texts(const nlohmann::json& object, const char* name);

std::optional<std::string> NonEmptyText(const nlohmann::json& object, const char* name);

/// Whether @p text is one or more decimal digits.
bool IsDigits(std::string_view text);

}  // namespace binding
