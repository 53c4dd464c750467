// What the board answers while a source or its own thread cannot be started, or fails.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "bindings/device/codes.h"
#include "tests/unit/bindings/linux/core/board_of_one_source.h"

namespace {

using binding::Device;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST_F(BoardOfOneSource, SourceThatCannotBeStartedIsLost) {
    TestSource::problem = "no descriptor";
    Begin();
    EXPECT_EQ(GpsStatus().error, binding::kSourceLost);
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - position: lost: not started: no descriptor"));
}

TEST_F(BoardOfOneSource, WhenItsLoopBreaksTheCallsOfTheSourcesFailUntilItHasStartedAnew) {
    Document("{\"sys\": {\"getSMSUnreadCount\": 2}}");
    Begin();
    AwaitStatus(SYS_GPS_SEARCHING);
    BreakLoop();
    Await([](const Device& now) { return now.getGPSStatus.error == binding::kSourceLost; });
    EXPECT_EQ(board->Newest()->getSMSUnreadCount.value, 2);
    EXPECT_EQ(board->StartDataCall(), binding::kNothingToConnect);
    AwaitStatus(SYS_GPS_SEARCHING);
    EXPECT_EQ(madeCount, 2);
    OnBoard([this] { source->Say(SYS_GPS_GOT_FIX); });
    AwaitStatus(SYS_GPS_GOT_FIX);
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("the board's thread has failed and starts anew: ")));
}

TEST_F(BoardOfOneSource, WhenItFailsAgainAtTheRestartTheCallsOfTheSourcesStillFail) {
    Begin();
    AwaitStatus(SYS_GPS_SEARCHING);
    failures = 1;
    BreakLoop();
    Await([](const Device& now) { return now.getGPSStatus.error == binding::kSourceLost; });
    Await([](const Device& now) { return now.getGPSStatus.error == 0; });
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
    EXPECT_EQ(failures, 0);
}

TEST_F(BoardOfOneSource, WhenTheSourcesOfNewSettingsCannotBeMadeTheCallsFailUntilTheyCan) {
    Begin();
    AwaitStatus(SYS_GPS_SEARCHING);
    failures = 1;
    Document("{\"linux\": {\"apn\": \"internet\"}}");
    Await([](const Device& now) { return now.getGPSStatus.error == binding::kSourceLost; });
    Await([](const Device& now) { return now.getGPSStatus.error == 0; });
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
}

/// While it lives, no thread can be started.
class NoThreads {
  public:
    NoThreads() {
        EXPECT_EQ(pthread_getattr_default_np(&before), 0);
        pthread_attr_t huge = {};
        EXPECT_EQ(pthread_attr_init(&huge), 0);
        // More than any process has addresses for.
        EXPECT_EQ(pthread_attr_setstacksize(&huge, SIZE_MAX / 16), 0);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        EXPECT_EQ(pthread_attr_destroy(&huge), 0);
    }
    ~NoThreads() {
        EXPECT_EQ(pthread_setattr_default_np(&before), 0);
        EXPECT_EQ(pthread_attr_destroy(&before), 0);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

  private:
    pthread_attr_t before = {};
};

TEST_F(BoardOfOneSource, WithoutAThreadTheBoardLeavesNothingBehind) {
    const auto openFiles = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    const auto isBlocked = [] {
        sigset_t blocked;
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        return sigismember(&blocked, SIGTERM) == 1;
    };
    const auto before = openFiles();
    {
        const NoThreads noThreads;
        EXPECT_THROW(Begin(), std::system_error);
    }
    // Those of the tasks that the test has for the board's thread.
    tasks.reset();
    EXPECT_EQ(openFiles(), before);
    EXPECT_FALSE(isBlocked());
}

TEST_F(BoardOfOneSource, ShortageWhileItsLoopBreaksLeavesTheLastAnswersUntilItHasStartedAnew) {
    Begin();
    AwaitStatus(SYS_GPS_SEARCHING);
    OnBoard([] { TestSource::failsToFail = true; });
    BreakLoop();
    AwaitThat([this] {
        EXPECT_EQ(GpsStatus().error, 0);
        return madeCount >= 2;
    });
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("the board's thread has failed and starts anew: "),
                                   HasSubstr("the last answers stand until then: ")));
}

}  // namespace
