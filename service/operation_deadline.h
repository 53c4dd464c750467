#pragma once

#include <atomic>
#include <chrono>
#include <ctime>

/// How long an operation may take: three times what the web server waits for an answer, which is
/// KESTAL_TIMEOUT seconds. By then its caller has had an error for long: the web server looks at
/// its own limit only now and then.
std::chrono::seconds OperationLimit();

/// Tells when the main thread, at its start, in a request or at its end, is stuck in a call that
/// does not come back. An operation costs a look at the clock; the timer behind it is only set when
/// that was some time ago, and left alone at the end.
class OperationDeadline {
  public:
    /// From now on a limit holds. The calling thread, the main thread, gets DeadlineSignal() when
    /// an operation has passed it by at most one sixteenth. It may get one without any operation.
    void Watch(std::chrono::milliseconds newLimit);

    /// An operation begins with its step @p name, a literal.
    void Begin(const char* name);

    /// The next step of the operation begins.
    void Enter(const char* name) { step.store(name, std::memory_order_relaxed); }

    /// The operation has ended.
    void End() { end.store(kNever, std::memory_order_relaxed); }

    /// Whether an operation is under way that has passed its limit. For any thread.
    bool IsPassed() const { return IsPassedBy(Clock::duration(0)); }

    /// The same, and so long ago that DeadlineSignal() would have ended the process if the main
    /// thread took it. For any thread.
    bool IsLongPassed() const;

    /// The step that has begun last.
    const char* Step() const { return step.load(std::memory_order_relaxed); }

    std::chrono::milliseconds Limit() const { return limit; }

  private:
    /// Stands still while the device sleeps, which is no fault of the operation.
    using Clock = std::chrono::steady_clock;

    bool IsPassedBy(Clock::duration time) const;

    /// How much later than the limit the timer may expire.
    Clock::duration Slack() const;

    static constexpr Clock::rep kNever = 0;
    static_assert(std::atomic<Clock::rep>::is_always_lock_free, "a signal handler reads it");

    std::atomic<const char*> step = "";
    std::atomic<Clock::rep> end = kNever;
    std::chrono::milliseconds limit{0};
    timer_t timer{};
    bool hasTimer = false;
    /// An operation that begins before then is sure to have passed its limit when the timer
    /// expires.
    Clock::duration setAgainAt{0};
};
