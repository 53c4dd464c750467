// The cost of the service's libraries alone: cgicc reads the request through libfcgi, and a fixed
// body is written through std::cout.
#include <cgicc/CgiInput.h>
#include <cgicc/Cgicc.h>
#include <fcgio.h>

#include <cstddef>
#include <iostream>
#include <string>

#include "bench/responders/stored_body.h"

namespace {

/// Used in place of cgicc::FCgiIO, so that improvements of our own FCgiIO do not change this
/// baseline.
class LibfcgiInput : public cgicc::CgiInput {
  public:
    explicit LibfcgiInput(FCGX_Request& fcgiRequest) : request(fcgiRequest) {}

    std::size_t read(char* data, std::size_t length) override {
        const int size = FCGX_GetStr(data, static_cast<int>(length), request.in);
        return static_cast<std::size_t>(size);
    }

    std::string getenv(const char* name) override {
        const char* value = FCGX_GetParam(name, request.envp);
        return value == nullptr ? "" : value;
    }

  private:
    FCGX_Request& request;
};

}  // namespace

int main() {
    const std::string body = StoredBody();
    FCGX_Request request{};
    if (FCGX_Init() != 0 || FCGX_InitRequest(&request, 0, 0) != 0) {
        return 1;
    }
    std::streambuf* const original = std::cout.rdbuf();
    while (FCGX_Accept_r(&request) >= 0) {
        fcgi_streambuf buffer(request.out);
        std::cout.rdbuf(&buffer);
        LibfcgiInput input(request);
        const cgicc::Cgicc cgi(&input);
        std::cout << "Status: 200 OK\r\nContent-Type: application/json\r\n\r\n" << body;
        std::cout.rdbuf(original);
        FCGX_Finish_r(&request);
    }
    return 0;
}
