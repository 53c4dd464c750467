// The notification protocol of the service manager: datagrams to the socket that NOTIFY_SOCKET
// names. Implemented here, because libsystemd would bring its dependencies into a small service.
#pragma once

#include <string_view>

namespace binding {

/// Whether a service manager wants notifications.
bool HasServiceManager();

/// Sends @p state, lines of NAME=value, without waiting. Returns 0, or errno.
int NotifyServiceManager(std::string_view state);

}  // namespace binding
