#include "bindings/linux/modem/messages_source.h"

#include <sys/inotify.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "bindings/linux/log.h"

namespace binding {

using nlohmann::json;

MessagesSource::MessagesSource(Board& board)
    : Source(board, "messages"), storePath(MessageStorePath()) {}

void MessagesSource::Start() {
    const std::filesystem::path file(storePath);
    try {
        storeWatch.WatchFolder(GetBoard().Event(), file.parent_path().c_str(),
                               IN_CLOSE_WRITE | IN_MOVED_TO | IN_DELETE,
                               [this, name = file.filename().string()](const char* changed) {
                                   if (changed != nullptr && name == changed) {
                                       ReadStore();
                                   }
                               });
    } catch (const std::system_error& error) {
        LINUX_LOG(TORU_DBG_NOTICE, "messages: %s (all count as unread)", error.what());
    }
    ReadStore();
    // The modem says later whether it has messages.
    Absent();
}

void MessagesSource::ReadStore() {
    readKeys = ReadMessageKeys(storePath);
    for (Message& message : messages) {
        message.isRead = readKeys.count(message.key) != 0;
    }
    Changed();
}

void MessagesSource::Update(const json& tree, const std::vector<std::string>& paths) {
    messages = ReadMessages(tree, paths, readKeys);
    Present();
}

void MessagesSource::None() {
    messages.clear();
    if (GetState() != State::absent) {
        Absent();
    }
}

void MessagesSource::Fill(Device& device) const {
    Tell(device.getSMSUnreadCount,
         std::count_if(messages.begin(), messages.end(),
                       [](const Message& message) { return !message.isRead; }));
}

void MessagesSource::Fail(Device& device, int code) const {
    FailAll(code, device.getSMSUnreadCount);
}

json MessagesSource::Said() const {
    json said = json::array();
    for (const Message& message : messages) {
        said.push_back({{"key", message.key},
                        {"sender", message.sender},
                        {"time", message.time},
                        {"text", message.text},
                        {"read", message.isRead}});
    }
    return said;
}

}  // namespace binding
