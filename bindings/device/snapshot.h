// The state of the device that calls see.
#pragma once

#include <memory>

#include "bindings/device/device.h"

namespace binding {

/// Takes the newest state and keeps it in force until EndSession: for the calling thread whatever
/// sessions others begin meanwhile, for threads without a session of their own the last one's. A
/// session is ended by the thread that has begun it.
void BeginSession();
void EndSession();

/// The state that the calling thread's session keeps in force; null when it has begun none, or when
/// there was no state then.
const Device* SessionDevice();

/// The state in force: within a session that of its beginning, otherwise the newest. Null when
/// there has never been one.
std::shared_ptr<const Device> CurrentDevice();

}  // namespace binding
