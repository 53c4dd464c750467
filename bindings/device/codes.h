// Codes with which a call fails on the binding's own account, beside those with which the device
// lets it fail.
#pragma once

#include "platform/webui.h"

namespace binding {

/// What the sys_ calls and MsgbusHandler return; a webui_ call returns kWebuiCodeBase plus the
/// code.
enum Code : int {
    /// The device answers nothing to the call, or nothing for this index, field, application, page,
    /// language or channel.
    kNotAnswered = 9001,
    /// There has never been a device.
    kNoDevice = 9002,
    /// The device could not be changed.
    kNotChanged = 9003,
    /// The binding itself failed, for want of memory as a rule.
    kBindingFailed = 9004,
    /// The MsgbusHandler has not joined the bus.
    kBusNotJoined = 9005,
};

constexpr int kWebuiCodeBase = WEBUI_SUCCESS;

}  // namespace binding
