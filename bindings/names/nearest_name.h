// Finds the known name that a misspelt name may stand for.
#pragma once

#include <string>
#include <vector>

namespace binding {

/// The name of @p known that is closest to @p name: the one that takes the fewest letters to add,
/// remove, replace or swap with a neighbour, without regard to case. Empty when even the closest
/// one takes as many changes as half of its length.
std::string NearestName(const std::string& name, const std::vector<std::string>& known);

/// "; did you mean NAME?" for the name @p name; an empty text for an empty one.
std::string Suggestion(const std::string& name);

}  // namespace binding
