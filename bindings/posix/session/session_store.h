// The store of web UI sessions: a JSON file. It never holds a session identifier, only the
// identifier's digest.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/webui.h"

namespace binding {

/// One session. Times are in seconds since the epoch.
struct Session {
    std::string digest;           ///< SHA-256 of the identifier, in hexadecimal digits
    std::string address;          ///< the caller's, see AddressText
    std::string userAgentDigest;  ///< SHA-256 of the caller's user agent
    std::int64_t opened = 0;
    std::int64_t renewed = 0;
    std::int64_t idleSeconds = 0;

    /// Whether the session is within its idle time, which counts from its last renewal. Times are
    /// whole seconds, so a session may live up to a second longer than its idle time, but never
    /// shorter. A session that was renewed in the future, because the clock was set back since, is
    /// not live.
    bool IsLive(std::int64_t now) const { return renewed <= now && now - renewed <= idleSeconds; }
};

/// Path of the store: the environment variable KESTAL_SESSIONS, or the binding's default.
std::string SessionStorePath();

/// The binding's default for the path of the store. Each binding defines this function.
std::string DefaultSessionStorePath();

/// Seconds since the epoch.
std::int64_t Now();

/// SHA-256 of @p text in hexadecimal digits.
std::string DigestOf(std::string_view text);

/// Compares two digests in a time that does not depend on where they differ.
bool SameDigest(std::string_view left, std::string_view right);

/// The address in its usual notation, an IPv4-mapped IPv6 address in that of IPv4; empty when the
/// family is unknown.
std::string AddressText(const webui_addr_t& address);

/// The sessions in a store; an empty text holds none. Throws std::exception when it is damaged.
std::vector<Session> ReadSessions(const std::string& store);

/// The live sessions in the store; none when there is no store. Throws std::exception when it
/// cannot be read.
std::vector<Session> LiveSessions();

/// Changes the sessions in the store for every process; expired ones disappear. Throws
/// std::exception, also when the store is damaged, and leaves the store as it is then.
void UpdateSessions(const std::function<void(std::vector<Session>&)>& change);

}  // namespace binding
