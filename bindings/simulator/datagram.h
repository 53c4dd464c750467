// Messages to sockets of this machine.
#pragma once

#include <string_view>

namespace simulator {

/// Sends @p text to the datagram socket @p name: a path, or "@" and an abstract name. Never waits:
/// what the receiver has no room for is lost. Returns 0 or an errno value.
int SendDatagram(std::string_view name, std::string_view text);

}  // namespace simulator
