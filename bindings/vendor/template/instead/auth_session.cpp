// Sessions of a login service of your own, instead of those in bindings/posix/session.
#include "platform/auth_session.h"

#include "../not_supported.h"

// What Init has found out.
struct AuthSession::State {};

AuthSession::AuthSession() : state(std::make_unique<State>()) {}

AuthSession::~AuthSession() = default;

// Ask your login service for the session of this caller. Refuse a caller with another address or
// user agent. Do not treat the call as activity of the user: pages ask all the time.
int AuthSession::Init(const std::string& /*sessionId*/, webui_addr_t /*address*/,
                      const std::string& /*userAgent*/, int /*mode*/) {
    return kNotSupported;
}

// Whether the session that Init has found is logged on.
int AuthSession::LoggedOn(bool& /*loggedOn*/) {
    return kNotSupported;
}
