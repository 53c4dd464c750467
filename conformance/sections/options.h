// What the caller of kestal-conformance wants.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace conformance {

struct Options {
    std::chrono::seconds limit{10};
    std::vector<std::string> only;  ///< names of sections; empty for all
    std::vector<std::string> skip;
    bool actions = false;
    /// A session that is logged on, and the caller that it belongs to; empty when there is none.
    std::string session;
    std::string address = "127.0.0.1";
    std::string agent;
    /// Names that are asked for beside those that every device is asked for.
    std::vector<std::string> names;
};

}  // namespace conformance
