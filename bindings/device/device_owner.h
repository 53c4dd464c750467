// What a binding supplies when its calls answer from a Device: the device itself, and the actions
// that change it.
#pragma once

#include <memory>

#include "bindings/device/device.h"

namespace binding {

/// Returns the newest state of the device or, if that is unusable, the last good one; null when
/// there has never been one. It is never called by two threads at once.
std::shared_ptr<const Device> NewestDevice();

/// Start and end the data call. Return SYS_SUCCESS or the code with which the SDK's call fails.
int StartDataCall();
int StopDataCall();

}  // namespace binding
