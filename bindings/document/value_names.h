// Names that a document may have in place of numbers.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>

#include "bindings/names/enumerations.h"
#include "bindings/posix/json/json_text.h"

namespace binding {

/// The names for the number at @p path, which is an answer, a field of one, or the code of a
/// failure; empty when its values have no names.
Enumeration NamesAt(const KeyPath& path);

/// The number that @p value stands for at @p path: itself, or what a name there means. Nothing for
/// any other value.
std::optional<std::int64_t> NumberAt(const KeyPath& path, const nlohmann::ordered_json& value);

}  // namespace binding
