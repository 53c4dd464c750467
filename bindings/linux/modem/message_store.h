// Which messages have been read. ModemManager does not know.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace binding {

using MessageKeys = std::set<std::string, std::less<>>;

/// Path of the file @p name in the first folder of STATE_DIRECTORY, or else in /var/lib/kestal.
std::string StatePath(const std::string& name);

/// Path of the file of the messages.
std::string MessageStorePath();

/// The keys in the file's @p contents, one a line. Other lines are ignored.
MessageKeys ParseMessageKeys(std::string_view contents);

/// The keys in the file at @p path; none without a file.
MessageKeys ReadMessageKeys(const std::string& path);

/// Adds @p keys to the file at @p path. The oldest ones go when there are more than any box has
/// messages. Throws std::system_error.
void MarkMessagesRead(const std::string& path, const std::vector<std::string>& keys);

}  // namespace binding
