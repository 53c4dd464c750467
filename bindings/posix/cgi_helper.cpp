// CgiHelper and the address family.
#include "platform/cgi_helper.h"

#include <arpa/inet.h>
#include <cgicc/CgiEnvironment.h>
#include <cgicc/HTTPCookie.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <iostream>
#include <utility>
#include <vector>

#include "bindings/log.h"
#include "bindings/posix/request_title.h"

namespace {

CgiHelper* theHelper = nullptr;

constexpr std::array<std::pair<int, const char*>, 7> kReasons = {{{200, "OK"},
                                                                  {400, "Bad Request"},
                                                                  {403, "Forbidden"},
                                                                  {404, "Not Found"},
                                                                  {500, "Internal Server Error"},
                                                                  {501, "Not Implemented"},
                                                                  {503, "Service Unavailable"}}};

/// Room for a status line and a few header fields.
constexpr std::size_t kUsualHeadSize = 128;

void AppendStatusLine(int status, std::string& head) {
    head.append("Status: ").append(std::to_string(status));
    const auto* reason = std::find_if(kReasons.begin(), kReasons.end(),
                                      [&](const auto& entry) { return entry.first == status; });
    if (reason != kReasons.end()) {
        head.append(" ").append(reason->second);
    }
    head.append("\r\n");
}

}  // namespace

struct CgiHelper::State {
    std::vector<std::pair<std::string, std::string>> headers;
};

CgiHelper::CgiHelper() : state(std::make_unique<State>()) {}

CgiHelper::~CgiHelper() {
    theHelper = nullptr;
}

CgiHelper* CgiHelper::GetInstance() {
    if (theHelper == nullptr) {
        try {
            theHelper = new CgiHelper;
        } catch (const std::exception& error) {
            BINDING_LOG(TORU_DBG_ERROR, "CgiHelper: %s", error.what());
        }
    }
    return theHelper;
}

void CgiHelper::SetHeader(const std::string& name, const std::string& value) {
    auto& headers = state->headers;
    const auto found = std::find_if(headers.begin(), headers.end(),
                                    [&](const auto& header) { return header.first == name; });
    if (found != headers.end()) {
        found->second = value;
    } else {
        headers.emplace_back(name, value);
    }
}

void CgiHelper::SendResponse(int status, const std::string& body) {
    std::string head;
    head.reserve(kUsualHeadSize);
    AppendStatusLine(status, head);
    for (const auto& [name, value] : state->headers) {
        head.append(name).append(": ").append(value).append("\r\n");
    }
    head.append("\r\n");
    // Whoever owns the stream flushes it when the response is complete.
    std::cout << head << body;
}

std::string CgiHelper::GetIp(const cgicc::CgiEnvironment& environment) const {
    // Asking for the address is the first thing that a request does with its environment.
    binding::NoteRequest(environment.getRequestMethod(), environment.getScriptName(),
                         environment.getPathInfo());
    return environment.getRemoteAddr();
}

std::string CgiHelper::GetCookie(const cgicc::CgiEnvironment& environment, const std::string& name,
                                 const std::string& defaultValue) const {
    const auto& cookies = environment.getCookieList();
    const auto found = std::find_if(cookies.begin(), cookies.end(),
                                    [&](const auto& cookie) { return cookie.getName() == name; });
    return found == cookies.end() ? defaultValue : found->getValue();
}

int GetIPAddressFamily(const std::string& ip, int* family) {
    // inet_pton would not see what follows a NUL.
    const bool isText = ip.find('\0') == std::string::npos;
    std::array<std::byte, sizeof(in6_addr)> address{};
    for (const int candidate : {AF_INET, AF_INET6}) {
        if (isText && inet_pton(candidate, ip.c_str(), address.data()) == 1) {
            *family = candidate;
            return 0;
        }
    }
    return 1;
}
