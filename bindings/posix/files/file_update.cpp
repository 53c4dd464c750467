#include "bindings/posix/files/file_update.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "bindings/posix/files/file_io.h"
#include "bindings/posix/files/replacement.h"

namespace binding {

namespace {

class Directory {
  public:
    explicit Directory(const std::string& path)
        : directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (directory.Number() < 0) {
            ThrowSystemError(path);
        }
    }

    /// For this process, until the object ends.
    void Lock(const std::string& path) const {
        while (flock(directory.Number(), LOCK_EX) != 0) {
            if (errno != EINTR) {
                ThrowSystemError(path);
            }
        }
    }

    /// Writes the directory to disk, so that a renamed file survives a power failure.
    void Synchronise() const { (void)fsync(directory.Number()); }

  private:
    FileDescriptor directory;
};

/// Replaces the file once; returns false if that has to be done again, because it has changed
/// meanwhile.
bool TryToReplace(const std::filesystem::path& target, MissingFile missing,
                  const std::function<std::string(const std::string&)>& change, bool locked) {
    const std::string parent = target.parent_path();
    const Directory directory(parent);
    if (locked) {
        directory.Lock(parent);
    }
    // First, so that a file that somebody makes meanwhile counts as a change.
    FileStamp stamp = StampOf(target);
    struct stat original = {};
    const bool exists = stat(target.c_str(), &original) == 0;
    if (!exists && (errno != ENOENT || missing == MissingFile::fails)) {
        ThrowSystemError(target);
    }
    const std::string before = exists ? ReadFile(target, stamp) : std::string();
    const std::string after = change(before);
    if (exists && after == before) {
        return true;
    }
    const bool isForAll = !exists && missing == MissingFile::createdForAll;
    Replacement replacement(target, isForAll ? 0666 : 0600);
    replacement.Write(after);
    if (exists) {
        replacement.CopyOwnerAndMode(original);
    }
    replacement.Synchronise();
    // The disk may have taken long.
    if (!locked && StampOf(target) != stamp) {
        return false;
    }
    replacement.ReplaceTarget();
    directory.Synchronise();
    return true;
}

}  // namespace

void UpdateFile(const std::string& path, MissingFile missing,
                const std::function<std::string(const std::string&)>& change) {
    (void)TryToReplace(TargetOf(path), missing, change, true);
}

void UpdateFileWithoutLock(const std::string& path, MissingFile missing,
                           const std::function<std::string(const std::string&)>& change) {
    const std::filesystem::path target = TargetOf(path);
    while (!TryToReplace(target, missing, change, false)) {
    }
}

}  // namespace binding
