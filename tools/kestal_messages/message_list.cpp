#include "tools/kestal_messages/message_list.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>

#include "tools/kestal_sources/source_report.h"

namespace {

constexpr std::size_t kIdSize = 8;

/// @p text with "?" for each control character that is not in @p kept. Those from U+0080 to U+009F,
/// which terminals obey, too, are C2 80 to C2 9F in UTF-8.
std::string WithoutControls(const std::string& text, const std::string& kept) {
    constexpr unsigned char kFirstByte = 0xC2;
    constexpr unsigned char kFirstVisible = 0xA0;
    constexpr unsigned char kDelete = 0x7F;
    std::string clean;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        const bool hasNext = index + 1 < text.size();
        if (byte == kFirstByte && hasNext &&
            static_cast<unsigned char>(text[index + 1]) < kFirstVisible) {
            clean += '?';
            ++index;
        } else if ((byte < ' ' || byte == kDelete) && kept.find(text[index]) == std::string::npos) {
            clean += '?';
        } else {
            clean += text[index];
        }
    }
    return clean;
}

std::string TextOf(const Json& message, const char* name, const std::string& kept = "") {
    const auto found = message.find(name);
    return found != message.end() && found->is_string()
               ? WithoutControls(found->get<std::string>(), kept)
               : "";
}

/// The first line, so long that a list stays a list.
std::string Beginning(const std::string& text) {
    constexpr std::size_t kMostBytes = 60;
    std::size_t end = std::min({text.find('\n'), text.size(), kMostBytes});
    const bool isWhole = end == text.size();
    // Not within a character.
    while (end > 0 && end < text.size() &&
           (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        --end;
    }
    return text.substr(0, end) + (isWhole ? "" : "...");
}

}  // namespace

std::string ReceivedMessage::Id() const {
    return key.substr(0, kIdSize);
}

std::vector<ReceivedMessage> MessagesIn(const Json& report) {
    const Json source = SourceNamed(report, "messages");
    const auto said = source.find("said");
    std::vector<ReceivedMessage> messages;
    if (said == source.end() || !said->is_array()) {
        return messages;
    }
    for (const Json& one : *said) {
        if (one.is_object()) {
            const auto read = one.find("read");
            messages.push_back({TextOf(one, "key"), TextOf(one, "sender"), TextOf(one, "time"),
                                TextOf(one, "text", "\n"),
                                read != one.end() && read->is_boolean() && read->get<bool>()});
        }
    }
    return messages;
}

void WriteMessageList(std::ostream& out, const std::vector<ReceivedMessage>& messages) {
    for (const ReceivedMessage& message : messages) {
        out << (message.isRead ? "  " : "* ") << message.Id() << "  " << message.time << "  "
            << message.sender << "  " << Beginning(message.text) << '\n';
    }
}

void WriteMessage(std::ostream& out, const ReceivedMessage& message) {
    out << "From " << message.sender << ", " << message.time << '\n' << message.text << '\n';
}

std::vector<ReceivedMessage> MessagesNamed(const std::vector<ReceivedMessage>& messages,
                                           const std::string& id) {
    std::vector<ReceivedMessage> named;
    for (const ReceivedMessage& message : messages) {
        const bool isNamed = !id.empty() && message.key.compare(0, id.size(), id) == 0;
        if (id == "unread" ? !message.isRead : isNamed) {
            named.push_back(message);
        }
    }
    if (named.empty() && id != "unread") {
        throw std::runtime_error("there is no message '" + id + "'");
    }
    return named;
}
