// Translations from a place of your own, instead of bindings/posix.
#include "platform/language_support.h"

// Call bindtextdomain, bind_textdomain_codeset and textdomain.
void LanguageSupport::SetTextDomainProperties(const std::string& /*textDomain*/,
                                              const std::string& /*codeSet*/,
                                              const std::string& /*localeDirectory*/) {}
