// Common web library: the check of web UI sessions.
#pragma once

#include <memory>
#include <string>

#include "platform/webui.h"

/// Check of one web UI session.
class AuthSession {
  public:
    AuthSession();
    ~AuthSession();
    AuthSession(const AuthSession&) = delete;
    AuthSession& operator=(const AuthSession&) = delete;

    /// Looks the session up for this caller. @p mode is 2 for a caller that only asks. Returns 0
    /// when there is such a session.
    int Init(const std::string& sessionId, webui_addr_t address, const std::string& userAgent,
             int mode);

    /// Stores whether the session is logged on. Returns 0 on success; needs a successful Init.
    int LoggedOn(bool& loggedOn);

  private:
    struct State;
    std::unique_ptr<State> state;
};
