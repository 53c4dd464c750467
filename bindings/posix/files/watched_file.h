// Follows one file and reads it again when it has changed.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "bindings/posix/files/file_io.h"

namespace binding {

/// Whether a file with this stamp, read at @p now (since the epoch), cannot change any more without
/// getting another one. Two changes within one tick of the file system's clock leave the same
/// stamp, so it must be older than the longest tick. One in the future, by another machine's clock
/// or one that was set back, is never old.
bool IsSettled(const FileStamp& stamp, std::chrono::nanoseconds now);

class WatchedFile {
  public:
    /// What the file holds now.
    struct Reading {
        std::string contents;
        std::string problem;   ///< why it cannot be read; empty when it can
        bool missing = false;  ///< whether that is because there is no file
    };

    /// The file's state when it is not the one that the last call saw, nothing otherwise. An
    /// unchanged file costs one stat.
    std::optional<Reading> ReadIfChanged(const std::string& path);

  private:
    bool seen = false;
    std::string seenPath;
    Reading last;
    FileStamp stamp;
    bool settled = false;
};

}  // namespace binding
