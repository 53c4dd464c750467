// Keeps a persistent fault from filling a log with the same line.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <string_view>

namespace binding {

/// Lets a line through at once. After that it lets the same line through at most once a minute,
/// together with the number of occurrences that it stands for. A line that has not come for a
/// minute counts as new. Only the latest lines are remembered, in memory inside the object.
///
/// May be used by any thread and in signal handlers, because it never waits: a caller that finds it
/// in use lets its line through. It has no timer. The count of a held-back line is reported with
/// the same line after a minute, with the next line of any kind after a minute, or at the end.
class RepeatedLines {
  public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// Writes @p line, which was held back @p count times, the last time @p age ago.
    using Tell = void (*)(std::string_view line, unsigned int count, std::chrono::seconds age);

    /// Registers a line that comes @p now. Returns how many occurrences it stands for; 0 if the
    /// caller must hold it back. Also reports other held-back lines whose minute is over.
    unsigned int Take(std::string_view line, TimePoint now, Tell tell);

    /// Reports the held-back lines whose minute is over.
    void TellOverdue(TimePoint now, Tell tell);

    /// Reports everything that is held back and forgets all lines.
    void End(TimePoint now, Tell tell);

  private:
    /// A device in which everything fails causes about 50 different lines.
    static constexpr std::size_t kLines = 64;
    /// Longer lines are never held back. Lines about failed calls have about 200 bytes.
    static constexpr std::size_t kLongestLine = 512;

    struct Line {
        std::size_t length = 0;  ///< 0 when nothing is remembered
        unsigned int held = 0;   ///< how often it was held back since it was let through
        TimePoint shown;         ///< when it was last let through or reported
        TimePoint seen;          ///< when it last came
    };

    std::string_view Text(std::size_t index) const {
        return {texts.at(index).data(), lines.at(index).length};
    }
    std::size_t Find(std::string_view line) const;
    std::size_t MakeRoom(TimePoint now, Tell tell);
    void TellHeld(std::size_t index, TimePoint now, Tell tell);
    void TellAllOverdue(TimePoint now, Tell tell);

    std::atomic_flag inUse;
    unsigned int linesHeld = 0;  ///< how many lines have a count to report
    std::array<Line, kLines> lines;
    std::array<std::array<char, kLongestLine>, kLines> texts{};
};

/// Registers a line that comes now. Returns how many occurrences it stands for; 0 if it must be
/// held back, which happens to failures only. On an alternate signal stack, as a crash handler uses
/// it, nothing is held back: its lines are the last ones of the process, and identical ones are
/// frames of a recursion, not a persistent fault. There, everything that is held back is reported
/// first, because the process may end without another chance to do so.
unsigned int CountLine(RepeatedLines& lines, std::string_view line, bool isFailure,
                       RepeatedLines::Tell tell);

/// The time by which the logs count minutes. A test may set another clock; null restores the real
/// one.
RepeatedLines::TimePoint LogTime();
void SetLogClock(RepeatedLines::TimePoint (*clock)());

}  // namespace binding
