// The file of the device document.
#pragma once

#include <string>

namespace binding {

/// Path of the device document: the environment variable KESTAL_DEVICE, or the installed default.
std::string DevicePath();

/// The installed document, which is used if the environment names none.
std::string DefaultDevicePath();

}  // namespace binding
