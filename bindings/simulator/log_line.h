// One line of the debug log.
#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>
#include <string_view>

namespace simulator {

/// Builds "2026-11-21T12:00:00.123Z program[pid] message" in place. Allocates nothing and takes no
/// lock; small enough for the stack of a signal handler.
class LogLine {
  public:
    /// Begins with the time, @p programName and the process.
    explicit LogLine(const char* programName);

    /// Adds the message. A line feed at its end is dropped, other control characters become '?',
    /// and what does not fit is cut off, visibly.
    [[gnu::format(printf, 2, 0)]] void Append(const char* format, std::va_list arguments);

    /// The whole line with its line feed; valid as long as the object.
    std::string_view Finish();

  private:
    std::array<char, 4096> text;
    std::size_t length = 0;
};

}  // namespace simulator
