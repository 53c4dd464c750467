#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

/// Text of a fixed-size field of a platform record: up to its terminator or, if it has none, to the
/// end of the field.
template <std::size_t Size>
std::string FixedText(const char (&field)[Size]) {
    return {field, strnlen(field, Size)};
}

/// The same without a copy.
template <std::size_t Size>
std::string_view FixedTextView(const char (&field)[Size]) {
    return {field, strnlen(field, Size)};
}
