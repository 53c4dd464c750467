#include "bindings/linux/watched_document.h"

#include <sys/inotify.h>

#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "bindings/linux/log.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

void WatchedDocument::Begin(sd_event* event, OnRead newRead) {
    onRead = std::move(newRead);
    // First, so that no change is missed.
    Watch(event);
    Read();
}

void WatchedDocument::Watch(sd_event* event) {
    const std::filesystem::path file(BoardDocumentPath());
    try {
        watch.WatchFolder(event, file.has_parent_path() ? file.parent_path().c_str() : ".",
                          IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE,
                          [this, name = file.filename().string()](const char* changed) {
                              if (changed != nullptr && name == changed) {
                                  Read();
                              }
                          });
    } catch (const std::system_error& error) {
        LINUX_LOG(TORU_DBG_NOTICE, "%s (changes are not noticed)", error.what());
    }
}

void WatchedDocument::Read() {
    const std::string path = BoardDocumentPath();
    BoardDocument read;
    try {
        FileStamp stamp;
        read = ReadBoardDocument(path, ReadFile(path, stamp), document.device.faults);
    } catch (const std::exception& error) {
        if (problem != error.what()) {
            LINUX_LOG(TORU_DBG_ERROR, "%s (%s)", error.what(),
                      hasRead ? "keeping the last good document" : "no document");
        }
        problem = error.what();
        return;
    }
    problem.clear();
    hasRead = true;
    const BoardDocument before = std::exchange(document, std::move(read));
    onRead(before.settings);
}

}  // namespace binding
