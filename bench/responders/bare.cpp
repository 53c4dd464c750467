// The smallest responder that libfcgi allows: it answers every request with a fixed body.
#include <fcgiapp.h>

#include "bench/responders/stored_body.h"

int main() {
    const std::string answer =
        "Status: 200 OK\r\nContent-Type: application/json\r\n\r\n" + StoredBody();
    FCGX_Request request{};
    if (FCGX_Init() != 0 || FCGX_InitRequest(&request, 0, 0) != 0) {
        return 1;
    }
    while (FCGX_Accept_r(&request) >= 0) {
        FCGX_PutStr(answer.data(), static_cast<int>(answer.size()), request.out);
        FCGX_Finish_r(&request);
    }
    return 0;
}
