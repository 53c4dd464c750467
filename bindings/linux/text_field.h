// Texts of daemons in the fixed fields of the SDK's records.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace binding {

/// @p text up to its first zero byte, with replacement characters for what is no UTF-8, cut at the
/// end of a character so that it has at most @p size bytes.
std::string FittingText(std::string_view text, std::size_t size);

/// Puts @p text into a field, and zeros behind it.
template <std::size_t Size>
void PutText(char (&field)[Size], std::string_view text) {
    const std::string fitting = FittingText(text, Size - 1);
    std::fill(std::copy(fitting.begin(), fitting.end(), field), field + Size, '\0');
}

}  // namespace binding
