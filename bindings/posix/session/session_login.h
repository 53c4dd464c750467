// Logging callers of the web UI in and out.
#pragma once

#include <cstdint>
#include <string>

namespace binding {

/// Opens a session for a caller from @p address, an IP address, whose user agent is @p userAgent,
/// and returns its cookie. It ends @p idleSeconds after it was opened or renewed. Throws
/// std::invalid_argument if @p address is not an IP address, and what UpdateSessions throws.
std::string OpenSession(const std::string& address, const std::string& userAgent,
                        std::uint32_t idleSeconds);

/// The identifier in @p cookie, which may be the cookie as OpenSession returns it or its value.
std::string IdentifierIn(const std::string& cookie);

/// Throw std::runtime_error when there is no such session, and what UpdateSessions throws.
void RenewSession(const std::string& identifier);
void CloseSession(const std::string& identifier);

void CloseAllSessions();

}  // namespace binding
