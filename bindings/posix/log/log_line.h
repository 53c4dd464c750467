// One line of a log.
#pragma once

#include <array>
#include <chrono>
#include <cstdarg>
#include <cstddef>
#include <optional>
#include <string_view>

namespace binding {

/// Builds a line in place: a head, a message and notes. Allocates nothing and takes no lock; small
/// enough for the stack of a signal handler. Whatever is added, the line is valid UTF-8 without
/// control characters.
class LogLine {
  public:
    /// Begins with "2026-11-21T12:00:00.123Z program[pid] ", as the debug log does; for the
    /// journal, with "<level>" before that, which the journal takes off.
    static LogLine ForDebugLog(const char* programName, std::optional<int> journalLevel);

    /// Begins with "<priority>program[pid]: ". It has no time, because the system log records when
    /// a line arrives.
    static LogLine ForSystemLog(const char* programName, int priority);

    LogLine() = default;

    /// Adds a message. A line feed at its end is dropped. Every other character that a terminal
    /// obeys instead of showing, and every byte that is not UTF-8, is replaced by '?'. A message
    /// that is too long is cut and marked as cut.
    [[gnu::format(printf, 2, 0)]] void Append(const char* format, std::va_list arguments);

    /// Adds text of an earlier line, which is harmless already.
    void Append(std::string_view earlier);

    /// Adds a short note about the line, for which there is always room.
    [[gnu::format(printf, 2, 3)]] void Note(const char* format, ...);

    /// Notes that the line stands for @p count occurrences, unless that is 1.
    void NoteCount(unsigned int count);

    /// Notes that the line came @p count times, the last time @p age ago.
    void NoteHeld(unsigned int count, std::chrono::seconds age);

    /// The text after the head.
    std::string_view Message() const { return {text.data() + head, length - head}; }

    /// The whole line; valid as long as the object exists.
    std::string_view Text() const { return {text.data(), length}; }

    /// The same with a line feed.
    std::string_view Finish();

  private:
    [[gnu::format(printf, 2, 3)]] void Begin(const char* format, ...);

    std::array<char, 4096> text{};
    std::size_t length = 0;
    std::size_t head = 0;
};

}  // namespace binding
