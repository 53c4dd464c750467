// msgbus_cli: which calls it makes on the bus and how it shows published data.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "bindings/recording/recording.h"
#include "platform/msgbus.h"
#include "tests/support/records.h"
#include "tests/unit/tools/transcript.h"
#include "tools/msgbus_commands.h"

using recording::Given;
using recording::TranscriptText;

namespace {

const std::string kNotifications = "zelt.ans.notifications";
const std::string kGetData = "MsgbusHandler::GetData";

class MsgbusCli : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    static std::string Run(const std::vector<std::string>& arguments) {
        return Shown(MsgbusTool(), arguments);
    }

    /// Publishes @p block on every channel.
    static void Publish(const std::vector<std::byte>& block) {
        const auto size = static_cast<unsigned int>(block.size());
        Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(size);
        Given(kGetData).WritesRecords(block).Writes(size);
    }

    /// The output for the list in @p block.
    static std::string ShownList(const std::vector<std::byte>& block) {
        Publish(block);
        return Run({"MsgBusGet", kNotifications});
    }
};

AnsNotificationRecord Update() {
    AnsNotificationRecord record = Notification("softwareUpdate");
    SetText(record.category, "device");
    SetText(record.labelId, "label");
    SetText(record.titleId, "title");
    SetText(record.textId, "text");
    record.severity = ANS_SEVERITY_CRITICAL;
    return record;
}

const std::string kUpdate = R"(        {
            "category": "device",
            "id": "softwareUpdate",
            "labelId": "label",
            "titleId": "title",
            "textId": "text",
            "severity": {
                "value": 3,
                "name": "critical"
            },
            "flags": 1,
            "active": true
        })";

/// @p block with its count replaced by @p count.
std::vector<std::byte> Announcing(std::int32_t count, std::vector<std::byte> block) {
    std::memcpy(block.data(), &count, sizeof(count));
    return block;
}

TEST_F(MsgbusCli, ShowsTheNotifications) {
    AnsNotificationRecord inactive = Notification("other");
    inactive.severity = 9;
    inactive.flags = 0xFFFFFFFE;
    EXPECT_EQ(ShownList(NotificationList({Update(), inactive})),
              "{\n    \"count\": 2,\n    \"notifications\": [\n" + kUpdate + R"(,
        {
            "category": "",
            "id": "other",
            "labelId": "",
            "titleId": "",
            "textId": "",
            "severity": {
                "value": 9,
                "name": null,
                "explanation": "no name; these have: 0 info, 1 warning, 2 alert, 3 critical"
            },
            "flags": 4294967294,
            "active": false
        }
    ]
}
)");
    EXPECT_EQ(TranscriptText(),
              "MsgbusHandler::MsgbusHandler(no callback)\n"
              "MsgbusHandler::Initialize()\n"
              "MsgbusHandler::GetData(zelt.ans.notifications, no buffer)\n"
              "MsgbusHandler::GetData(zelt.ans.notifications, room for 932)\n"
              "MsgbusHandler::Uninitialize()\n");
}

TEST_F(MsgbusCli, TheListMayBeEmpty) {
    EXPECT_EQ(ShownList(NotificationList({})), R"({
    "count": 0,
    "notifications": []
}
)");
}

TEST_F(MsgbusCli, TextsWithoutAnEndEndWithTheirField) {
    AnsNotificationRecord record = Update();
    SetText(record.category, std::string(20, 'c'));
    const std::string shown = ShownList(NotificationList({record}));
    EXPECT_NE(shown.find("\"category\": \"cccccccccccccccccccc\",\n"), std::string::npos);
}

TEST_F(MsgbusCli, RecordsThatAreCutOffAreNotShown) {
    std::vector<std::byte> block = NotificationList({Update(), Update()});
    block.pop_back();
    EXPECT_EQ(ShownList(block),
              "{\n    \"count\": 2,\n"
              "    \"malformed\": \"only 1 of 2 records are complete\",\n"
              "    \"notifications\": [\n" +
                  kUpdate + "\n    ]\n}\n");
}

TEST_F(MsgbusCli, WithAHugeCountTheCompleteRecordsAreShown) {
    EXPECT_EQ(ShownList(Announcing(2147483647, NotificationList({Update()}))),
              "{\n    \"count\": 2147483647,\n"
              "    \"malformed\": \"only 1 of 2147483647 records are complete\",\n"
              "    \"notifications\": [\n" +
                  kUpdate + "\n    ]\n}\n");
}

TEST_F(MsgbusCli, BytesAfterTheLastRecordAreReported) {
    EXPECT_EQ(ShownList(Announcing(1, NotificationList({Update(), Update()}))),
              "{\n    \"count\": 1,\n"
              "    \"malformed\": \"464 bytes follow the last record\",\n"
              "    \"notifications\": [\n" +
                  kUpdate + "\n    ]\n}\n");
}

TEST_F(MsgbusCli, ANegativeCountIsReported) {
    EXPECT_EQ(ShownList(Announcing(-1, NotificationList({Update()}))), R"({
    "count": -1,
    "malformed": "the count is negative",
    "notifications": []
}
)");
}

TEST_F(MsgbusCli, ABlockWithoutACountIsReported) {
    const std::string expected = R"({
    "malformed": "the block is too short for a count",
    "notifications": []
}
)";
    EXPECT_EQ(ShownList(std::vector<std::byte>(3)), expected);
    recording::Reset();
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(0U);
    Given(kGetData).WritesNothing().Writes(0U);
    EXPECT_EQ(Run({"MsgBusGet", kNotifications}), expected);
}

TEST_F(MsgbusCli, AnyOtherChannelIsShownInHexadecimal) {
    Publish({std::byte{0x00}, std::byte{0x7F}, std::byte{0xFF}});
    EXPECT_EQ(Run({"MsgBusGet", "zelt.other"}),
              "{\n    \"size\": 3,\n    \"bytes\": \"007fff\"\n}\n");
}

TEST_F(MsgbusCli, RawBytesAreWrittenAsTheyAre) {
    for (const std::string& channel : {kNotifications, std::string("zelt.other")}) {
        recording::Reset();
        Publish({std::byte{0x00}, std::byte{0x0A}, std::byte{0xFF}});
        EXPECT_EQ(Run({"MsgBusGet", "--raw", channel}), std::string("\x00\x0A\xFF", 3));
    }
}

TEST_F(MsgbusCli, ABlockThatGrowsInBetweenIsReadAgain) {
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(1U);
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(2U);
    Given(kGetData).WritesRecords<std::byte>({std::byte{1}, std::byte{2}}).Writes(2U);
    EXPECT_EQ(Run({"MsgBusGet", "a"}), "{\n    \"size\": 2,\n    \"bytes\": \"0102\"\n}\n");
}

TEST_F(MsgbusCli, ABlockThatHasShrunkInBetweenEndsEarlier) {
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(2U);
    Given(kGetData).WritesRecords<std::byte>({std::byte{1}}).Writes(1U);
    EXPECT_EQ(Run({"MsgBusGet", "a"}), "{\n    \"size\": 1,\n    \"bytes\": \"01\"\n}\n");
}

TEST_F(MsgbusCli, ASizeBeyondTheBufferIsNotTrusted) {
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(1U);
    Given(kGetData).WritesRecords<std::byte>({std::byte{1}}).Writes(4000000000U);
    EXPECT_EQ(Run({"MsgBusGet", "a"}), "{\n    \"size\": 1,\n    \"bytes\": \"01\"\n}\n");
}

TEST_F(MsgbusCli, ABlockThatNeverFitsFails) {
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(1U);
    EXPECT_EQ(Run({"MsgBusGet", "a"}),
              "msgbus_cli: MsgbusHandler::GetData failed, returned error code 4 "
              "(buffer_needed)\n[1]\n");
    EXPECT_EQ(recording::CallCount(kGetData), 6U);
}

TEST_F(MsgbusCli, AReadThatFailsLeavesTheBus) {
    Given(kGetData).Returns(17);
    EXPECT_EQ(Run({"MsgBusGet", "a"}),
              "msgbus_cli: MsgbusHandler::GetData failed, returned error code 17 (no name; what it "
              "means depends on the device)\n[1]\n");
    EXPECT_EQ(recording::Transcript().back(), "MsgbusHandler::Uninitialize()");
}

TEST_F(MsgbusCli, ABusThatCannotBeJoinedIsNotRead) {
    Given("MsgbusHandler::Initialize").Returns(18);
    EXPECT_EQ(Run({"MsgBusGet", "a"}),
              "msgbus_cli: MsgbusHandler::Initialize failed, returned error code 18 (no name; what "
              "it means depends on the device)\n[1]\n");
    EXPECT_EQ(recording::Transcript().back(), "MsgbusHandler::Initialize()");
}

TEST_F(MsgbusCli, ABusThatCannotBeLeftIsReportedAfterTheAnswer) {
    Publish({std::byte{1}});
    Given("MsgbusHandler::Uninitialize").Returns(19);
    EXPECT_EQ(Run({"MsgBusGet", "a"}),
              "{\n    \"size\": 1,\n    \"bytes\": \"01\"\n}\n"
              "msgbus_cli: MsgbusHandler::Uninitialize failed, returned error code 19 (no name; "
              "what it means depends on the device)\n[1]\n");
}

}  // namespace
