#include "bindings/linux/kernel/path_watch.h"

#include <sys/inotify.h>

#include <system_error>
#include <utility>

namespace binding {

namespace {

constexpr std::uint32_t kEntries = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                   IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
/// IN_ATTRIB: a daemon makes its socket first and then gives others the right to use it. IN_MODIFY:
/// dnsmasq keeps its lease file open, so the file is never closed after a change.
constexpr std::uint32_t kContents = IN_ATTRIB | IN_MODIFY;

using Path = std::filesystem::path;

/// The entry of @p folder on the way to @p path.
Path NextOnTheWay(const Path& folder, const Path& path) {
    Path next = path;
    while (next.parent_path() != folder && next != next.parent_path()) {
        next = next.parent_path();
    }
    return next;
}

/// Rounds in which folders that appear meanwhile are looked for.
constexpr int kMostRounds = 8;

bool IsFolder(const Path& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

}  // namespace

PathWatch::PathWatch(sd_event* newEvent, Path newPath, std::function<void()> newChanged)
    : event(newEvent), path(std::move(newPath)), changed(std::move(newChanged)) {
    WatchNearest();
}

void PathWatch::WatchNearest() {
    folder = path.parent_path();
    // A folder may be there and yet not be watched, for want of rights or of watches.
    int rounds = 0;
    while (true) {
        try {
            const std::uint32_t contents = folder == path.parent_path() ? kContents : 0;
            watch.WatchFolder(event, folder.c_str(), kEntries | contents,
                              [this](const char* name) { OnChange(name); });
        } catch (const std::system_error&) {
            if (folder == folder.parent_path()) {
                throw;
            }
            folder = folder.parent_path();
            continue;
        }
        // The next folder may have appeared before this one was watched.
        const Path next = NextOnTheWay(folder, path);
        if (next == path || !IsFolder(next) || ++rounds == kMostRounds) {
            return;
        }
        folder = path.parent_path();
    }
}

void PathWatch::OnChange(const char* name) {
    const bool isFolderItself = name == nullptr || *name == '\0';
    const Path next = NextOnTheWay(folder, path);
    if (!isFolderItself && next.filename() != name) {
        return;
    }
    if (isFolderItself || next != path) {
        WatchNearest();
    }
    changed();
}

}  // namespace binding
