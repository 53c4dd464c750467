// A response writer of your own, instead of that in bindings/posix.
#include "platform/cgi_helper.h"

#include <cgicc/CgiEnvironment.h>

#include "../not_supported.h"

// The headers that every response carries.
struct CgiHelper::State {};

CgiHelper::CgiHelper() = default;

CgiHelper::~CgiHelper() = default;

// Make the process's only writer on the first call, and return the same from then on.
CgiHelper* CgiHelper::GetInstance() {
    return nullptr;
}

// Remember the header, in place of an earlier one of that name.
void CgiHelper::SetHeader(const std::string& /*name*/, const std::string& /*value*/) {}

// Write "Status: 200 OK", the headers, an empty line and the body to std::cout.
void CgiHelper::SendResponse(int /*status*/, const std::string& /*body*/) {}

// Return environment.getRemoteAddr().
std::string CgiHelper::GetIp(const cgicc::CgiEnvironment& /*environment*/) const {
    return {};
}

// Look the cookie up in environment.getCookieList().
std::string CgiHelper::GetCookie(const cgicc::CgiEnvironment& /*environment*/,
                                 const std::string& /*name*/,
                                 const std::string& defaultValue) const {
    return defaultValue;
}

// Try inet_pton with either family.
int GetIPAddressFamily(const std::string& /*ip*/, int* /*family*/) {
    return kNotSupported;
}
