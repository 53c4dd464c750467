#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "platform/msgbus.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::CallCount;
using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kFlag = " - void StatusComponent::GetNotificationFlagStatus(CTPP::CDT&)";
const std::string kGetData = "MsgbusHandler::GetData";
const std::string kAskSize = "MsgbusHandler::GetData(zelt.ans.notifications, no buffer)";

AnsNotificationRecord WithFlags(std::uint32_t flags) {
    AnsNotificationRecord record = Notification("dataOff");
    record.flags = flags;
    return record;
}

/// A block that claims to have @p count records and contains @p records.
std::vector<std::byte> Claiming(std::int32_t count,
                                const std::vector<AnsNotificationRecord>& records) {
    std::vector<std::byte> block = NotificationList(records);
    std::memcpy(block.data(), &count, sizeof(count));
    return block;
}

class NotificationFlagStatusTest : public StatusGroupTest {
  protected:
    static void GivenBlock(const std::vector<std::byte>& block) {
        const auto size = static_cast<unsigned int>(block.size());
        Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(size);
        Given(kGetData).Returns(MSGBUS_SUCCESS).WritesRecords(block).Writes(size);
    }

    std::string Json() {
        component->GetNotificationFlagStatus(statusData);
        return ToJson(statusData);
    }

    static std::string Received(const std::string& count) {
        return Log(7, kFlag + " -[" + count + "] notifications received on msgbus");
    }

    /// The transcript of the group, with @p middle between joining and leaving the bus.
    static std::string OnTheBus(const Step& middle) {
        return Steps({Log(7, kFlag + " - BEGIN"), "MsgbusHandler::MsgbusHandler(no callback)",
                      "MsgbusHandler::Initialize()", middle, "MsgbusHandler::Uninitialize()",
                      Log(7, kFlag + " - END")});
    }

    static Step ChannelFailureAfter(const std::vector<std::string>& calls) {
        std::vector<std::string> lines = calls;
        const std::vector<std::string> failure =
            Failure(kFlag + ": msgbus.GetData for zelt.ans.notifications channel failed");
        lines.insert(lines.end(), failure.begin(), failure.end());
        return lines;
    }
};

TEST_F(NotificationFlagStatusTest, ActiveNotificationSetsTheFlag) {
    GivenBlock(NotificationList({Notification("dataOff")}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"1"})");
    EXPECT_EQ(TranscriptText(),
              OnTheBus(std::vector<std::string>{
                  kAskSize, "MsgbusHandler::GetData(zelt.ans.notifications, room for 468)",
                  Received("1")}));
}

TEST_F(NotificationFlagStatusTest, OneActiveRecordAmongManyIsEnough) {
    GivenBlock(NotificationList({WithFlags(0), WithFlags(2), WithFlags(3)}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"1"})");
    EXPECT_EQ(TranscriptText(Log(7, kFlag + " -[")), Steps({Received("3")}));
}

TEST_F(NotificationFlagStatusTest, OnlyTheLowestBitOfTheFlagsCounts) {
    GivenBlock(NotificationList({WithFlags(0), WithFlags(2), WithFlags(0xFFFFFFFEU)}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
}

TEST_F(NotificationFlagStatusTest, EmptyListClearsTheFlag) {
    GivenBlock(NotificationList({}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
    EXPECT_EQ(TranscriptText(),
              OnTheBus(std::vector<std::string>{
                  kAskSize, "MsgbusHandler::GetData(zelt.ans.notifications, room for 4)",
                  Received("0")}));
}

TEST_F(NotificationFlagStatusTest, FirstReadingThatDoesNotAskForABufferFails) {
    for (const int result : {0, 1, 90001}) {
        recording::Reset();
        Given(kGetData).Returns(result).WritesNothing().Writes(468U);
        EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
        EXPECT_EQ(TranscriptText(), OnTheBus(ChannelFailureAfter({kAskSize})));
    }
}

TEST_F(NotificationFlagStatusTest, SizeOfZeroFails) {
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(0U);
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
    EXPECT_EQ(TranscriptText(), OnTheBus(ChannelFailureAfter({kAskSize})));
}

TEST_F(NotificationFlagStatusTest, SecondReadingThatFailsClearsTheFlagWhateverItWrote) {
    for (const int result : {4, 1}) {
        recording::Reset();
        const std::vector<std::byte> block = NotificationList({Notification("dataOff")});
        Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(468U);
        Given(kGetData).Returns(result).WritesRecords(block).Writes(468U);
        EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
        EXPECT_EQ(TranscriptText(),
                  OnTheBus(ChannelFailureAfter(
                      {kAskSize, "MsgbusHandler::GetData(zelt.ans.notifications, room for 468)"})));
    }
}

TEST_F(NotificationFlagStatusTest, BlockThatIsTooLargeForMemoryFails) {
    Given(kGetData)
        .Returns(MSGBUS_BUFFER_NEEDED)
        .WritesNothing()
        .Writes(std::numeric_limits<unsigned int>::max());
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
    const std::vector<std::string> failure = Failure(kFlag + ": Failed to allocate memory");
    EXPECT_EQ(TranscriptText(),
              OnTheBus(std::vector<std::string>{kAskSize, failure.at(0), failure.at(1)}));
}

TEST_F(NotificationFlagStatusTest, CountIsLoggedAsItWasReceivedButOnlyWholeRecordsCount) {
    std::vector<std::byte> block = Claiming(1000000, {WithFlags(0), Notification("dataOff")});
    block.pop_back();
    GivenBlock(block);
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
    EXPECT_EQ(TranscriptText(Log(7, kFlag + " -[")), Steps({Received("1000000")}));
}

TEST_F(NotificationFlagStatusTest, RecordsBeyondTheCountDoNotCount) {
    GivenBlock(Claiming(1, {WithFlags(0), Notification("dataOff")}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
    EXPECT_EQ(TranscriptText(Log(7, kFlag + " -[")), Steps({Received("1")}));
}

TEST_F(NotificationFlagStatusTest, NegativeCountIsAnEmptyList) {
    GivenBlock(Claiming(-1, {Notification("dataOff")}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
    EXPECT_EQ(TranscriptText(Log(7, kFlag + " -[")), Steps({Received("-1")}));
}

TEST_F(NotificationFlagStatusTest, BlockWithoutRoomForItsCountIsAnEmptyList) {
    GivenBlock(std::vector<std::byte>(3, std::byte{0xFF}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
    EXPECT_EQ(TranscriptText(Log(7, kFlag + " -[")), Steps({Received("0")}));
}

TEST_F(NotificationFlagStatusTest, BusThatCannotBeJoinedOrLeftIsStillRead) {
    Given("MsgbusHandler::Initialize").Returns(1);
    Given("MsgbusHandler::Uninitialize").Returns(1);
    GivenBlock(NotificationList({Notification("dataOff")}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"1"})");
    EXPECT_EQ(TranscriptText("log 3"), "");
}

TEST_F(NotificationFlagStatusTest, BusThatThrowsIsLeftAndClearsTheFlag) {
    Given(kGetData).Does([] { throw std::runtime_error("no bus"); });
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
    const std::vector<std::string> failure = Failure(kFlag + " - notification flag failed: no bus");
    EXPECT_EQ(TranscriptText(),
              OnTheBus(std::vector<std::string>{kAskSize, failure.at(0), failure.at(1)}));
}

TEST_F(NotificationFlagStatusTest, BusThatCannotBeEnteredClearsTheFlag) {
    for (const std::string call : {"MsgbusHandler::MsgbusHandler", "MsgbusHandler::Initialize"}) {
        recording::Reset();
        Given(call).Does([] { throw std::runtime_error("no bus"); });
        EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})") << call;
        EXPECT_NE(TranscriptText("log 3").find("failed: no bus"), std::string::npos) << call;
    }
}

TEST_F(NotificationFlagStatusTest, FlagIsSetEvenIfTheBusCannotBeLeft) {
    GivenBlock(NotificationList({Notification("dataOff")}));
    Given("MsgbusHandler::Uninitialize").Does([] { throw std::runtime_error("no way out"); });
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"1"})");
}

TEST_F(NotificationFlagStatusTest, ListIsReadAnewForEachRequest) {
    GivenBlock(NotificationList({Notification("dataOff")}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"1"})");
    recording::Reset();
    GivenBlock(NotificationList({}));
    EXPECT_EQ(Json(), R"({"statusBarNotificationFlag":"0"})");
    EXPECT_EQ(CallCount("MsgbusHandler::MsgbusHandler"), 1U);
}

}  // namespace
