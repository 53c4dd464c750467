#include "bindings/posix/files/replacement.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <system_error>

namespace binding {

namespace {

/// Makes a file with a name of its own beside @p target, and returns its descriptor.
int Create(const std::filesystem::path& target, mode_t mode, std::string& name) {
    // Not mkostemp, whose files are private: to give them another mode, one has to know the umask,
    // which only a change of it tells, for all threads.
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

}  // namespace

std::filesystem::path TargetOf(const std::string& path) {
    return std::filesystem::weakly_canonical(std::filesystem::absolute(path));
}

Replacement::Replacement(const std::filesystem::path& newTarget, mode_t mode)
    : target(newTarget), file(Create(newTarget, mode, name)) {
    if (file.Number() < 0) {
        ThrowSystemError(target);
    }
}

Replacement::~Replacement() {
    if (!used) {
        (void)unlink(name.c_str());
    }
}

void Replacement::Write(std::string_view contents) const {
    while (!contents.empty()) {
        const ssize_t count = write(file.Number(), contents.data(), contents.size());
        if (count > 0) {
            contents.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            ThrowSystemError(target);
        }
    }
}

void Replacement::CopyOwnerAndMode(const struct stat& original) const {
    // Only a privileged process may change a file's owner. In any other, the new file keeps the
    // owner of the process, which is no error.
    const int given = fchown(file.Number(), original.st_uid, original.st_gid);
    static_cast<void>(given);
    if (fchmod(file.Number(), original.st_mode & 07777U) != 0) {
        ThrowSystemError(target);
    }
}

void Replacement::Synchronise() const {
    if (fsync(file.Number()) != 0) {
        ThrowSystemError(target);
    }
}

void Replacement::ReplaceTarget() {
    if (rename(name.c_str(), target.c_str()) != 0) {
        ThrowSystemError(target);
    }
    used = true;
}

void Replacement::BecomeTarget() {
    // Unlike rename, link never replaces. The destructor removes the other name.
    if (link(name.c_str(), target.c_str()) == 0) {
        return;
    }
    if (errno == EEXIST) {
        ThrowSystemError(target);
    }
    // File systems without links say so in different ways. The name is taken first, so that nobody
    // else has it.
    const FileDescriptor taken(open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (taken.Number() < 0) {
        ThrowSystemError(target);
    }
    try {
        ReplaceTarget();
    } catch (const std::system_error&) {
        (void)unlink(target.c_str());
        throw;
    }
}

}  // namespace binding
