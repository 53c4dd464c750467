#include "bindings/posix/session/session_login.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "bindings/posix/session/session_store.h"
#include "platform/cgi_helper.h"

namespace binding {

namespace {

constexpr std::string_view kCookieName = "torusess=";

std::string NewIdentifier() {
    std::array<std::uint8_t, 32> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        throw std::runtime_error("no random bytes");
    }
    std::string text;
    for (const std::uint8_t byte : bytes) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text;
}

std::string CanonicalAddress(const std::string& text) {
    webui_addr_t address{};
    int family = 0;
    if (GetIPAddressFamily(text, &family) != 0 ||
        inet_pton(family, text.c_str(), address.address) != 1) {
        throw std::invalid_argument("'" + text + "' is not an IP address");
    }
    address.family = static_cast<std::uint32_t>(family);
    return AddressText(address);
}

/// Runs @p change on the session @p identifier.
void ChangeOne(
    const std::string& identifier,
    const std::function<void(std::vector<Session>&, std::vector<Session>::iterator)>& change) {
    const std::string digest = DigestOf(identifier);
    UpdateSessions([&](std::vector<Session>& sessions) {
        const auto found = std::find_if(
            sessions.begin(), sessions.end(),
            [&](const Session& session) { return SameDigest(session.digest, digest); });
        if (found == sessions.end()) {
            throw std::runtime_error("no such session");
        }
        change(sessions, found);
    });
}

}  // namespace

std::string OpenSession(const std::string& address, const std::string& userAgent,
                        std::uint32_t idleSeconds) {
    const std::string identifier = NewIdentifier();
    const std::int64_t now = Now();
    const Session session{.digest = DigestOf(identifier),
                          .address = CanonicalAddress(address),
                          .userAgentDigest = DigestOf(userAgent),
                          .opened = now,
                          .renewed = now,
                          .idleSeconds = idleSeconds};
    UpdateSessions([&](std::vector<Session>& sessions) { sessions.push_back(session); });
    return std::string(kCookieName) + identifier;
}

std::string IdentifierIn(const std::string& cookie) {
    return cookie.starts_with(kCookieName) ? cookie.substr(kCookieName.size()) : cookie;
}

void RenewSession(const std::string& identifier) {
    ChangeOne(identifier, [](auto& /*sessions*/, auto session) { session->renewed = Now(); });
}

void CloseSession(const std::string& identifier) {
    ChangeOne(identifier, [](auto& sessions, auto session) { sessions.erase(session); });
}

void CloseAllSessions() {
    UpdateSessions([](std::vector<Session>& sessions) { sessions.clear(); });
}

}  // namespace binding
