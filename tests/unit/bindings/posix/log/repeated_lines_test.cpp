// A line that comes again and again is let through at once and then counted.
#include "bindings/posix/log/repeated_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using binding::RepeatedLines;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RepeatedLinesTest : public ::testing::Test {
  protected:
    RepeatedLinesTest() { told.clear(); }

    static RepeatedLines::TimePoint At(int second) {
        return RepeatedLines::TimePoint(seconds(1000 + second));
    }

    static void Tell(std::string_view line, unsigned int count, seconds age) {
        told.push_back(std::string(line) + " " + std::to_string(count) + " " +
                       std::to_string(age.count()));
    }

    unsigned int Take(const std::string& line, int second) {
        return lines.Take(line, At(second), Tell);
    }

    static inline std::vector<std::string> told;
    RepeatedLines lines;
};

TEST_F(RepeatedLinesTest, LetsALineThroughAtOnceAndThenOnceAMinuteWithItsCount) {
    EXPECT_EQ(Take("a", 0), 1U);
    EXPECT_EQ(Take("a", 1), 0U);
    EXPECT_EQ(Take("a", 59), 0U);
    EXPECT_EQ(Take("a", 60), 3U);
    EXPECT_EQ(Take("a", 119), 0U);
    EXPECT_EQ(Take("a", 120), 2U);
    EXPECT_EQ(Take("a", 180), 1U);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(RepeatedLinesTest, LinesThatDifferDoNotCountAsOne) {
    EXPECT_EQ(Take("ab", 0), 1U);
    EXPECT_EQ(Take("a", 0), 1U);
    EXPECT_EQ(Take("ac", 0), 1U);
    EXPECT_EQ(Take("", 0), 1U);
    EXPECT_EQ(Take("", 0), 1U);
    EXPECT_EQ(Take("ac", 0), 0U);
}

TEST_F(RepeatedLinesTest, AnyLineAfterTheMinuteReportsTheCounts) {
    (void)Take("a", 0);
    (void)Take("a", 10);
    (void)Take("b", 30);
    (void)Take("b", 31);
    lines.TellOverdue(At(59), Tell);
    EXPECT_THAT(told, IsEmpty());
    lines.TellOverdue(At(61), Tell);
    EXPECT_THAT(told, ElementsAre("a 1 51"));
    // The line was reported less than a minute ago.
    EXPECT_EQ(Take("a", 69), 0U);
    EXPECT_EQ(Take("c", 95), 1U);
    EXPECT_THAT(told, ElementsAre("a 1 51", "b 1 64"));
    EXPECT_EQ(Take("a", 121), 2U);
}

TEST_F(RepeatedLinesTest, ALineThatIsHeldBackReportsOtherCountsToo) {
    (void)Take("a", 0);
    (void)Take("a", 1);
    (void)Take("b", 50);
    EXPECT_EQ(Take("b", 60), 0U);
    EXPECT_THAT(told, ElementsAre("a 1 59"));
}

TEST_F(RepeatedLinesTest, AFaultThatComesBackIsLetThroughAtOnceEvenRightAfterAReport) {
    (void)Take("a", 0);
    (void)Take("a", 1);
    lines.TellOverdue(At(100), Tell);
    EXPECT_THAT(told, ElementsAre("a 1 99"));
    EXPECT_EQ(Take("a", 101), 1U);
    EXPECT_EQ(Take("a", 150), 0U);
    lines.TellOverdue(At(161), Tell);
    EXPECT_THAT(told, ElementsAre("a 1 99", "a 1 11"));
    EXPECT_EQ(Take("a", 210), 1U);
}

TEST_F(RepeatedLinesTest, AFaultThatComesBackIsCountedAnew) {
    (void)Take("a", 0);
    (void)Take("a", 1);
    EXPECT_EQ(Take("a", 3600), 1U);
    EXPECT_THAT(told, ElementsAre("a 1 3599"));
    EXPECT_EQ(Take("a", 3659), 0U);
    EXPECT_EQ(Take("a", 3660), 2U);
}

TEST_F(RepeatedLinesTest, TheEndReportsAllCountsAndClearsThem) {
    (void)Take("a", 0);
    (void)Take("a", 1);
    (void)Take("b", 2);
    lines.End(At(3), Tell);
    EXPECT_THAT(told, ElementsAre("a 1 2"));
    EXPECT_EQ(Take("a", 4), 1U);
    EXPECT_EQ(Take("b", 4), 1U);
}

TEST_F(RepeatedLinesTest, RemembersOnlyTheLatestLinesAndLosesNoCount) {
    (void)Take("first", 0);
    (void)Take("first", 1);
    for (int i = 0; i < 63; ++i) {
        EXPECT_EQ(Take("other " + std::to_string(i), 2), 1U);
    }
    EXPECT_EQ(Take("first", 3), 0U);
    EXPECT_EQ(Take("one more", 4), 1U);
    EXPECT_EQ(Take("first", 5), 0U);
    // The line that came longest ago has been forgotten.
    EXPECT_EQ(Take("other 0", 6), 1U);
    for (int i = 0; i < 64; ++i) {
        EXPECT_EQ(Take("new " + std::to_string(i), 7), 1U);
    }
    EXPECT_THAT(told, ElementsAre("first 3 2"));
}

TEST_F(RepeatedLinesTest, LongLinesAreNeverHeldBack) {
    const std::string longest(512, 'x');
    EXPECT_EQ(Take(longest, 0), 1U);
    EXPECT_EQ(Take(longest, 0), 0U);
    EXPECT_EQ(Take(longest + "x", 0), 1U);
    EXPECT_EQ(Take(longest + "x", 0), 1U);
}

TEST_F(RepeatedLinesTest, ACallerIsNotKeptWaitingWhileItIsInUse) {
    static RepeatedLines* used = nullptr;
    used = &lines;
    const auto comeBetween = [](std::string_view line, unsigned int /*count*/, seconds /*age*/) {
        Tell(line, used->Take("b", At(61), Tell), seconds(0));
        used->TellOverdue(At(500), Tell);
        used->End(At(500), Tell);
    };
    (void)Take("b", 60);
    (void)Take("a", 0);
    (void)Take("a", 1);
    lines.TellOverdue(At(61), comeBetween);
    EXPECT_THAT(told, ElementsAre("a 1 0"));
    EXPECT_EQ(Take("b", 62), 0U);
}

}  // namespace
