#include "platform/language_support.h"

#include <libintl.h>

#include <cstdlib>

#include "bindings/log.h"

void LanguageSupport::SetTextDomainProperties(const std::string& textDomain,
                                              const std::string& codeSet,
                                              const std::string& localeDirectory) {
    const char* elsewhere = std::getenv("KESTAL_LOCALEDIR");
    const bool moved = elsewhere != nullptr && *elsewhere != '\0';
    if (bindtextdomain(textDomain.c_str(), moved ? elsewhere : localeDirectory.c_str()) ==
            nullptr ||
        bind_textdomain_codeset(textDomain.c_str(), codeSet.c_str()) == nullptr ||
        textdomain(textDomain.c_str()) == nullptr) {
        BINDING_LOG(TORU_DBG_ERROR, "text domain %s cannot be set", textDomain.c_str());
    }
}
