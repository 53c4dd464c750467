// Sessions of a login service of your own, instead of those in bindings/posix/session.
#include "platform/auth_session.h"

#include "../not_supported.h"

// What Init has found out.
struct AuthSession::State {};

AuthSession::AuthSession() : state(std::make_unique<State>()) {}

AuthSession::~AuthSession() = default;

// Ask your login service for the session of this caller. Refuse it to any other address or user
// agent, and do not take the question for a sign of life of the user: pages ask without end.
int AuthSession::Init(const std::string& /*sessionId*/, webui_addr_t /*address*/,
                      const std::string& /*userAgent*/, int /*mode*/) {
    return kNotSupported;
}

// Whether the session that Init has found is logged on.
int AuthSession::LoggedOn(bool& /*loggedOn*/) {
    return kNotSupported;
}
