// Sends the calls of this process to whoever watches them.
#pragma once

#include <string>

namespace binding {

/// Begins to report calls if somebody has begun to watch those on the document @p device. Is called
/// whenever the state of the device is asked for, never by two threads at once. While nobody
/// watches, it costs one look at the name of the socket.
void LookForWatcher(const std::string& device) noexcept;

}  // namespace binding
