// A translation catalogue for unit tests, in place of the one that gettext reads from files.
#pragma once

#include <string>

namespace translations {

/// Translates message id @p id of @p domain as @p text from now on.
void Give(const std::string& domain, const std::string& id, const std::string& text);

/// Forgets all translations: every message id stands for itself again.
void Reset();

}  // namespace translations
