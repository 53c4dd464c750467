#include "bindings/posix/log/repeated_lines.h"

#include <algorithm>
#include <csignal>
#include <utility>

namespace binding {

namespace {

constexpr std::chrono::minutes kPause(1);

std::atomic<RepeatedLines::TimePoint (*)()> logClock = nullptr;

/// A lock that never waits: IsOurs says whether this object got the flag or somebody else has it.
class Turn {
  public:
    explicit Turn(std::atomic_flag& newFlag)
        : flag(newFlag), isOurs(!flag.test_and_set(std::memory_order_acquire)) {}
    ~Turn() {
        if (isOurs) {
            flag.clear(std::memory_order_release);
        }
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    bool IsOurs() const { return isOurs; }

  private:
    std::atomic_flag& flag;
    bool isOurs;
};

bool IsOnSignalStack() {
    stack_t stack{};
    return sigaltstack(nullptr, &stack) == 0 && (stack.ss_flags & SS_ONSTACK) != 0;
}

}  // namespace

unsigned int RepeatedLines::Take(std::string_view line, TimePoint now, Tell tell) {
    const Turn turn(inUse);
    if (!turn.IsOurs()) {
        return 1;
    }
    if (line.empty() || line.size() > kLongestLine) {
        TellAllOverdue(now, tell);
        return 1;
    }
    std::size_t index = Find(line);
    if (index == kLines) {
        TellAllOverdue(now, tell);
        index = MakeRoom(now, tell);
        lines.at(index) = {.length = line.size(), .held = 0, .shown = now, .seen = now};
        line.copy(texts.at(index).data(), line.size());
        return 1;
    }
    Line& known = lines.at(index);
    const bool isBack = now - known.seen >= kPause;
    if (isBack) {
        // The fault had gone away. Its repetitions are reported separately from those of the new
        // fault.
        TellHeld(index, now, tell);
    }
    known.seen = now;
    unsigned int count = 0;
    if (!isBack && now - known.shown < kPause) {
        linesHeld += known.held == 0 ? 1 : 0;
        ++known.held;
    } else {
        linesHeld -= known.held == 0 ? 0 : 1;
        count = known.held + 1;
        known.held = 0;
        known.shown = now;
    }
    TellAllOverdue(now, tell);
    return count;
}

void RepeatedLines::TellOverdue(TimePoint now, Tell tell) {
    const Turn turn(inUse);
    if (turn.IsOurs()) {
        TellAllOverdue(now, tell);
    }
}

void RepeatedLines::End(TimePoint now, Tell tell) {
    const Turn turn(inUse);
    if (!turn.IsOurs()) {
        return;
    }
    for (std::size_t index = 0; index < kLines; ++index) {
        TellHeld(index, now, tell);
        lines.at(index) = {};
    }
}

std::size_t RepeatedLines::Find(std::string_view line) const {
    std::size_t index = 0;
    while (index < kLines && Text(index) != line) {
        ++index;
    }
    return index;
}

/// Returns an unused place or, if there is none, that of the line that came longest ago.
std::size_t RepeatedLines::MakeRoom(TimePoint now, Tell tell) {
    const auto* const oldest =
        std::min_element(lines.begin(), lines.end(), [](const Line& a, const Line& b) {
            return std::pair(a.length > 0, a.seen) < std::pair(b.length > 0, b.seen);
        });
    const auto index = static_cast<std::size_t>(oldest - lines.begin());
    TellHeld(index, now, tell);
    return index;
}

void RepeatedLines::TellHeld(std::size_t index, TimePoint now, Tell tell) {
    Line& line = lines.at(index);
    if (line.held == 0) {
        return;
    }
    tell(Text(index), line.held, std::chrono::duration_cast<std::chrono::seconds>(now - line.seen));
    line.held = 0;
    line.shown = now;
    --linesHeld;
}

void RepeatedLines::TellAllOverdue(TimePoint now, Tell tell) {
    for (std::size_t index = 0; index < kLines && linesHeld > 0; ++index) {
        if (now - lines.at(index).shown >= kPause) {
            TellHeld(index, now, tell);
        }
    }
}

unsigned int CountLine(RepeatedLines& lines, std::string_view line, bool isFailure,
                       RepeatedLines::Tell tell) {
    if (IsOnSignalStack()) {
        lines.End(LogTime(), tell);
        return 1;
    }
    if (isFailure) {
        return lines.Take(line, LogTime(), tell);
    }
    lines.TellOverdue(LogTime(), tell);
    return 1;
}

RepeatedLines::TimePoint LogTime() {
    const auto clock = logClock.load(std::memory_order_relaxed);
    return clock == nullptr ? std::chrono::steady_clock::now() : clock();
}

void SetLogClock(RepeatedLines::TimePoint (*clock)()) {
    logClock = clock;
}

}  // namespace binding
