// A new file that gets the name of another one when it is whole.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "bindings/posix/files/file_io.h"

namespace binding {

/// The file at @p path. Where the path is a symbolic link, the file that it points to is replaced,
/// not the link.
std::filesystem::path TargetOf(const std::string& path);

/// A file beside its target, with a name of its own until it gets that of the target. If that never
/// happens, the destructor removes it. All functions throw std::system_error.
class Replacement {
  public:
    /// The umask takes from @p mode what it takes from that of any new file.
    Replacement(const std::filesystem::path& newTarget, mode_t mode);
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void Write(std::string_view contents) const;
    void CopyOwnerAndMode(const struct stat& original) const;

    /// Writes the new contents to disk, so that they are there when the name is.
    void Synchronise() const;

    void ReplaceTarget();

    /// The same unless there is a target: then it fails with EEXIST. When it fails, it leaves no
    /// target of its own.
    void BecomeTarget();

  private:
    std::filesystem::path target;
    std::string name;
    FileDescriptor file;
    bool used = false;
};

}  // namespace binding
