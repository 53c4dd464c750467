// The error with which a call on the bus has ended.
#pragma once

#include <string>

namespace binding {

/// Why a call has failed; it has not failed if there is no name.
struct BusError {
    std::string name;
    std::string message = {};
    /// Whether the call has failed for want of a connection. The name may also come from a daemon.
    bool isDisconnected = false;

    explicit operator bool() const { return !name.empty(); }
    /// Whether the other side does not answer.
    bool IsSilence() const;
    /// Whether there is no such object or interface, or nobody to have one.
    bool IsAbsence() const;
    /// Name and message, for the log.
    std::string Text() const;
};

/// The error of calls without a connection.
constexpr const char* kDisconnected = "org.freedesktop.DBus.Error.Disconnected";

}  // namespace binding
