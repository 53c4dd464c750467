// How the calls of a binding are made: timed, held to a deadline, and named when they end the
// process.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "conformance/report.h"

namespace conformance {

/// A call that can be made again and again: returns what it has answered, as text.
struct Repeatable {
    std::string call;
    std::function<std::string()> answer;
};

class Probe {
  public:
    Probe(Report& newReport, std::chrono::seconds newLimit);

    /// Makes @p call, whose name as platform/ declares it is @p name, and returns how long it took.
    /// Any thread may do so. A call that does not return within the limit ends the process.
    Duration Make(const std::string& name, const std::function<void()>& call);

    /// The same, and prints a line: `name(arguments) -> seen()`.
    void Tell(const std::string& name, const std::string& arguments,
              const std::function<void()>& call, const std::function<std::string()>& seen);

    /// The same for a call that answers nothing but a code, which is returned.
    int Code(const std::string& name, const std::string& arguments,
             const std::function<int()>& call);

    /// Keeps a call for the tests with threads and signals.
    void Keep(Repeatable call) { repeatables.push_back(std::move(call)); }
    const std::vector<Repeatable>& Kept() const { return repeatables; }

    /// Prints that @p name is left out, and why.
    void Skip(const std::string& name, const std::string& reason);

    /// Finds declared calls that have neither been made nor left out.
    void CheckThatAllWereMade();

    Report& Told() { return report; }
    std::chrono::seconds Limit() const { return limit; }

  private:
    using Clock = std::chrono::steady_clock;
    struct Running {
        std::string name;
        Clock::time_point begun;
    };

    void Watch(const std::stop_token& stop);

    Report& report;
    const std::chrono::seconds limit;
    std::vector<Repeatable> repeatables;
    std::mutex mutex;
    std::condition_variable_any changed;
    std::list<Running> running;  ///< calls that have not returned, the oldest first
    std::set<std::string> made;
    std::jthread watcher;
};

}  // namespace conformance
