#include "bindings/linux/modem/message_store.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

#include "bindings/posix/files/file_io.h"
#include "bindings/posix/files/file_update.h"

namespace binding {

namespace {

constexpr std::size_t kKeySize = 64;
constexpr std::size_t kMostKeys = 5000;

bool IsKey(std::string_view line) {
    return line.size() == kKeySize && std::all_of(line.begin(), line.end(), [](char digit) {
               return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f');
           });
}

/// Calls @p visit with each key, in the order of the file.
template <typename Visit>
void EachKey(std::string_view contents, Visit visit) {
    while (!contents.empty()) {
        const std::size_t end = std::min(contents.find('\n'), contents.size());
        if (const std::string_view line = contents.substr(0, end); IsKey(line)) {
            visit(line);
        }
        contents.remove_prefix(std::min(end + 1, contents.size()));
    }
}

}  // namespace

std::string StatePath(const std::string& name) {
    const char* const folders = std::getenv("STATE_DIRECTORY");
    std::string folder = folders == nullptr ? "" : folders;
    folder.resize(std::min(folder.find(':'), folder.size()));
    return (folder.empty() ? "/var/lib/kestal" : folder) + "/" + name;
}

std::string MessageStorePath() {
    return StatePath("read-messages");
}

MessageKeys ParseMessageKeys(std::string_view contents) {
    MessageKeys keys;
    EachKey(contents, [&keys](std::string_view key) { keys.emplace(key); });
    return keys;
}

MessageKeys ReadMessageKeys(const std::string& path) {
    try {
        FileStamp stamp;
        return ParseMessageKeys(ReadFile(path, stamp));
    } catch (const std::system_error&) {
        return {};
    }
}

void MarkMessagesRead(const std::string& path, const std::vector<std::string>& keys) {
    UpdateFile(path, MissingFile::createdForAll, [&keys](const std::string& contents) {
        MessageKeys known;
        std::vector<std::string> ordered;
        const auto add = [&](std::string_view key) {
            if (known.emplace(key).second) {
                ordered.emplace_back(key);
            }
        };
        EachKey(contents, add);
        std::for_each(keys.begin(), keys.end(), add);
        const std::size_t surplus = ordered.size() - std::min(ordered.size(), kMostKeys);
        std::string changed;
        for (std::size_t index = surplus; index < ordered.size(); ++index) {
            changed += ordered[index] + "\n";
        }
        return changed;
    });
}

}  // namespace binding
