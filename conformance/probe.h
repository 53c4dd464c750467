// Makes the calls of a binding: measures their time, enforces a limit, and names the call if it
// crashes the process.
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

/// What a call has answered, as text.
struct Outcome {
    /// Whether it has worked, or the code with which it has failed. This stays the same while the
    /// device works.
    std::string code;
    /// What it has delivered. This may be another value each time, such as a signal level.
    std::string values;

    std::string Text() const { return code + (values.empty() ? "" : ", ") + values; }
};

/// A call that can be made repeatedly. Its function makes the call and checks everything in the
/// answer that must be right each time, such as terminators.
struct Repeatable {
    std::string call;
    std::function<Outcome()> make;
};

class Probe {
  public:
    Probe(Report& newReport, std::chrono::seconds newLimit);

    /// Makes @p call and returns how long it took. @p name is its name as platform/ declares it.
    /// May be used by any thread. A call that does not return within the limit ends the process.
    Duration Make(const std::string& name, const std::function<void()>& call);

    /// The same, and prints a line: `name(arguments) -> seen()`.
    void Tell(const std::string& name, const std::string& arguments,
              const std::function<void()>& call, const std::function<std::string()>& seen);

    /// The same for a call whose only answer is a code. Returns the code.
    int Code(const std::string& name, const std::string& arguments,
             const std::function<int()>& call);

    /// Keeps a call for the tests with threads and signals.
    void Keep(Repeatable call) { repeatables.push_back(std::move(call)); }
    const std::vector<Repeatable>& Kept() const { return repeatables; }

    /// Prints that @p name is left out, and why.
    void Skip(const std::string& name, const std::string& reason);

    /// Reports each declared call that has neither been made nor left out.
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
