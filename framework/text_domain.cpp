#include "framework/text_domain.h"

#include <libintl.h>

std::string Translated(std::string_view id) {
    // gettext would translate the empty id to the header of the catalogue.
    if (id.empty()) {
        return "";
    }
    const std::string terminated(id);
    return dgettext(kTextDomain, terminated.c_str());
}

void AppendTranslated(std::string& text, std::string_view id) {
    text += Translated(id);
}
