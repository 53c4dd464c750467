// The state of the device from which calls answer.
#pragma once

#include <memory>

#include "bindings/device/device.h"

namespace binding {

/// Begins a session with the newest state of the device. Until EndSession, all calls of this thread
/// answer from that state, whatever sessions other threads begin meanwhile. Threads without a
/// session of their own use the state of the session that was begun last. The thread that began a
/// session must also end it.
void BeginSession();
void EndSession();

/// The state of the calling thread's session; null when the thread has no session, or when there
/// was no state when the session began.
const Device* SessionDevice();

/// While there is a session, the state that was the newest when the last session began; otherwise
/// the newest state. Null when there has never been one.
std::shared_ptr<const Device> CurrentDevice();

/// The newest state, also during a session, which keeps its own.
std::shared_ptr<const Device> NewestState();

}  // namespace binding
