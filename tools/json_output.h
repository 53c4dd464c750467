// Answers of the platform as JSON: records are objects with the names of their fields, a number of
// an enumeration is {"value": 7, "name": "ready"}, with the name null when it has none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>

#include "tools/enumerations.h"

using Json = nlohmann::ordered_json;

/// Writes @p value for people to read. Bytes that are no UTF-8 come out as replacement characters.
void WriteJson(std::ostream& out, const Json& value);

/// @p value with its name.
Json Named(std::int64_t value, Enumeration names);

/// @p bytes as hexadecimal digits.
std::string HexText(std::span<const std::uint8_t> bytes);

/// Text of a field: up to its terminator or, without one, to the end of the field.
template <std::size_t Size>
std::string FieldText(const char (&field)[Size]) {
    return {field, strnlen(field, Size)};
}
