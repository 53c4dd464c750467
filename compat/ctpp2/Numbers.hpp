#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

// Conversions between numbers and text; none depends on the locale.
namespace CTPP {

void AppendInteger(std::int64_t value, std::string& out);

/// As printf's "%.12G" writes it in the C locale.
void AppendReal(double value, std::string& out);

/// The value without its fraction; clamped to the range of the result, 0 for NaN.
std::int64_t Truncate(double value);

/// The number that a text stands for. Digits with an optional sign, and the empty text, are an
/// integer, clamped to its range. Any other text is a real, which is 0 unless the whole text is a
/// decimal number. A text that has more characters after a complete exponent is neither.
std::variant<std::monostate, std::int64_t, double> ParseNumber(std::string_view text);

/// Tells whether the text may stand in JSON as a number.
bool IsJSONNumber(std::string_view text);

}  // namespace CTPP
