#include <arpa/inet.h>
#include <cgicc/Cgicc.h>
#include <cgicc/FCgiIO.h>

#include <charconv>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "framework/log.h"
#include "platform/auth_session.h"
#include "platform/cgi_helper.h"
#include "service/request_loop.h"

namespace {

constexpr const char* kSessionCookie = "torusess";

/// The mode of a caller that only asks for a session (see AuthSession::Init).
constexpr int kSessionMode = 2;

/// No operation reads a body. But cgicc allocates memory for as many bytes as a request announces
/// before it reads them, so a request that announces an absurd number must not reach it.
constexpr std::uint32_t kMaxBodySize = 1024 * 1024;

bool HasAcceptableBody(const char* signature, const FCGX_Request& request) {
    const char* given = FCGX_GetParam("CONTENT_LENGTH", request.envp);
    const std::string_view length = given == nullptr ? "" : given;
    if (length.empty()) {
        return true;
    }
    std::uint32_t size = 0;
    const auto [end, error] = std::from_chars(length.data(), length.data() + length.size(), size);
    if (error == std::errc() && end == length.data() + length.size() && size <= kMaxBodySize) {
        return true;
    }
    KESTAL_FAILURE("unacceptable length of request body: %s", given);
    return false;
}

bool HasSession(const char* signature, const CgiHelper& helper, FCGX_Request& request) {
    cgicc::FCgiIO input(request);
    const cgicc::Cgicc cgi(&input);
    const cgicc::CgiEnvironment& environment = cgi.getEnvironment();

    const std::string ip = helper.GetIp(environment);
    int family = 0;
    if (GetIPAddressFamily(ip, &family) != 0) {
        KESTAL_FAILURE_UNSEPARATED(" Kestal.cgi: Unable to determine the family of ip(%s)",
                                   ip.c_str());
        return false;
    }
    webui_addr_t address{};
    address.family = static_cast<std::uint32_t>(family);
    inet_pton(family, ip.c_str(), address.address);

    const std::string sessionId = helper.GetCookie(environment, kSessionCookie, "");
    KESTAL_DEBUG("sessionId %s", sessionId.c_str());
    const std::string userAgent = environment.getUserAgent();
    AuthSession session;
    bool loggedIn = false;
    if (session.Init(sessionId, address, userAgent, kSessionMode) == 0) {
        session.LoggedOn(loggedIn);
    }
    return loggedIn;
}

}  // namespace

int GetLoginStatus(CgiHelper* helper, FCGX_Request& request) {
    KESTAL_SIGNATURE("int GetLoginStatus(CgiHelper*, FCGX_Request&)");
    KESTAL_BEGIN();
    bool loggedIn = false;
    try {
        loggedIn = HasAcceptableBody(signature, request) && HasSession(signature, *helper, request);
    } catch (const std::exception& error) {
        // cgicc throws on a body that is shorter than announced.
        KESTAL_FAILURE("session check failed: %s", error.what());
    } catch (...) {
        KESTAL_FAILURE("session check failed");
    }
    KESTAL_DEBUG("kestal admin %s logged in", loggedIn ? "is" : "not");
    KESTAL_DEBUG("END by returning [%d]", loggedIn ? 1 : 0);
    return loggedIn ? 1 : 0;
}
