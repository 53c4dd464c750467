// Codes with which the simulated device fails on its own account, beside those that its document
// asks for.
#pragma once

#include "platform/webui.h"

namespace simulator {

/// What the sys_ calls and MsgbusHandler return; a webui_ call returns kWebuiCodeBase plus the
/// code.
enum Code : int {
    /// The document does not name the call, or not this index, field, application, page, language
    /// or channel.
    kNotSimulated = 9001,
    /// There has never been a usable document.
    kNoDocument = 9002,
    /// The document could not be changed: it is missing, damaged or not writable.
    kNotChanged = 9003,
    /// The simulator itself failed, for want of memory as a rule.
    kSimulatorFailed = 9004,
    /// The MsgbusHandler has not joined the bus.
    kBusNotJoined = 9005,
};

constexpr int kWebuiCodeBase = WEBUI_SUCCESS;

/// What AuthSession::Init returns when it refuses.
enum SessionCode : int {
    /// No such session.
    kSessionUnknown = 9101,
    /// The session belongs to another address, or the caller's address is of no known family.
    kSessionOtherAddress = 9102,
    /// The session belongs to another user agent.
    kSessionOtherUserAgent = 9103,
    /// The session has been idle for too long.
    kSessionExpired = 9104,
    /// Only callers that merely ask (mode 2) are served.
    kSessionMode = 9105,
};

}  // namespace simulator
