#include "bindings/linux/bus/bus_error.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "bindings/linux/text.h"

namespace binding {

namespace {

/// The errors with which sd-bus ends a call that has not been answered in time.
constexpr const char* kNoReply = "org.freedesktop.DBus.Error.NoReply";
constexpr const char* kTimedOut = "System.Error.ETIMEDOUT";

}  // namespace

bool BusError::IsSilence() const {
    return name == kNoReply || name == kTimedOut || name == "org.freedesktop.DBus.Error.Timeout";
}

bool BusError::IsAbsence() const {
    // Libraries have prefixes of their own. InvalidArgs is GLib's error for an interface that the
    // object does not have.
    constexpr std::array<std::string_view, 6> kKinds = {"UnknownObject",  "UnknownInterface",
                                                        "UnknownMethod",  "InvalidArgs",
                                                        "ServiceUnknown", "Disconnected"};
    const std::string kind = name.substr(name.rfind('.') + 1);
    return std::find(kKinds.begin(), kKinds.end(), kind) != kKinds.end();
}

std::string BusError::Text() const {
    constexpr std::size_t kMostBytes = 256;
    return Printable(message.empty() ? name : name + ": " + message, kMostBytes);
}

}  // namespace binding
