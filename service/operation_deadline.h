// When the main thread counts as stuck: its start, each request and its end have to be over within
// a limit. Then DeadlineSignal() interrupts it, and the handler in signal_handlers.h ends the
// process.
#pragma once

#include <atomic>
#include <chrono>
#include <ctime>

/// How long an operation may take: three times as long as the web server waits for an answer, which
/// is KESTAL_TIMEOUT seconds. The web server checks its own limit only from time to time; after
/// three times that limit, it has certainly sent the client an error.
std::chrono::seconds OperationLimit();

/// The deadline of what the main thread is doing: the start of the process, a request or the end of
/// the process. To keep operations cheap, each one only reads the clock. The timer that sends the
/// signal is set again only if it was set some time ago, and is not stopped when an operation ends.
class OperationDeadline {
  public:
    /// Sets the limit. From now on the calling thread, the main thread, gets DeadlineSignal() at
    /// most one sixteenth of the limit after an operation has passed it. It may get the signal when
    /// no operation has passed its limit, because the timer of an earlier operation keeps running.
    void Watch(std::chrono::milliseconds newLimit);

    /// Begins an operation. Its first step is @p name, a literal.
    void Begin(const char* name);

    /// Begins the next step of the operation, @p name, a literal.
    void Enter(const char* name) { step.store(name, std::memory_order_relaxed); }

    /// Ends the operation.
    void End() { end.store(kNever, std::memory_order_relaxed); }

    /// Whether an operation is in progress that has passed its limit. Any thread may ask.
    bool IsPassed() const { return IsPassedBy(Clock::duration(0)); }

    /// Whether it has passed its limit so long ago that DeadlineSignal() would have ended the
    /// process unless the main thread blocks the signal. Any thread may ask.
    bool IsLongPassed() const;

    /// The step that was begun last.
    const char* Step() const { return step.load(std::memory_order_relaxed); }

    std::chrono::milliseconds Limit() const { return limit; }

  private:
    /// This clock stops while the device is suspended, so that a suspended operation does not pass
    /// its deadline.
    using Clock = std::chrono::steady_clock;

    bool IsPassedBy(Clock::duration time) const;

    /// How much later than the limit the timer may expire, at most.
    Clock::duration Slack() const;

    static constexpr Clock::rep kNever = 0;
    static_assert(std::atomic<Clock::rep>::is_always_lock_free, "a signal handler reads it");

    std::atomic<const char*> step = "";
    std::atomic<Clock::rep> end = kNever;
    std::chrono::milliseconds limit{0};
    timer_t timer{};
    bool hasTimer = false;
    /// Until then the timer need not be set again: when it expires, an operation that began before
    /// then has passed its limit.
    Clock::duration setAgainAt{0};
};
