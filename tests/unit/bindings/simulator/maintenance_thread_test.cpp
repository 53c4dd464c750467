// The maintenance thread calls back once per interval until it is stopped.
#include <gtest/gtest.h>
#include <pthread.h>

#include <condition_variable>
#include <csignal>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "platform/web_common.h"
#include "tests/unit/bindings/simulator/scratch.h"

namespace {

constexpr unsigned int kOneSecond = 1;
constexpr unsigned int kOneHour = 3600;

class Callback : public MaintenanceThreadCallbackInterface {
  public:
    bool OnThreadNotify(unsigned int /*event*/) override {
        if (action) {
            action();
        }
        const std::scoped_lock lock(mutex);
        ++calls;
        changed.notify_all();
        return false;
    }

    void WaitForCalls(int wanted) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return calls >= wanted; });
    }

    int Calls() {
        const std::scoped_lock lock(mutex);
        return calls;
    }

    /// What else to do when called.
    std::function<void()> action;

  private:
    std::mutex mutex;
    std::condition_variable changed;
    int calls = 0;
};

class FailingCallback : public SimulatedDevice {};

TEST(MaintenanceThreadTest, CallsBackAgainAndAgain) {
    Callback callback;
    MaintenanceThread thread(&callback, kOneSecond, 0);
    EXPECT_EQ(thread.Initialize(), 0);
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(2);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST(MaintenanceThreadTest, FirstCallComesAfterAnInterval) {
    Callback callback;
    MaintenanceThread thread(&callback, kOneHour, 0);
    EXPECT_EQ(thread.Run(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(callback.Calls(), 0);
}

TEST(MaintenanceThreadTest, NewIntervalCountsFromTheNextRun) {
    Callback callback;
    MaintenanceThread thread(&callback, kOneHour, 0);
    thread.SetInterval(kOneSecond);
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST(MaintenanceThreadTest, IntervalOfZeroIsASecond) {
    Callback callback;
    MaintenanceThread thread(&callback, 0, 0);
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST(MaintenanceThreadTest, ShutdownIsHarmlessAtAnyTime) {
    Callback callback;
    MaintenanceThread thread(&callback, kOneHour, 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(thread.Initialize(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(thread.Run(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST(MaintenanceThreadTest, RunningTwiceIsRunningOnce) {
    Callback callback;
    std::thread::id first;
    callback.action = [&] {
        if (first == std::thread::id()) {
            first = std::this_thread::get_id();
        }
        EXPECT_EQ(first, std::this_thread::get_id());
    };
    MaintenanceThread thread(&callback, kOneSecond, 0);
    EXPECT_EQ(thread.Run(), 0);
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(2);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST(MaintenanceThreadTest, MayRunAgainAfterShutdown) {
    Callback callback;
    MaintenanceThread thread(&callback, kOneSecond, 0);
    EXPECT_EQ(thread.Run(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST(MaintenanceThreadTest, MayBeShutDownFromItsOwnCallback) {
    Callback callback;
    MaintenanceThread thread(&callback, kOneSecond, 0);
    callback.action = [&] { EXPECT_EQ(thread.Shutdown(), 0); };
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(callback.Calls(), 1);
}

TEST(MaintenanceThreadTest, MayRunAgainAfterItsCallbackShutItDown) {
    Callback callback;
    MaintenanceThread thread(&callback, kOneSecond, 0);
    callback.action = [&] { EXPECT_EQ(thread.Shutdown(), 0); };
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(2);
}

TEST(MaintenanceThreadTest, DestructionStopsIt) {
    Callback callback;
    {
        MaintenanceThread thread(&callback, kOneHour, 0);
        EXPECT_EQ(thread.Run(), 0);
    }
    EXPECT_EQ(callback.Calls(), 0);
}

TEST(MaintenanceThreadTest, NeedsACallback) {
    MaintenanceThread thread(nullptr, kOneSecond, 0);
    EXPECT_NE(thread.Initialize(), 0);
    EXPECT_NE(thread.Run(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST(MaintenanceThreadTest, InheritsTheSignalMaskOfItsCreator) {
    sigset_t blocked;
    sigset_t original;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &blocked, &original), 0);
    Callback callback;
    int isBlocked = 0;
    callback.action = [&] {
        sigset_t own;
        pthread_sigmask(SIG_SETMASK, nullptr, &own);
        isBlocked = sigismember(&own, SIGUSR1);
    };
    MaintenanceThread thread(&callback, kOneSecond, 0);
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(isBlocked, 1);
    ASSERT_EQ(pthread_sigmask(SIG_SETMASK, &original, nullptr), 0);
}

TEST_F(FailingCallback, IsLoggedAndTheThreadGoesOn) {
    Callback callback;
    int round = 0;
    callback.action = [&] {
        ++round;
        if (round == 1) {
            throw std::runtime_error("out of order");
        }
        if (round == 2) {
            throw 7;  // Not even a std::exception.
        }
    };
    MaintenanceThread thread(&callback, kOneSecond, 0);
    EXPECT_EQ(thread.Run(), 0);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
    // A late shutdown leaves time for more.
    EXPECT_GE(round, 3);
    EXPECT_THAT(Log(), ::testing::ElementsAre(
                           "[SIMULATOR]:[ERROR] - maintenance thread: out of order",
                           "[SIMULATOR]:[ERROR] - maintenance thread: unknown exception"));
}

TEST(MaintenanceThreadTest, CallbackOfTheBaseDoesNothing) {
    MaintenanceThreadCallbackInterface base;
    EXPECT_FALSE(base.OnThreadNotify(0));
}

}  // namespace
