// Common web library: the response writer.
#pragma once

#include <memory>
#include <string>

namespace cgicc {
class CgiEnvironment;
}

/// Writes CGI responses to std::cout and reads the caller's address and cookies.
class CgiHelper {
  public:
    /// The process's only writer, created on first use; null if it cannot be created. The caller
    /// deletes it when it no longer needs it.
    static CgiHelper* GetInstance();

    virtual ~CgiHelper();
    CgiHelper(const CgiHelper&) = delete;
    CgiHelper& operator=(const CgiHelper&) = delete;

    /// Sets a header that every later response carries.
    void SetHeader(const std::string& name, const std::string& value);

    /// Writes status line, headers and @p body.
    void SendResponse(int status, const std::string& body);

    /// Text of the caller's address; empty if the web server has not passed one.
    std::string GetIp(const cgicc::CgiEnvironment& environment) const;

    /// Value of the first cookie called @p name, or @p defaultValue.
    std::string GetCookie(const cgicc::CgiEnvironment& environment, const std::string& name,
                          const std::string& defaultValue) const;

  private:
    CgiHelper();

    struct State;
    std::unique_ptr<State> state;
};

/// Stores AF_INET or AF_INET6 in @p family, depending on the address text @p ip. Returns 0 on
/// success. Any other result means that the text is no address; @p family then stays as it was.
int GetIPAddressFamily(const std::string& ip, int* family);
