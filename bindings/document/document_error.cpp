#include "bindings/document/document_error.h"

#include "bindings/names/nearest_name.h"

namespace binding {

std::string WithSuggestion(const UnknownName& error) {
    KeyPath path = error.Path();
    const std::string nearest = NearestName(std::get<std::string>(path.back()), error.Known());
    path.back() = nearest;
    return error.what() + Suggestion(nearest.empty() ? "" : PathText(path));
}

}  // namespace binding
