// The device without any source.
#pragma once

#include "bindings/device/device.h"

namespace binding {

/// The answers of a device whose hardware is absent: no SIM, no battery, no card, all switches off
/// but those of the carrier that show the functions of a hotspot. Each call succeeds, or fails with
/// the code that tells that the hardware is absent.
Device AbsentDevice();

}  // namespace binding
