// Common web library: the text domain.
#pragma once

#include <string>

/// Tells gettext where to find the translations.
class LanguageSupport {
  public:
    /// Binds @p textDomain to the catalogues below @p localeDirectory, read in @p codeSet, and
    /// makes it the current domain.
    static void SetTextDomainProperties(const std::string& textDomain, const std::string& codeSet,
                                        const std::string& localeDirectory);
};
