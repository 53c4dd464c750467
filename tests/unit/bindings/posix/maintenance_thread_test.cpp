// The maintenance thread calls back once per interval until it is stopped.
#include "platform/maintenance_thread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <stop_token>
#include <thread>
#include <vector>

#include "bindings/posix/maintenance_clock.h"
#include "tests/support/scratch.h"

namespace {

using binding::SetMaintenanceClock;
using binding::SteadyClock;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;

/// A clock on which time passes only when the test says so.
class PlayedClock : public binding::MaintenanceClock {
  public:
    void Wait(milliseconds interval, const std::stop_token& stop) override {
        std::unique_lock lock(mutex);
        intervals.push_back(interval);
        if (!stop.stop_requested() && changed.wait(lock, stop, [&] { return passing > 0; })) {
            --passing;
        }
    }

    /// Lets @p count intervals pass.
    void Pass(int count) {
        const std::scoped_lock lock(mutex);
        passing += count;
        changed.notify_all();
    }

    /// The intervals of all waits, including those that have not ended.
    std::vector<milliseconds> Intervals() {
        const std::scoped_lock lock(mutex);
        return intervals;
    }

  private:
    std::mutex mutex;
    std::condition_variable_any changed;
    std::vector<milliseconds> intervals;
    int passing = 0;
};

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

    /// An additional action for the callback.
    std::function<void()> action;

  private:
    std::mutex mutex;
    std::condition_variable changed;
    int calls = 0;
};

/// Runs in a folder of its own, because the log needs one.
class MaintenanceThreadTest : public SimulatedDevice {
  protected:
    MaintenanceThreadTest() { SetMaintenanceClock(clock); }
    ~MaintenanceThreadTest() override { SetMaintenanceClock(SteadyClock()); }

    std::shared_ptr<PlayedClock> clock = std::make_shared<PlayedClock>();
    Callback callback;
};

TEST_F(MaintenanceThreadTest, CallsBackOncePerInterval) {
    MaintenanceThread thread(&callback, 5, 0);
    EXPECT_EQ(thread.Initialize(), 0);
    EXPECT_EQ(thread.Run(), 0);
    clock->Pass(2);
    callback.WaitForCalls(2);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(callback.Calls(), 2);
    EXPECT_THAT(clock->Intervals(), ElementsAre(seconds(5), seconds(5), seconds(5)));
}

TEST_F(MaintenanceThreadTest, FirstCallComesAfterAnInterval) {
    MaintenanceThread thread(&callback, 5, 0);
    EXPECT_EQ(thread.Run(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(callback.Calls(), 0);
}

TEST_F(MaintenanceThreadTest, NewIntervalCountsFromTheNextRun) {
    MaintenanceThread thread(&callback, 5, 0);
    thread.SetInterval(7);
    EXPECT_EQ(thread.Run(), 0);
    thread.SetInterval(9);
    clock->Pass(1);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_THAT(clock->Intervals(), ElementsAre(seconds(7), seconds(7)));
}

TEST_F(MaintenanceThreadTest, IntervalOfZeroIsASecond) {
    MaintenanceThread thread(&callback, 0, 0);
    EXPECT_EQ(thread.Run(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_THAT(clock->Intervals(), ElementsAre(seconds(1)));
}

TEST_F(MaintenanceThreadTest, ShutdownIsHarmlessAtAnyTime) {
    MaintenanceThread thread(&callback, 5, 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(thread.Initialize(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(thread.Run(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST_F(MaintenanceThreadTest, RunningTwiceIsRunningOnce) {
    MaintenanceThread thread(&callback, 5, 0);
    EXPECT_EQ(thread.Run(), 0);
    EXPECT_EQ(thread.Run(), 0);
    clock->Pass(2);
    callback.WaitForCalls(2);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(clock->Intervals().size(), 3U);
}

TEST_F(MaintenanceThreadTest, MayRunAgainAfterShutdown) {
    MaintenanceThread thread(&callback, 5, 0);
    EXPECT_EQ(thread.Run(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(thread.Run(), 0);
    clock->Pass(1);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST_F(MaintenanceThreadTest, MayBeShutDownFromItsOwnCallback) {
    MaintenanceThread thread(&callback, 5, 0);
    callback.action = [&] { EXPECT_EQ(thread.Shutdown(), 0); };
    EXPECT_EQ(thread.Run(), 0);
    clock->Pass(2);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(callback.Calls(), 1);
}

TEST_F(MaintenanceThreadTest, MayRunAgainAfterItsCallbackShutItDown) {
    MaintenanceThread thread(&callback, 5, 0);
    callback.action = [&] { EXPECT_EQ(thread.Shutdown(), 0); };
    EXPECT_EQ(thread.Run(), 0);
    clock->Pass(1);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Run(), 0);
    clock->Pass(1);
    callback.WaitForCalls(2);
}

TEST_F(MaintenanceThreadTest, DestructionStopsIt) {
    {
        MaintenanceThread thread(&callback, 5, 0);
        EXPECT_EQ(thread.Run(), 0);
    }
    clock->Pass(1);
    EXPECT_EQ(callback.Calls(), 0);
    EXPECT_EQ(clock->Intervals().size(), 1U);
}

TEST_F(MaintenanceThreadTest, NeedsACallback) {
    MaintenanceThread thread(nullptr, 5, 0);
    EXPECT_NE(thread.Initialize(), 0);
    EXPECT_NE(thread.Run(), 0);
    EXPECT_EQ(thread.Shutdown(), 0);
}

TEST_F(MaintenanceThreadTest, InheritsTheSignalMaskOfItsCreator) {
    sigset_t blocked;
    sigset_t original;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &blocked, &original), 0);
    int isBlocked = 0;
    callback.action = [&] {
        sigset_t own;
        pthread_sigmask(SIG_SETMASK, nullptr, &own);
        isBlocked = sigismember(&own, SIGUSR1);
    };
    MaintenanceThread thread(&callback, 5, 0);
    EXPECT_EQ(thread.Run(), 0);
    clock->Pass(1);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(isBlocked, 1);
    ASSERT_EQ(pthread_sigmask(SIG_SETMASK, &original, nullptr), 0);
}

TEST_F(MaintenanceThreadTest, FailingCallbackIsLoggedAndTheThreadGoesOn) {
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
    MaintenanceThread thread(&callback, 5, 0);
    EXPECT_EQ(thread.Run(), 0);
    clock->Pass(3);
    callback.WaitForCalls(1);
    EXPECT_EQ(thread.Shutdown(), 0);
    EXPECT_EQ(round, 3);
    EXPECT_THAT(Log(), ElementsAre("[BINDING]:[ERROR] - maintenance thread: out of order",
                                   "[BINDING]:[ERROR] - maintenance thread: unknown exception"));
}

TEST(MaintenanceThreadCallback, OfTheBaseDoesNothing) {
    MaintenanceThreadCallbackInterface base;
    EXPECT_FALSE(base.OnThreadNotify(0));
}

TEST(SteadyMaintenanceClock, WaitsAsLongAsItIsTold) {
    const std::stop_source never;
    const auto begin = std::chrono::steady_clock::now();
    SteadyClock()->Wait(milliseconds(2), never.get_token());
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(2));
}

TEST(SteadyMaintenanceClock, StopsWaitingOnRequest) {
    std::jthread waiting([clock = SteadyClock()](const std::stop_token& stop) {
        clock->Wait(std::chrono::hours(1), stop);
    });
    waiting.request_stop();
}

}  // namespace
