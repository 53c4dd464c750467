#include "service/operation_deadline.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "framework/log.h"
#include "service/main_thread_signals.h"

// Some C libraries have the member of sigevent, but not its documented name.
#ifndef sigev_notify_thread_id
#define sigev_notify_thread_id _sigev_un._tid
#endif

namespace {

/// The same default as in deploy/kestal-server, which starts the web server.
constexpr int kDefaultTimeoutSeconds = 10;
constexpr int kLimitInTimeouts = 3;

/// The timer may expire later than the limit by the limit divided by this number.
constexpr int kSlackDivisor = 16;

timespec ToTimespec(std::chrono::nanoseconds duration) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
    timespec result{};
    result.tv_sec = static_cast<time_t>(seconds.count());
    result.tv_nsec = static_cast<long>((duration - seconds).count());
    return result;
}

}  // namespace

std::chrono::seconds OperationLimit() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment
    const char* given = std::getenv("KESTAL_TIMEOUT");
    const std::string_view text = given == nullptr ? "" : given;
    int timeout = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), timeout);
    // The largest number that deploy/kestal-server accepts.
    constexpr int kMaxTimeout = 600;
    if (error != std::errc() || end != text.data() + text.size() || timeout < 1 ||
        timeout > kMaxTimeout) {
        timeout = kDefaultTimeoutSeconds;
    }
    return std::chrono::seconds(kLimitInTimeouts * timeout);
}

void OperationDeadline::Watch(std::chrono::milliseconds newLimit) {
    KESTAL_SIGNATURE("void OperationDeadline::Watch(std::chrono::milliseconds)");
    limit = newLimit;
    setAgainAt = Clock::duration(0);
    sigevent event{};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = DeadlineSignal();
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-union-access): the C library declares it so
    event.sigev_notify_thread_id = gettid();
    hasTimer = hasTimer || timer_create(CLOCK_MONOTONIC, &event, &timer) == 0;
    if (!hasTimer) {
        const int error = errno;
        // Without the timer, the deadline still stops the keep-alive messages of a stuck process.
        KESTAL_FAILURE("timer_create failed, returned error code [%d]", error);
    }
}

void OperationDeadline::Begin(const char* name) {
    Enter(name);
    if (limit.count() == 0) {
        return;
    }
    const Clock::duration now = Clock::now().time_since_epoch();
    end.store((now + limit).count(), std::memory_order_relaxed);
    if (hasTimer && now >= setAgainAt) {
        const Clock::duration slack = Slack();
        setAgainAt = now + slack;
        itimerspec expiry{};
        expiry.it_value = ToTimespec(limit + slack);
        timer_settime(timer, 0, &expiry, nullptr);
    }
}

bool OperationDeadline::IsLongPassed() const {
    // One slack for the timer to expire, one more for a busy device to deliver the signal.
    return IsPassedBy(2 * Slack());
}

bool OperationDeadline::IsPassedBy(Clock::duration time) const {
    const Clock::rep deadline = end.load(std::memory_order_relaxed);
    return deadline != kNever &&
           Clock::now().time_since_epoch() >= Clock::duration(deadline) + time;
}

OperationDeadline::Clock::duration OperationDeadline::Slack() const {
    return Clock::duration(limit) / kSlackDivisor;
}
