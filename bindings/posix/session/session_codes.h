// Codes with which AuthSession::Init refuses a caller.
#pragma once

namespace binding {

enum SessionCode : int {
    /// The check itself failed, usually because memory ran out.
    kSessionCheckFailed = 9004,
    /// No such session.
    kSessionUnknown = 9101,
    /// The session belongs to another address, or the caller's address is of no known family.
    kSessionOtherAddress = 9102,
    /// The session belongs to another user agent.
    kSessionOtherUserAgent = 9103,
    /// The session has been idle for too long.
    kSessionExpired = 9104,
    /// The mode is not 2: only callers that merely ask for a session are served.
    kSessionMode = 9105,
};

}  // namespace binding
