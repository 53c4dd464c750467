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
    /// The process's only writer, created on first use; null when it cannot be created. The caller
    /// that is done with it deletes it.
    static CgiHelper* GetInstance();

    virtual ~CgiHelper();
    CgiHelper(const CgiHelper&) = delete;
    CgiHelper& operator=(const CgiHelper&) = delete;

    /// Sets a header that every later response carries.
    void SetHeader(const std::string& name, const std::string& value);

    /// Writes status line, headers and @p body.
    void SendResponse(int status, const std::string& body);

    /// Text of the caller's address; empty when the web server gave none.
    std::string GetIp(const cgicc::CgiEnvironment& environment) const;

    /// Value of the first cookie called @p name, or @p defaultValue.
    std::string GetCookie(const cgicc::CgiEnvironment& environment, const std::string& name,
                          const std::string& defaultValue) const;

  private:
    CgiHelper();

    struct State;
    std::unique_ptr<State> state;
};

/// Stores AF_INET or AF_INET6 in @p family for the address text @p ip. Returns 0 on success;
/// otherwise the text is no address and @p family is left as it was.
int GetIPAddressFamily(const std::string& ip, int* family);
