// Changes of a document that a running service does not see.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace binding {

/// The paths of the values that differ between two good documents although a service reads them
/// only once; with the values where these are short.
std::vector<std::string> UnseenChanges(const nlohmann::ordered_json& before,
                                       const nlohmann::ordered_json& after);

}  // namespace binding
