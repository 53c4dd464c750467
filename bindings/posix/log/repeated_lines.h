// Keeps a fault that stays from filling a log with one line.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <string_view>

namespace binding {

/// Lets a line through at once, and the same line at most once a minute after that, with the number
/// of times that it stands for. One that has not come for a minute is new again. Remembers the
/// lines that came last, in memory of its own.
///
/// Works in any thread and in signal handlers, because it never waits: whoever finds it in use lets
/// the line through. It does not wake up by itself either. What it has held back is told by the
/// line of the next minute, by the next line of any kind, or at the end.
class RepeatedLines {
  public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// Writes @p line, which was held back @p count times, @p age ago for the last time.
    using Tell = void (*)(std::string_view line, unsigned int count, std::chrono::seconds age);

    /// Takes in a line that comes @p now. Returns how many lines it stands for; 0 when it is to be
    /// held back. Tells other lines whose minute is over.
    unsigned int Take(std::string_view line, TimePoint now, Tell tell);

    /// Tells lines whose minute is over.
    void TellOverdue(TimePoint now, Tell tell);

    /// Tells all that is held back and forgets all lines.
    void End(TimePoint now, Tell tell);

  private:
    /// A fault of everything in the device makes some 50 lines.
    static constexpr std::size_t kLines = 64;
    /// Longer lines are never held back. Those of failed calls have some 200 bytes.
    static constexpr std::size_t kLongestLine = 512;

    struct Line {
        std::size_t length = 0;  ///< 0 when nothing is remembered
        unsigned int held = 0;   ///< how often it was held back since it was let through
        TimePoint shown;         ///< when it was let through, or its number told, for the last time
        TimePoint seen;          ///< when it came for the last time
    };

    std::string_view Text(std::size_t index) const {
        return {texts.at(index).data(), lines.at(index).length};
    }
    std::size_t Find(std::string_view line) const;
    std::size_t MakeRoom(TimePoint now, Tell tell);
    void TellHeld(std::size_t index, TimePoint now, Tell tell);
    void TellAllOverdue(TimePoint now, Tell tell);

    std::atomic_flag inUse;
    unsigned int linesHeld = 0;  ///< how many lines have a number to tell
    std::array<Line, kLines> lines;
    std::array<std::array<char, kLongestLine>, kLines> texts{};
};

/// Takes in a line that comes now, and returns how many it stands for; 0 when @p lines hold it
/// back, which they do with failures only. Never in a handler on a stack of its own, as a crash
/// has: its lines are the last ones of the process, and identical ones are frames of a recursion,
/// not a fault that stays. All that is held back is then told first, because the process may end
/// without telling it.
unsigned int CountLine(RepeatedLines& lines, std::string_view line, bool isFailure,
                       RepeatedLines::Tell tell);

/// The time that the logs take minutes from. A test sets another clock; null sets the real one.
RepeatedLines::TimePoint LogTime();
void SetLogClock(RepeatedLines::TimePoint (*clock)());

}  // namespace binding
