// The session check. It does not renew sessions, because pages that poll would keep a session alive
// for ever.
#include "platform/auth_session.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <mutex>
#include <vector>

#include "bindings/log.h"
#include "bindings/posix/files/watched_file.h"
#include "bindings/posix/session/session_codes.h"
#include "bindings/posix/session/session_store.h"

namespace {

using binding::Session;

/// The current sessions; the store is read again when it has changed.
class StoredSessions {
  public:
    std::shared_ptr<const std::vector<Session>> Current() {
        const std::scoped_lock lock(mutex);
        const std::string path = binding::SessionStorePath();
        const auto reading = file.ReadIfChanged(path);
        if (!reading) {
            return sessions;
        }
        sessions = std::make_shared<const std::vector<Session>>();
        std::string problem = reading->missing ? "" : reading->problem;
        try {
            sessions = std::make_shared<const std::vector<Session>>(
                binding::ReadSessions(reading->contents));
        } catch (const std::exception& error) {
            problem = path + ": " + error.what();
        }
        if (!problem.empty()) {
            BINDING_LOG(TORU_DBG_ERROR, "%s (nobody is logged in)", problem.c_str());
        }
        return sessions;
    }

  private:
    std::mutex mutex;
    binding::WatchedFile file;
    std::shared_ptr<const std::vector<Session>> sessions;
};

StoredSessions& TheSessions() {
    static StoredSessions sessions;
    return sessions;
}

/// Returns 0 if the caller has a live session, otherwise the code with which Init refuses it.
int Check(const std::string& sessionId, const webui_addr_t& address, const std::string& userAgent) {
    const std::string digest = binding::DigestOf(sessionId);
    const auto sessions = TheSessions().Current();
    const auto found = std::find_if(
        sessions->begin(), sessions->end(),
        [&](const Session& session) { return binding::SameDigest(session.digest, digest); });
    if (found == sessions->end()) {
        return binding::kSessionUnknown;
    }
    const std::string addressText = binding::AddressText(address);
    if (addressText.empty() || addressText != found->address) {
        return binding::kSessionOtherAddress;
    }
    if (!binding::SameDigest(found->userAgentDigest, binding::DigestOf(userAgent))) {
        return binding::kSessionOtherUserAgent;
    }
    return found->IsLive(binding::Now()) ? 0 : binding::kSessionExpired;
}

}  // namespace

struct AuthSession::State {
    bool loggedOn = false;
};

AuthSession::AuthSession() : state(std::make_unique<State>()) {}

AuthSession::~AuthSession() = default;

int AuthSession::Init(const std::string& sessionId, webui_addr_t address,
                      const std::string& userAgent, int mode) {
    constexpr int kOnlyAsks = 2;
    state->loggedOn = false;
    if (mode != kOnlyAsks) {
        return binding::kSessionMode;
    }
    if (sessionId.empty()) {
        return binding::kSessionUnknown;
    }
    try {
        const int refusal = Check(sessionId, address, userAgent);
        state->loggedOn = refusal == 0;
        return refusal;
    } catch (const std::exception& error) {
        BINDING_LOG(TORU_DBG_ERROR, "session check: %s", error.what());
        return binding::kSessionCheckFailed;
    }
}

int AuthSession::LoggedOn(bool& loggedOn) {
    if (!state->loggedOn) {
        return binding::kSessionUnknown;
    }
    loggedOn = true;
    return 0;
}
