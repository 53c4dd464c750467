// Follows one file and reads it again when it has changed.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "bindings/posix/files/file_io.h"

namespace binding {

/// Whether every further change of a file gives it another stamp than @p stamp, which was read at
/// @p now (since the epoch). Two changes within one tick of the file system's clock leave the same
/// stamp, so a stamp must be older than the longest tick. A stamp in the future, made by another
/// machine's clock or before the clock was set back, never counts as old.
bool IsSettled(const FileStamp& stamp, std::chrono::nanoseconds now);

class WatchedFile {
  public:
    /// What the file holds now.
    struct Reading {
        std::string contents;
        std::string problem;   ///< why it cannot be read; empty when it can
        bool missing = false;  ///< whether the problem is that there is no file
    };

    /// Returns what the file holds if it has changed since the last call, and nothing otherwise.
    /// For an unchanged file, this costs one stat.
    std::optional<Reading> ReadIfChanged(const std::string& path);

  private:
    bool seen = false;
    std::string seenPath;
    Reading last;
    FileStamp stamp;
    bool settled = false;
};

}  // namespace binding
