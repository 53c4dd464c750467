// What kestal-conformance prints: a line for each call and each finding, in order.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>

namespace conformance {

using Duration = std::chrono::steady_clock::duration;

class Report {
  public:
    /// Prints that @p call, a name with its arguments in parentheses, has answered @p seen.
    void Answered(const std::string& call, const std::string& seen, Duration time);

    /// Prints one line that is not a finding.
    void Note(const std::string& line);

    /// Prints that @p call breaks a promise; the same reason is printed only once.
    void Fail(const std::string& call, const std::string& reason);

    /// Prints the number of calls and findings. Returns the exit status: 1 when there are findings.
    int Summarize();

  private:
    void Print(const std::string& line);

    std::mutex mutex;
    std::set<std::string> findings;
    unsigned int calls = 0;
    Duration slowest = Duration::zero();
    std::string slowestCall;
};

/// @p number and @p noun, which gets an s unless it is one: `1 call`, `2 calls`.
std::string Counted(std::int64_t number, const std::string& noun);

/// @p text in quotation marks, control characters and bytes above ASCII as \xNN.
std::string Quoted(const std::string& text);

/// @p time in milliseconds.
std::string TimeText(Duration time);

}  // namespace conformance
