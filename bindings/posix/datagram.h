// Messages to sockets of this machine.
#pragma once

#include <chrono>
#include <string_view>

namespace binding {

/// Whether @p name can be that of a datagram socket: a path from the root, or "@" and an abstract
/// name, either of them short enough. Returns 0 or an errno value.
int CheckSocketName(std::string_view name);

/// Sends @p text to the datagram socket @p name. If the receiver has no room for it within @p
/// patience, the message is lost. Returns 0 or an errno value.
int SendDatagram(std::string_view name, std::string_view text,
                 std::chrono::milliseconds patience = std::chrono::milliseconds(0));

}  // namespace binding
