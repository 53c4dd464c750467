#include "bindings/linux/modem/modem_memory.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>

#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/log.h"
#include "bindings/linux/modem/message_store.h"

namespace binding {

namespace {

using nlohmann::json;

constexpr const char* kDataOff = "dataOff";
constexpr const char* kSeveralSlots = "severalSlots";

void LogProblem(const char* problem) {
    LINUX_LOG(TORU_DBG_ERROR, "modem: not remembered: %s", problem);
}

}  // namespace

ModemMemory::ModemMemory(sd_event* event, std::function<void()> newChanged)
    : path(StatePath("modem")),
      changed(std::move(newChanged)),
      written(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      writing(path, [this](const char* problem) {
          if (problem == nullptr) {
              (void)eventfd_write(written.Number(), 1);
          } else {
              LogProblem(problem);
          }
      }) {
    const std::filesystem::path file(path);
    try {
        watch.WatchFolder(event, file.parent_path().c_str(), IN_CLOSE_WRITE | IN_MOVED_TO,
                          [this, name = file.filename().string()](const char* entry) {
                              if (entry != nullptr && name == entry) {
                                  Refresh();
                              }
                          });
        writtenWatch.WatchDescriptor(event, written.Number(), EPOLLIN, [this](std::uint32_t) {
            eventfd_t count = 0;
            (void)eventfd_read(written.Number(), &count);
            Refresh();
        });
    } catch (const std::system_error& error) {
        LINUX_LOG(TORU_DBG_NOTICE, "modem: %s (nothing is remembered)", error.what());
    }
    Read();
}

ModemMemory::Known ModemMemory::Parse(const std::string& contents) {
    const json parsed = json::parse(contents, nullptr, false);
    return {.isDataOff = Boolean(parsed, kDataOff).value_or(false),
            .hasSeveralSlots = Boolean(parsed, kSeveralSlots).value_or(false)};
}

void ModemMemory::Read() {
    try {
        FileStamp stamp;
        known = Parse(ReadFile(path, stamp));
    } catch (const std::system_error&) {
        // There is nothing to remember yet, or nowhere.
    }
}

void ModemMemory::Refresh() {
    // What the file lacks as long as it is being changed is known here.
    if (writing.IsBusy()) {
        return;
    }
    const Known before = known;
    Read();
    if (!(known == before)) {
        changed();
    }
}

void ModemMemory::SetDataOff(bool isDataOff) {
    Change([isDataOff](Known& changing) { changing.isDataOff = isDataOff; });
}

void ModemMemory::SetSeveralSlots(bool hasSeveralSlots) {
    Change([hasSeveralSlots](Known& changing) { changing.hasSeveralSlots = hasSeveralSlots; });
}

void ModemMemory::Change(const std::function<void(Known&)>& change) {
    const Known before = known;
    change(known);
    if (known == before) {
        return;
    }
    try {
        // The loop must wait neither for the disk nor for somebody who has locked the folder.
        writing.Ask([change](const std::string& contents) {
            Known stored = Parse(contents);
            change(stored);
            return json({{kDataOff, stored.isDataOff}, {kSeveralSlots, stored.hasSeveralSlots}})
                       .dump() +
                   "\n";
        });
    } catch (const std::exception& error) {
        LogProblem(error.what());
    }
}

}  // namespace binding
