// Notices when a file or socket appears, changes or disappears.
#pragma once

#include <filesystem>
#include <functional>

#include "bindings/linux/event.h"

namespace binding {

/// Watches one path by inotify. Folders on the way to it may be missing: then the nearest one that
/// exists is watched, until the next one appears.
class PathWatch {
  public:
    /// Calls @p newChanged whenever something may have changed at @p newPath, an absolute path.
    /// Throws std::system_error.
    PathWatch(sd_event* newEvent, std::filesystem::path newPath, std::function<void()> newChanged);
    ~PathWatch() = default;
    PathWatch(const PathWatch&) = delete;
    PathWatch& operator=(const PathWatch&) = delete;

  private:
    void WatchNearest();
    void OnChange(const char* name);

    sd_event* event;
    std::filesystem::path path;
    std::function<void()> changed;
    std::filesystem::path folder;  ///< the one that is watched
    EventSource watch;
};

}  // namespace binding
