// Texts of the catalogue with numbered placeholders: %1, %2 and so on.
#pragma once

#include <span>
#include <string>

/// Replaces %1 in @p text by the first of @p arguments, then %2 by the second and so on up to
/// @p count, as far as there are arguments; a null argument counts as an empty one. An inserted
/// argument is searched for the placeholders that are replaced after its own, but not for its own
/// or earlier ones. There is no way to write a literal "%1". Returns a copy of the changed @p text.
std::string FormatPoString(int count, std::string& text, std::span<const char* const> arguments);

/// The same with each argument, a terminated text, given separately.
template <typename... Arguments>
std::string FormatPoString(int count, std::string& text, const Arguments*... arguments) {
    const char* const list[] = {arguments..., nullptr};
    return FormatPoString(count, text, std::span(list, sizeof...(arguments)));
}
