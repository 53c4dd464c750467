// What somebody may have meant who got a name wrong.
#pragma once

#include <string>
#include <vector>

#include "bindings/document/document_error.h"

namespace binding {

/// The name of @p known that takes the fewest changes of one letter, or swaps of two neighbours, to
/// get from @p name, upper and lower case being one; empty when even that one takes as many changes
/// as half of its length.
std::string NearestName(const std::string& name, const std::vector<std::string>& known);

/// "; did you mean NAME?" with @p name, nothing for an empty one.
std::string Suggestion(const std::string& name);

/// What @p error says, with the path of the nearest right name.
std::string WithSuggestion(const UnknownName& error);

}  // namespace binding
