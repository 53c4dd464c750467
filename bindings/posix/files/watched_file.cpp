#include "bindings/posix/files/watched_file.h"

#include <system_error>

namespace binding {

bool IsSettled(const FileStamp& stamp, std::chrono::nanoseconds now) {
    // The clock tick of vfat, the coarsest of all file systems.
    constexpr std::chrono::seconds kTick(2);
    return now - std::chrono::nanoseconds(stamp.changed) > kTick;
}

std::optional<WatchedFile::Reading> WatchedFile::ReadIfChanged(const std::string& path) {
    FileStamp found = StampOf(path);
    const bool sameFile = seen && path == seenPath;
    if (sameFile && settled && found == stamp) {
        return std::nullopt;
    }
    Reading reading;
    try {
        reading.contents = ReadFile(path, found);
    } catch (const std::system_error& error) {
        reading.problem = error.what();
        reading.missing = error.code() == std::errc::no_such_file_or_directory;
    }
    const bool same = sameFile && found == stamp && reading.contents == last.contents &&
                      reading.problem == last.problem;
    seen = true;
    seenPath = path;
    last = reading;
    stamp = found;
    settled = IsSettled(found, std::chrono::system_clock::now().time_since_epoch());
    if (same) {
        return std::nullopt;
    }
    return reading;
}

}  // namespace binding
