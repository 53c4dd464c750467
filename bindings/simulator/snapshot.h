// The state of the device that calls see.
#pragma once

#include <memory>
#include <string>

#include "bindings/device/device.h"

namespace binding {

/// Path of the device document: the environment variable KESTAL_DEVICE, or the installed default.
std::string DevicePath();

/// Takes the newest state and keeps it in force until EndSession: for the calling thread whatever
/// sessions others begin meanwhile, for threads without a session of their own the last one's. A
/// session is ended by the thread that has begun it.
void BeginSession();
void EndSession();

/// The state that the calling thread's session keeps in force; null when it has begun none, or when
/// there was no state then.
const Device* SessionDevice();

/// The state in force: within a session that of its beginning, otherwise the newest. A document
/// that has become unusable is logged once, and the last good one stays. Null when there has never
/// been a good one.
std::shared_ptr<const Device> CurrentDevice();

}  // namespace binding
