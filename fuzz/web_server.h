// The web server's side of FastCGI, for a responder that runs in the same thread: everything is
// sent before the responder begins, and read after it has ended.
#pragma once

#include <string>
#include <utility>
#include <vector>

/// A request: variables in their order, and the body.
struct WebRequest {
    std::vector<std::pair<std::string, std::string>> variables;
    std::string body;
};

/// The answer to a request.
struct WebAnswer {
    std::string output;
    int endings = 0;  ///< how often the request was ended
};

/// Serves @p requests, each on a connection of its own. @p responder listens on the standard input
/// and returns when there are no more connections.
std::vector<WebAnswer> Serve(const std::vector<WebRequest>& requests, int (*responder)());
