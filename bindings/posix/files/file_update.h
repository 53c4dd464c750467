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
    /// It counts as empty and is created with the mode that the umask leaves to a new file.
    createdForAll,
};

/// Replaces the contents of the file at @p path by what @p change makes of them, in one step: a
/// reader sees either the old or the new contents, and so does the next start after a power
/// failure. What the function has changed when it returns is on the disk. The directory of the file
/// is locked (flock) meanwhile, so that processes which change files in this way lose none of their
/// changes. Mode and, where permitted, owner of the file are kept. Throws std::system_error and
/// whatever @p change throws; the file is unchanged then.
void UpdateFile(const std::string& path, MissingFile missing,
                const std::function<std::string(const std::string&)>& change);

/// The same without waiting for other processes. @p change is called again if the file has changed
/// meanwhile; only of two changes that are finished in the same instant, one is lost.
void UpdateFileWithoutLock(const std::string& path, MissingFile missing,
                           const std::function<std::string(const std::string&)>& change);

}  // namespace binding
