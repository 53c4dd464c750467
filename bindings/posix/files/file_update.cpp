#include "bindings/posix/files/file_update.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "bindings/posix/files/file_io.h"

namespace binding {

namespace {

/// Locks a directory for this process; the lock ends with the object.
class LockedDirectory {
  public:
    explicit LockedDirectory(const std::string& path)
        : directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (directory.Number() < 0) {
            ThrowSystemError(path);
        }
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

/// A new file that replaces the target. If an error prevents that, the destructor removes it.
class Replacement {
  public:
    /// The umask takes from @p mode what it takes from that of any new file.
    Replacement(const std::filesystem::path& newTarget, mode_t mode)
        : target(newTarget), file(Create(newTarget, mode, name)) {
        if (file.Number() < 0) {
            ThrowSystemError(name);
        }
    }

    ~Replacement() {
        if (!used) {
            (void)unlink(name.c_str());
        }
    }

    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void Write(std::string_view contents) const {
        while (!contents.empty()) {
            const ssize_t count = write(file.Number(), contents.data(), contents.size());
            if (count > 0) {
                contents.remove_prefix(static_cast<std::size_t>(count));
            } else if (errno != EINTR) {
                ThrowSystemError(name);
            }
        }
    }

    void CopyOwnerAndMode(const struct stat& original) const {
        // Only a privileged process may change a file's owner. In any other, the new file keeps the
        // owner of the process, which is no error.
        const int given = fchown(file.Number(), original.st_uid, original.st_gid);
        static_cast<void>(given);
        if (fchmod(file.Number(), original.st_mode & 07777U) != 0) {
            ThrowSystemError(name);
        }
    }

    /// Writes the new contents to disk, so that they are there when the name is.
    void Synchronise() const {
        if (fsync(file.Number()) != 0) {
            ThrowSystemError(target);
        }
    }

    void ReplaceTarget() {
        if (rename(name.c_str(), target.c_str()) != 0) {
            ThrowSystemError(target);
        }
        used = true;
    }

  private:
    /// Makes a file with a name of its own beside @p target, and returns its descriptor.
    static int Create(const std::filesystem::path& target, mode_t mode, std::string& name) {
        // Not mkostemp, whose files are private: to give them another mode, one has to know the
        // umask, which only a change of it tells, for all threads.
        static std::atomic<unsigned int> count = 0;
        const std::string begin = target.parent_path() / ("." + target.filename().string() + "." +
                                                          std::to_string(getpid()) + ".");
        int descriptor = -1;
        do {
            name = begin + std::to_string(count++);
            descriptor = open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            // A process that was killed and had the same number has left its file behind.
        } while (descriptor < 0 && errno == EEXIST);
        return descriptor;
    }

    std::filesystem::path target;
    std::string name;
    FileDescriptor file;
    bool used = false;
};

/// The file at @p path. Where the path is a symbolic link, the file that it points to is replaced,
/// not the link.
std::filesystem::path TargetOf(const std::string& path) {
    return std::filesystem::weakly_canonical(std::filesystem::absolute(path));
}

/// Returns whether the file has been replaced.
bool Replace(const std::filesystem::path& target, MissingFile missing,
             const std::function<std::string(const std::string&)>& change, bool synchronised) {
    struct stat original = {};
    const bool exists = stat(target.c_str(), &original) == 0;
    if (!exists && (errno != ENOENT || missing == MissingFile::fails)) {
        ThrowSystemError(target);
    }
    FileStamp stamp;
    const std::string before = exists ? ReadFile(target, stamp) : std::string();
    const std::string after = change(before);
    if (exists && after == before) {
        return false;
    }
    const bool isForAll = !exists && missing == MissingFile::createdForAll;
    Replacement replacement(target, isForAll ? 0666 : 0600);
    replacement.Write(after);
    if (exists) {
        replacement.CopyOwnerAndMode(original);
    }
    if (synchronised) {
        replacement.Synchronise();
    }
    replacement.ReplaceTarget();
    return true;
}

}  // namespace

void UpdateFile(const std::string& path, MissingFile missing,
                const std::function<std::string(const std::string&)>& change) {
    const std::filesystem::path target = TargetOf(path);
    const LockedDirectory directory(target.parent_path());
    if (Replace(target, missing, change, true)) {
        directory.Synchronise();
    }
}

void UpdateFileAtOnce(const std::string& path, MissingFile missing,
                      const std::function<std::string(const std::string&)>& change) {
    (void)Replace(TargetOf(path), missing, change, false);
}

}  // namespace binding
