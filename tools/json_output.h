// Answers of the platform as JSON: records are objects with the names of their fields, a number of
// an enumeration is {"value": 7, "name": "ready"}, with the name null when it has none.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>

#include "tools/enumerations.h"

using Json = nlohmann::ordered_json;

/// Writes @p value for people to read. Bytes that are not UTF-8 become replacement characters.
void WriteJson(std::ostream& out, const Json& value);

/// @p value with its name.
Json Named(std::int64_t value, Enumeration names);

/// @p bytes as hexadecimal digits.
std::string HexText(std::span<const std::uint8_t> bytes);
