// Helpers for fuzz targets. The same target runs under libFuzzer, which generates inputs, and in
// the replay program, which reads them from files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Runs the code under test on one input. Returns 0; any fault ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// If the rule does not hold (@p held is false), prints @p rule and @p evidence and ends the
/// process like a crash.
void Require(bool held, std::string_view rule, std::string_view evidence = "");

/// The input as text.
std::string InputText(const std::uint8_t* data, std::size_t size);

/// The lines of @p text, without their line feeds.
std::vector<std::string_view> LinesOf(std::string_view text);

/// Removes the part of @p text before the first @p separator, and the separator, and returns the
/// part. If there is no separator, the part is the whole text.
std::string_view TakeUntil(std::string_view& text, char separator);

/// @p text with its escapes replaced: \n by a line feed, \xHH by the byte with these two
/// hexadecimal digits.
std::string Unescaped(std::string_view text);

/// The decimal integer at the beginning of @p text, clamped to its type; 0 when there is none.
std::int64_t Integer(std::string_view text);
