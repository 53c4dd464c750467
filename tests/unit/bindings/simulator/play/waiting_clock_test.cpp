// The real clock waits unless a signal tells it to stop. Signals are sent before it waits, so that
// no test depends on how fast it runs.
#include "bindings/simulator/play/waiting_clock.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <thread>

namespace {

using binding::WaitingClock;

/// Runs @p test in a thread of its own, because the clock blocks signals in its thread.
template <typename Test>
void InThread(Test test) {
    std::thread(test).join();
}

TEST(WaitingClock, WaitsUntilTheTimeHasCome) {
    InThread([] {
        WaitingClock clock;
        const auto begin = clock.Now();
        EXPECT_TRUE(clock.WaitUntil(begin + std::chrono::milliseconds(2)));
        EXPECT_GE(clock.Now() - begin, std::chrono::milliseconds(2));
    });
}

TEST(WaitingClock, DoesNotWaitForATimeThatHasPassed) {
    InThread([] {
        WaitingClock clock;
        EXPECT_TRUE(clock.WaitUntil(clock.Now() - std::chrono::hours(1)));
        EXPECT_TRUE(clock.WaitUntil(std::chrono::nanoseconds(0)));
    });
}

TEST(WaitingClock, EndsAtASignal) {
    for (const int signo : {SIGINT, SIGTERM, SIGHUP}) {
        InThread([signo] {
            WaitingClock clock;
            (void)pthread_kill(pthread_self(), signo);
            EXPECT_FALSE(clock.WaitUntil(clock.Now() + std::chrono::hours(1)));
            (void)pthread_kill(pthread_self(), signo);
            EXPECT_FALSE(clock.WaitUntil(clock.Now() - std::chrono::hours(1)));
            EXPECT_TRUE(clock.WaitUntil(clock.Now()));
        });
    }
}

}  // namespace
