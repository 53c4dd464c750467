// What kestal-conformance prints: a line for each call and each finding, in order.
#pragma once

#include <chrono>
#include <mutex>
#include <set>
#include <string>

namespace conformance {

using Duration = std::chrono::steady_clock::duration;

class Report {
  public:
    /// Prints that @p call, the name and what stands in its parentheses, has answered @p seen.
    void Answered(const std::string& call, const std::string& seen, Duration time);

    /// Prints one line that is no finding.
    void Note(const std::string& line);

    /// Prints that @p call breaks a promise; a reason that has been printed before is left out.
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

/// @p text in quotation marks, control characters and bytes above ASCII as \xNN.
std::string Quoted(const std::string& text);

/// @p time in milliseconds.
std::string TimeText(Duration time);

}  // namespace conformance
