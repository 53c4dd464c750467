// The least that the libraries of the service take: a stored body through std::cout, after cgicc
// has read the request.
#include <cgicc/Cgicc.h>
#include <cgicc/FCgiIO.h>
#include <fcgio.h>

#include <iostream>

#include "bench/responders/stored_body.h"

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
        cgicc::FCgiIO input(request);
        const cgicc::Cgicc cgi(&input);
        std::cout << "Status: 200 OK\r\nContent-Type: application/json\r\n\r\n" << body;
        std::cout.rdbuf(original);
        FCGX_Finish_r(&request);
    }
    return 0;
}
