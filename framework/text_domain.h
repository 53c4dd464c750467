#pragma once

#include <string>
#include <string_view>

/// gettext domain of every text for the user.
constexpr const char* kTextDomain = "webui";

/// Text of the message @p id in the language of the request; @p id itself when the catalogue has
/// none. The empty id is the empty text. Only for the main thread.
std::string Translated(std::string_view id);

/// Appends the same to @p text.
void AppendTranslated(std::string& text, std::string_view id);
