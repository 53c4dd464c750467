// Files that are named without saying where they are.
#pragma once

#include <filesystem>
#include <string>

namespace binding {

/// The file @p name; when there is none, the one that is installed in @p folder under that name,
/// with or without ".json". Without either it is @p name, of which std::runtime_error is thrown
/// when an installed one has nearly that name.
std::string FileOrInstalled(const std::string& name, const std::filesystem::path& folder);

}  // namespace binding
