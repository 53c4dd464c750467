// A translation catalogue for unit tests, in place of the one that gettext reads from files.
#pragma once

#include <string>

namespace translations {

/// From now on, @p text is the translation of the message id @p id of @p domain.
void Give(const std::string& domain, const std::string& id, const std::string& text);

/// Removes all translations: the text of each message id is the id itself again.
void Reset();

/// How often gettext has been asked for the text of @p id so far.
int Lookups(const std::string& id);

}  // namespace translations
