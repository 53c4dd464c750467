#include "bindings/linux/modem/messages.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/modem/modem_manager.h"
#include "bindings/linux/modem/tree_lists.h"
#include "bindings/posix/session/session_store.h"

namespace binding {

namespace {

using nlohmann::json;

/// A SIM keeps some ten messages, a modem some hundred.
constexpr std::size_t kMostMessages = 500;

constexpr std::int64_t kReceived = 3;  // MMSmsState

// MMSmsPduType of messages that somebody has sent: the network also delivers reports.
constexpr std::int64_t kDeliver = 1;
constexpr std::int64_t kSubmit = 2;
constexpr std::int64_t kCdmaDeliver = 32;

std::string KeyOf(const json& sms) {
    return DigestOf(json::array({Member(sms, "Number"), Member(sms, "Timestamp"),
                                 Member(sms, "Text"), Member(sms, "Data")})
                        .dump(-1, ' ', true, json::error_handler_t::replace));
}

bool IsReceived(const json& sms) {
    if (Number(sms, "State") != kReceived) {
        return false;
    }
    switch (Number(sms, "PduType").value_or(0)) {
        case kDeliver:
        case kSubmit:
        case kCdmaDeliver:
            return true;
        default:
            return false;
    }
}

}  // namespace

std::vector<std::string> MessagePaths(const json& properties) {
    std::vector<std::string> paths = Texts(properties, "Messages");
    if (paths.size() > kMostMessages) {
        paths.resize(kMostMessages);
    }
    return paths;
}

std::vector<Message> ReadMessages(const json& tree, const std::vector<std::string>& paths,
                                  const std::set<std::string, std::less<>>& readKeys) {
    std::vector<Message> messages;
    for (const std::string& path : paths) {
        const json& sms = Member(Member(tree, path), kSmsInterface);
        if (IsReceived(sms)) {
            Message message{KeyOf(sms), Text(sms, "Number").value_or(""),
                            Text(sms, "Timestamp").value_or(""), Text(sms, "Text").value_or(""),
                            false};
            message.isRead = readKeys.count(message.key) != 0;
            messages.push_back(std::move(message));
        }
    }
    std::stable_sort(
        messages.begin(), messages.end(),
        [](const Message& one, const Message& other) { return one.time < other.time; });
    return messages;
}

}  // namespace binding
