// A file counts as unchanged only if a change would certainly have given it another stamp.
#include "bindings/posix/files/watched_file.h"

#include "tests/support/scratch.h"

namespace {

using binding::FileStamp;
using binding::IsSettled;
using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr nanoseconds kNow = seconds(1'800'000'000);

bool IsSettledAfter(nanoseconds age) {
    return IsSettled(FileStamp{.changed = (kNow - age).count()}, kNow);
}

TEST(SettledStamp, IsOlderThanTheCoarsestClock) {
    EXPECT_FALSE(IsSettledAfter(seconds(0)));
    EXPECT_FALSE(IsSettledAfter(seconds(1)));
    EXPECT_FALSE(IsSettledAfter(seconds(2)));
    EXPECT_TRUE(IsSettledAfter(seconds(2) + nanoseconds(1)));
    EXPECT_TRUE(IsSettledAfter(seconds(3600)));
}

TEST(SettledStamp, IsNotFromTheFuture) {
    EXPECT_FALSE(IsSettledAfter(nanoseconds(-1)));
    EXPECT_FALSE(IsSettledAfter(seconds(-3600)));
}

TEST(SettledStamp, MayTellThatThereIsNoFile) {
    EXPECT_TRUE(IsSettled(FileStamp{.error = ENOENT}, kNow));
}

class WatchedFileTest : public SimulatedDevice {};

TEST_F(WatchedFileTest, ContentsAreReportedOncePerChange) {
    binding::WatchedFile file;
    for (const std::string contents : {"one", "two", "two"}) {
        Document(contents);
        const auto reading = file.ReadIfChanged(device);
        ASSERT_TRUE(reading);
        EXPECT_EQ(reading->contents, contents);
        EXPECT_FALSE(file.ReadIfChanged(device));
    }
}

}  // namespace
