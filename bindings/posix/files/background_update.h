// Changing a file on behalf of somebody who must not wait for the disk.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace binding {

/// Changes one file, one change after another, as UpdateFileWithoutLock does. There is a thread for
/// this only while there is something to change.
class BackgroundUpdate {
  public:
    using Change = std::function<std::string(const std::string& contents)>;
    /// Called on that thread after each change; @p problem says why it could not be made, and is
    /// null if it was. Must not throw.
    using Made = std::function<void(const char* problem)>;

    /// A file that does not exist counts as empty and gets the mode that the umask leaves.
    BackgroundUpdate(std::string newPath, Made newMade);
    /// Waits until all changes have been made.
    ~BackgroundUpdate();
    BackgroundUpdate(const BackgroundUpdate&) = delete;
    BackgroundUpdate& operator=(const BackgroundUpdate&) = delete;

    /// Has @p change made soon. Always called by the same thread. Throws when no thread can be
    /// started.
    void Ask(Change change);

    /// Whether a change has been asked for that has not been made.
    bool IsBusy() const { return isBusy; }

  private:
    void Work();

    std::string path;
    Made made;
    std::mutex mutex;
    std::deque<Change> changes;
    std::atomic<bool> isBusy = false;
    std::thread thread;
};

}  // namespace binding
