// cgicc::FCgiIO for a cgicc that was installed without it.
#pragma once

#include <cgicc/CgiInput.h>
#include <fcgiapp.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <string>

namespace cgicc {

/// Lets cgicc read one FastCGI request: the body from the request's input stream, the variables
/// from its environment, which is asked and not copied. The request must outlive the adapter.
class FCgiIO : public CgiInput {
  public:
    explicit FCgiIO(FCGX_Request& fcgiRequest) : request(fcgiRequest) {}
    ~FCgiIO() override = default;
    FCgiIO(const FCgiIO&) = delete;
    FCgiIO& operator=(const FCgiIO&) = delete;

    /// Reads up to @p length bytes of the body; returns how many there were.
    size_t read(char* data, size_t length) override {
        const int wanted = static_cast<int>(std::min<size_t>(length, INT_MAX));
        return static_cast<size_t>(std::max(FCGX_GetStr(data, wanted, request.in), 0));
    }

    /// Value of a variable; empty when the request does not have it.
    std::string getenv(const char* name) override {
        const char* value = FCGX_GetParam(name, request.envp);
        return value == nullptr ? std::string() : std::string(value);
    }

  private:
    FCGX_Request& request;
};

}  // namespace cgicc
