// Codes with which AuthSession::Init refuses.
#pragma once

namespace binding {

enum SessionCode : int {
    /// The check itself failed, for want of memory as a rule.
    kSessionCheckFailed = 9004,
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

}  // namespace binding
