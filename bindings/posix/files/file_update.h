// Changing a file that other processes read and change at the same time.
#pragma once

#include <functional>
#include <string>

namespace binding {

/// What to do about a file that does not exist.
enum class MissingFile {
    fails,
    /// It counts as empty and is created, readable by its owner only.
    created,
    /// The same, readable by whom the mask of the process permits.
    createdForAll,
};

/// Replaces the contents of the file at @p path by @p change of them, atomically: whoever reads the
/// file sees the old or the new contents. The directory of the file is locked (flock) meanwhile, so
/// that no change by another process that does the same is lost. Mode and, where permitted, owner
/// of the file are kept. Throws std::system_error and whatever @p change throws; the file is as it
/// was then.
void UpdateFile(const std::string& path, MissingFile missing,
                const std::function<std::string(const std::string&)>& change);

}  // namespace binding
