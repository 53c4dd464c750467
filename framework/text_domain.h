#pragma once

#include <libintl.h>

#include <string>

/// gettext domain of every text for the user.
constexpr const char* kTextDomain = "webui";

/// Text of the message @p id in the language of the request; @p id itself when the catalogue has
/// none. The empty id is the empty text.
inline std::string Translated(const char* id) {
    // gettext would translate the empty id to the header of the catalogue.
    return *id == '\0' ? "" : dgettext(kTextDomain, id);
}
