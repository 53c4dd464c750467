// Answers of the platform as JSON. A record is an object whose members have the names of its
// fields. A value of an enumeration is {"value": 7, "name": "ready"}. If the value has no name,
// that is null, and "explanation" says which values have names.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>

#include "bindings/names/enumerations.h"

using Json = nlohmann::ordered_json;

/// Writes @p value for people to read. Bytes that are not UTF-8 become replacement characters.
void WriteJson(std::ostream& out, const Json& value);

/// @p value with its name, as an object.
Json Named(std::int64_t value, binding::Enumeration names);

/// @p bytes as hexadecimal digits.
std::string HexText(std::span<const std::uint8_t> bytes);
