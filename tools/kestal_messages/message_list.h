// The messages in what the source "messages" of a Linux board has told.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/json_output.h"

/// A received message. What others have written is without control characters, which a terminal
/// would obey, except for line feeds in the text.
struct ReceivedMessage {
    std::string key;
    std::string sender;
    std::string time;
    std::string text;
    bool isRead = false;

    /// The beginning of the key, by which people name the message.
    std::string Id() const;
};

/// The messages in @p report, what the service reports on its sources. Throws std::runtime_error
/// when there is no such source.
std::vector<ReceivedMessage> MessagesIn(const Json& report);

/// Writes a line for each message: a star if it has not been read, id, time, sender, and the
/// beginning of the text.
void WriteMessageList(std::ostream& out, const std::vector<ReceivedMessage>& messages);

/// Writes a message whole.
void WriteMessage(std::ostream& out, const ReceivedMessage& message);

/// The messages whose keys begin with @p id; all that have not been read for "unread". Throws
/// std::runtime_error when an id fits none.
std::vector<ReceivedMessage> MessagesNamed(const std::vector<ReceivedMessage>& messages,
                                           const std::string& id);
