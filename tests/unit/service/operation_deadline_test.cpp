#include "service/operation_deadline.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <cstdlib>

#include "bindings/recording/recording.h"

using recording::Failure;
using recording::Lines;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

class OperationDeadlineTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }
    void TearDown() override { unsetenv("KESTAL_TIMEOUT"); }
};

TEST_F(OperationDeadlineTest, LimitIsThreeTimesThatOfTheWebServer) {
    setenv("KESTAL_TIMEOUT", "7", 1);
    EXPECT_EQ(OperationLimit(), seconds(21));
    setenv("KESTAL_TIMEOUT", "600", 1);
    EXPECT_EQ(OperationLimit(), seconds(1800));
}

TEST_F(OperationDeadlineTest, WithoutALimitOfTheWebServerTheDefaultApplies) {
    EXPECT_EQ(OperationLimit(), seconds(30));
    for (const char* text : {"", "0", "-3", "ten", "1 ", "1.5", "601", "99999999999"}) {
        setenv("KESTAL_TIMEOUT", text, 1);
        EXPECT_EQ(OperationLimit(), seconds(30)) << text;
    }
}

TEST_F(OperationDeadlineTest, ProcessWithoutADeadlineNeverPassesIt) {
    OperationDeadline deadline;
    deadline.Begin("request (status)");
    EXPECT_FALSE(deadline.IsPassed());
    EXPECT_STREQ(deadline.Step(), "request (status)");
}

TEST_F(OperationDeadlineTest, WithoutATimerTheFailureIsLoggedAndTheDeadlineStillPasses) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_SIGPENDING, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0;
    // Logging may change errno, so the code must save the error first.
    recording::Given("toru_dbg_syslog").Does([] { errno = 0; });
    ASSERT_EQ(setrlimit(RLIMIT_SIGPENDING, &none), 0);
    OperationDeadline deadline;
    deadline.Watch(milliseconds(1));
    ASSERT_EQ(setrlimit(RLIMIT_SIGPENDING, &before), 0);
    EXPECT_EQ(recording::TranscriptText(),
              Lines(Failure(" - void OperationDeadline::Watch(std::chrono::milliseconds) - "
                            "timer_create failed, returned error code [" +
                            std::to_string(EAGAIN) + "]")));
    deadline.Begin("request (status)");
    while (!deadline.IsPassed()) {
    }
    deadline.End();
    EXPECT_FALSE(deadline.IsPassed());
}

}  // namespace
