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
/// reader sees either the old or the new contents. The directory of the file is locked (flock)
/// meanwhile, so that processes which change files in this way lose none of their changes. Mode
/// and, where permitted, owner of the file are kept. Throws std::system_error and whatever @p
/// change throws; the file is unchanged then.
void UpdateFile(const std::string& path, MissingFile missing,
                const std::function<std::string(const std::string&)>& change);

/// The same without waiting for other processes or for the disk: of changes at the same time, one
/// may be lost, and a power failure may undo a change or empty the file.
void UpdateFileAtOnce(const std::string& path, MissingFile missing,
                      const std::function<std::string(const std::string&)>& change);

}  // namespace binding
