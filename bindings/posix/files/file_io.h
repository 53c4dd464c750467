// Reading a whole file and recognising that it has changed.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace binding {

/// ReadFile reads no larger file. Files written by hand are far smaller; anything larger is the
/// wrong file.
constexpr std::size_t kLargestFile = std::size_t{4} * 1024 * 1024;

/// Owns a file descriptor.
class FileDescriptor {
  public:
    explicit FileDescriptor(int newNumber) : number(newNumber) {}
    ~FileDescriptor();
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    /// -1 when there is none.
    int Number() const { return number; }

  private:
    int number;
};

/// Properties that show whether a file has changed: a change of the file changes at least one.
struct FileStamp {
    int error = 0;  ///< errno when there is no file; the rest is 0 then
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds since the epoch
    std::int64_t changed = 0;   ///< the same for changes of permissions and other attributes

    bool operator==(const FileStamp&) const = default;
};

/// Stamp of the file at @p path.
FileStamp StampOf(const std::string& path);

/// Returns the contents of a regular file and sets @p stamp to the file's stamp. Throws
/// std::system_error.
std::string ReadFile(const std::string& path, FileStamp& stamp);

/// Throws std::system_error for the last system call (errno), which failed on @p what.
[[noreturn]] void ThrowSystemError(const std::string& what);

}  // namespace binding
