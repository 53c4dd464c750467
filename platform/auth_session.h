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

    /// Looks up the session @p sessionId of the caller with @p address and @p userAgent. @p mode is
    /// 2 for a caller that only asks whether there is one. Returns 0 if there is, otherwise another
    /// code.
    int Init(const std::string& sessionId, webui_addr_t address, const std::string& userAgent,
             int mode);

    /// Stores in @p loggedOn whether the session is logged on. Is only called after Init has
    /// succeeded, and then succeeds as long as there is the session. Returns 0 on success; on
    /// failure, @p loggedOn stays as it was.
    int LoggedOn(bool& loggedOn);

  private:
    struct State;
    std::unique_ptr<State> state;
};
