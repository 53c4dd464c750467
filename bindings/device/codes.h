// Error codes of the binding itself, in addition to those that the device prescribes for its calls.
#pragma once

#include "platform/webui.h"

namespace binding {

/// The sys_ calls and MsgbusHandler return these codes as they are; a webui_ call returns
/// kWebuiCodeBase plus the code.
enum Code : int {
    /// The device has no answer for the call, or none for this index, field, application, page,
    /// language or channel.
    kNotAnswered = 9001,
    /// No usable device has been available so far.
    kNoDevice = 9002,
    /// The device could not be changed.
    kNotChanged = 9003,
    /// The binding itself failed, usually because memory ran out.
    kBindingFailed = 9004,
    /// The MsgbusHandler has not joined the bus.
    kBusNotJoined = 9005,
    /// What tells the answer was there, and is gone or does not answer any more.
    kSourceLost = 9006,
    /// There is nothing with which a data call could be started.
    kNothingToConnect = 9007,
    /// The process was asked to end while the call waited, because the call is slow or hangs.
    kInterrupted = 9008,
};

constexpr int kWebuiCodeBase = WEBUI_SUCCESS;

}  // namespace binding
