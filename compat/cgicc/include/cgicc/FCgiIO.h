// cgicc::FCgiIO, for the case that the installed cgicc does not contain it.
#pragma once

#include <cgicc/CgiInput.h>
#include <fcgiapp.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <string>

namespace cgicc {

/// Lets cgicc read one FastCGI request: the body from the request's input stream, the variables
/// from its environment, which is not copied. The request must outlive this object.
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

    /// Value of a variable, the first if there are several; empty when the request does not have
    /// it.
    std::string getenv(const char* name) override {
        const std::size_t length = std::strlen(name);
        for (char** entry = request.envp; entry != nullptr && *entry != nullptr; ++entry) {
            // cgicc asks for about thirty names per request. Comparing the first letter before
            // anything else excludes most variables quickly.
            if (**entry == *name && std::strncmp(*entry, name, length) == 0 &&
                (*entry)[length] == '=') {
                return *entry + length + 1;
            }
        }
        return {};
    }

  private:
    FCGX_Request& request;
};

}  // namespace cgicc
