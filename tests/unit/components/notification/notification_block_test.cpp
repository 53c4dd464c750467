#include "components/notification/notification_block.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "bindings/recording/recording.h"
#include "platform/fixed_text.h"
#include "tests/support/records.h"

using recording::Given;
using Result = NotificationBlock::ReadResult;

namespace {

const std::string kGetData = "MsgbusHandler::GetData";
const std::string kGetSize = "MsgbusHandler::GetData(zelt.ans.notifications, no buffer)\n";

std::string GetBlock(std::size_t size) {
    return "MsgbusHandler::GetData(zelt.ans.notifications, room for " + std::to_string(size) +
           ")\n";
}

/// A list of @p records whose header claims that there are @p count.
std::vector<std::byte> ListClaiming(std::int32_t count,
                                    const std::vector<AnsNotificationRecord>& records) {
    std::vector<std::byte> block = NotificationList(records);
    std::memcpy(block.data(), &count, sizeof(count));
    return block;
}

class NotificationBlockTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    /// The channel says that it holds @p needed bytes.
    static void GivenSize(unsigned int needed) {
        Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(needed);
    }

    /// The channel holds @p bytes.
    static void GivenBlock(const std::vector<std::byte>& bytes) {
        GivenSize(static_cast<unsigned int>(bytes.size()));
        Given(kGetData).WritesRecords(bytes);
    }

    /// Ids of the records, each followed by a blank.
    std::string Ids() const {
        std::string ids;
        for (const AnsNotificationRecord& record : block.Records()) {
            ids += FixedText(record.id) + " ";
        }
        return ids;
    }

    MsgbusHandler bus{nullptr};
    NotificationBlock block;
};

TEST_F(NotificationBlockTest, SizeIsAskedForFirstAndTheWholeBlockReadAtOnce) {
    GivenBlock(NotificationList({Notification("a"), Notification("b")}));
    EXPECT_EQ(block.Read(bus), Result::kRead);
    EXPECT_EQ(block.AnnouncedCount(), 2);
    EXPECT_EQ(Ids(), "a b ");
    EXPECT_EQ(recording::TranscriptText(), kGetSize + GetBlock(932));
}

TEST_F(NotificationBlockTest, BlockThatWasNeverReadIsEmpty) {
    EXPECT_EQ(block.AnnouncedCount(), 0);
    EXPECT_TRUE(block.Records().empty());
}

TEST_F(NotificationBlockTest, FirstAnswerThatNeedsNoBufferIsAFailure) {
    for (const int result : {0, 1, 3, 5, -4}) {
        recording::Reset();
        Given(kGetData).Returns(result).WritesNothing().Writes(468U);
        EXPECT_EQ(block.Read(bus), Result::kFailed) << result;
        EXPECT_EQ(recording::TranscriptText(), kGetSize);
    }
}

TEST_F(NotificationBlockTest, FirstAnswerWithoutASizeIsAFailure) {
    GivenSize(0);
    EXPECT_EQ(block.Read(bus), Result::kFailed);
    EXPECT_EQ(recording::TranscriptText(), kGetSize);
}

TEST_F(NotificationBlockTest, SecondAnswerMustBeASuccess) {
    for (const int result : {1, 4, -1}) {
        recording::Reset();
        const std::vector<std::byte> bytes = NotificationList({Notification("a")});
        GivenSize(468);
        Given(kGetData).Returns(result).WritesRecords(bytes);
        EXPECT_EQ(block.Read(bus), Result::kFailed) << result;
        EXPECT_EQ(block.AnnouncedCount(), 0);
        EXPECT_TRUE(block.Records().empty());
        EXPECT_EQ(recording::TranscriptText(), kGetSize + GetBlock(468));
    }
}

TEST_F(NotificationBlockTest, ListThatGrowsBetweenTheTwoAnswersIsAFailure) {
    GivenSize(468);
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(932U);
    EXPECT_EQ(block.Read(bus), Result::kFailed);
    EXPECT_TRUE(block.Records().empty());
    EXPECT_EQ(recording::TranscriptText(), kGetSize + GetBlock(468));
}

TEST_F(NotificationBlockTest, ListThatShrinksBetweenTheTwoAnswersIsReadAsItIsNow) {
    GivenSize(932);
    Given(kGetData).WritesRecords(NotificationList({Notification("a")})).Writes(468U);
    EXPECT_EQ(block.Read(bus), Result::kRead);
    EXPECT_EQ(Ids(), "a ");
}

TEST_F(NotificationBlockTest, LackOfMemoryIsDistinguishedFromAFailure) {
    GivenSize(std::numeric_limits<unsigned int>::max());
    EXPECT_EQ(block.Read(bus), Result::kNoMemory);
    EXPECT_TRUE(block.Records().empty());
    EXPECT_EQ(recording::TranscriptText(), kGetSize);
}

TEST_F(NotificationBlockTest, MemoryIsUsedOnlyForDeliveredBytesHoweverManyAreAnnounced) {
    constexpr std::size_t kAnnounced = std::size_t{200} << 20U;
    GivenSize(kAnnounced);
    Given(kGetData).WritesRecords(NotificationList({Notification("a")})).Writes(468U);
    EXPECT_EQ(block.Read(bus), Result::kRead);
    ASSERT_EQ(Ids(), "a ");
    const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    // The range starts with the memory page in which the records begin.
    const auto first = reinterpret_cast<std::uintptr_t>(block.Records().data()) & ~(pageSize - 1);
    std::vector<unsigned char> pages(kAnnounced / pageSize);
    ASSERT_EQ(mincore(reinterpret_cast<void*>(first), pages.size() * pageSize, pages.data()), 0);
    const auto resident = std::count_if(pages.begin(), pages.end(),
                                        [](unsigned char page) { return (page & 1U) != 0; });
    // Not exact, because the system may use large pages.
    EXPECT_LT(static_cast<std::size_t>(resident), pages.size() / 10);
}

TEST_F(NotificationBlockTest, EveryReadingReplacesTheOneBefore) {
    GivenBlock(NotificationList({Notification("a"), Notification("b")}));
    EXPECT_EQ(block.Read(bus), Result::kRead);
    recording::Reset();
    GivenBlock(NotificationList({Notification("c")}));
    EXPECT_EQ(block.Read(bus), Result::kRead);
    EXPECT_EQ(Ids(), "c ");
    recording::Reset();
    Given(kGetData).Returns(1);
    EXPECT_EQ(block.Read(bus), Result::kFailed);
    EXPECT_EQ(block.AnnouncedCount(), 0);
    EXPECT_TRUE(block.Records().empty());
}

TEST_F(NotificationBlockTest, BytesThatTheChannelDoesNotWriteAreZero) {
    GivenBlock(NotificationList({Notification("secret")}));
    EXPECT_EQ(block.Read(bus), Result::kRead);
    recording::Reset();
    GivenSize(468);
    Given(kGetData).Writes<std::int32_t>(1);
    EXPECT_EQ(block.Read(bus), Result::kRead);
    EXPECT_EQ(Ids(), " ");
}

TEST_F(NotificationBlockTest, RecordsThatWereNotReceivedAreLeftOut) {
    for (const std::int32_t count : {3, 5000, std::numeric_limits<std::int32_t>::max()}) {
        recording::Reset();
        GivenBlock(ListClaiming(count, {Notification("a"), Notification("b")}));
        EXPECT_EQ(block.Read(bus), Result::kRead);
        EXPECT_EQ(block.AnnouncedCount(), count);
        EXPECT_EQ(Ids(), "a b ");
    }
}

TEST_F(NotificationBlockTest, IncompleteRecordIsLeftOut) {
    for (const std::size_t missing : {1U, 463U}) {
        recording::Reset();
        std::vector<std::byte> bytes = NotificationList({Notification("a"), Notification("b")});
        bytes.resize(bytes.size() - missing);
        GivenBlock(bytes);
        EXPECT_EQ(block.Read(bus), Result::kRead);
        EXPECT_EQ(block.AnnouncedCount(), 2);
        EXPECT_EQ(Ids(), "a ");
    }
}

TEST_F(NotificationBlockTest, BytesAfterTheClaimedRecordsAreNotRead) {
    GivenBlock(ListClaiming(1, {Notification("a"), Notification("b")}));
    EXPECT_EQ(block.Read(bus), Result::kRead);
    EXPECT_EQ(Ids(), "a ");
}

TEST_F(NotificationBlockTest, NegativeOrNoCountHoldsNothing) {
    for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        recording::Reset();
        GivenBlock(ListClaiming(count, {Notification("a")}));
        EXPECT_EQ(block.Read(bus), Result::kRead);
        EXPECT_EQ(block.AnnouncedCount(), count);
        EXPECT_TRUE(block.Records().empty());
    }
}

TEST_F(NotificationBlockTest, BlockThatIsTooShortForItsCountIsEmpty) {
    for (unsigned int size = 1; size < 4; ++size) {
        recording::Reset();
        GivenBlock(std::vector<std::byte>(size, std::byte{1}));
        EXPECT_EQ(block.Read(bus), Result::kRead);
        EXPECT_EQ(block.AnnouncedCount(), 0);
        EXPECT_TRUE(block.Records().empty());
    }
}

TEST_F(NotificationBlockTest, BlockOfWhichNothingIsReceivedIsEmpty) {
    GivenSize(468);
    Given(kGetData).WritesNothing().Writes(0U);
    EXPECT_EQ(block.Read(bus), Result::kRead);
    EXPECT_EQ(block.AnnouncedCount(), 0);
    EXPECT_TRUE(block.Records().empty());
}

TEST_F(NotificationBlockTest, CountWithoutRecordsHoldsNothing) {
    GivenBlock(ListClaiming(7, {}));
    EXPECT_EQ(block.Read(bus), Result::kRead);
    EXPECT_EQ(block.AnnouncedCount(), 7);
    EXPECT_TRUE(block.Records().empty());
}

TEST_F(NotificationBlockTest, BlockThatHoldsLessThanItClaimsIsLogged) {
    struct Case {
        std::vector<std::byte> bytes;
        std::string complaint;
    };
    const Case cases[] = {
        {ListClaiming(3, {Notification("a")}), "[3] announced, [1] received in [468] bytes"},
        {ListClaiming(-2, {}), "[-2] announced, [0] received in [4] bytes"},
        {ListClaiming(-2, {Notification("a"), Notification("b")}),
         "[-2] announced, [2] received in [932] bytes"},
        {std::vector<std::byte>(3, std::byte{1}), "[0] announced, [0] received in [3] bytes"},
    };
    for (const auto& [bytes, complaint] : cases) {
        recording::Reset();
        GivenBlock(bytes);
        (void)block.Read(bus);
        const std::vector<std::string> failure = recording::Failure(
            " - NotificationBlock::ReadResult NotificationBlock::Read(MsgbusHandler&) - malformed "
            "notification list, " +
            complaint + ". Try msgbus_cli MsgBusGet zelt.ans.notifications");
        EXPECT_EQ(recording::TranscriptText("syslog"), failure.at(0) + "\n");
        EXPECT_EQ(recording::TranscriptText("log"), failure.at(1) + "\n");
    }
}

TEST_F(NotificationBlockTest, BlockThatHoldsWhatItClaimsOrMoreIsNotLogged) {
    for (const std::int32_t count : {0, 1, 2}) {
        recording::Reset();
        GivenBlock(ListClaiming(count, {Notification("a"), Notification("b")}));
        (void)block.Read(bus);
        EXPECT_EQ(recording::TranscriptText("log"), "");
    }
}

TEST_F(NotificationBlockTest, NoMoreBytesAreReadThanThereWasRoomFor) {
    GivenSize(468);
    Given(kGetData).WritesRecords(ListClaiming(9, {Notification("a")})).Writes(999999U);
    EXPECT_EQ(block.Read(bus), Result::kRead);
    EXPECT_EQ(Ids(), "a ");
}

TEST(IsActive, LowestFlagDecides) {
    AnsNotificationRecord record{};
    for (const std::uint32_t flags : {1U, 3U, 0xffffffffU}) {
        record.flags = flags;
        EXPECT_TRUE(IsActive(record)) << flags;
    }
    for (const std::uint32_t flags : {0U, 2U, 0xfffffffeU}) {
        record.flags = flags;
        EXPECT_FALSE(IsActive(record)) << flags;
    }
}

}  // namespace
