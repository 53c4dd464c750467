#pragma once

#include <libintl.h>

#include <string>

/// gettext domain of every text for the user.
constexpr const char* kTextDomain = "webui";

/// Text of the message @p id in the language of the request; @p id itself when the catalogue has
/// none.
inline std::string Translated(const char* id) {
    return dgettext(kTextDomain, id);
}
