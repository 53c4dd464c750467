// Finds installed files by their names.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace binding {

/// The names of the files in @p folder, without ".json" and in alphabetical order; none for a
/// folder that cannot be read.
std::vector<std::string> NamesIn(const std::filesystem::path& folder);

/// Returns @p name when there is such a file; otherwise the path of the file that is installed in
/// @p folder under that name, with or without ".json". When there is neither, throws
/// std::runtime_error if an installed file has nearly that name, and returns @p name if none has.
std::string FileOrInstalled(const std::string& name, const std::filesystem::path& folder);

}  // namespace binding
