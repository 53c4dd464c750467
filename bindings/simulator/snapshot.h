// The state of the device that calls see.
#pragma once

#include <memory>
#include <string>

#include "bindings/simulator/device.h"

namespace simulator {

/// Path of the device document: the environment variable KESTAL_DEVICE, or the installed default.
std::string DevicePath();

/// Takes the newest state and keeps it in force until EndSession.
void BeginSession();
void EndSession();

/// The state in force: within a session that of its beginning, otherwise the newest. A document
/// that has become unusable is logged once, and the last good one stays. Null when there has never
/// been a good one.
std::shared_ptr<const Device> CurrentDevice();

}  // namespace simulator
