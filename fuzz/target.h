// What a fuzz target is made of. The same file runs under libFuzzer, which makes up inputs, and in
// the replay program, which reads them from files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Runs the code under test on one input. Returns 0; whatever is wrong ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the process as a crash does when @p rule has not held. @p evidence is printed.
void Require(bool held, std::string_view rule, std::string_view evidence = "");

/// The input as text.
std::string InputText(const std::uint8_t* data, std::size_t size);

/// The lines of @p text, without their line feeds.
std::vector<std::string_view> LinesOf(std::string_view text);

/// Takes what stands before the first @p separator away from the front of @p text, and the
/// separator too; all of it when there is none.
std::string_view TakeUntil(std::string_view& text, char separator);

/// The bytes that @p text names: \n is a line feed, \xHH the byte of these two hexadecimal digits,
/// anything else itself.
std::string Unescaped(std::string_view text);

/// The decimal integer that @p text begins with, clamped; 0 when it begins with something else.
std::int64_t Integer(std::string_view text);
