// The command-line options of kestal-conformance.
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
    /// A session that is logged on, and the caller to whom it belongs; empty if none is given.
    std::string session;
    std::string address = "127.0.0.1";
    std::string agent;
    /// Names to ask for, in addition to those for which every device is asked.
    std::vector<std::string> names;
};

}  // namespace conformance
