// Messages that the modem has received.
#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace binding {

struct Message {
    /// Names the message for as long as its SIM or modem keeps it. The path of its object does not:
    /// ModemManager counts anew after each start.
    std::string key;
    std::string sender;
    std::string time;
    std::string text;
    bool isRead = false;

    bool operator==(const Message&) const = default;
};

/// Paths of the messages of the modem @p properties, those of its Messaging interface; a store that
/// is fuller than any SIM or modem is cut.
std::vector<std::string> MessagePaths(const nlohmann::json& properties);

/// The messages at @p paths of @p tree that have been received completely, the oldest first. Those
/// whose keys are in @p readKeys have been read.
std::vector<Message> ReadMessages(const nlohmann::json& tree, const std::vector<std::string>& paths,
                                  const std::set<std::string, std::less<>>& readKeys);

}  // namespace binding
