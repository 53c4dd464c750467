// The message bus: the protocol of reading a channel, notifications, raw blocks, failures.
#include "platform/msgbus.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "bindings/device/codes.h"
#include "platform/notification.h"
#include "platform/sysint.h"
#include "tests/support/records.h"
#include "tests/support/scratch.h"

namespace {

constexpr const char* kNotifications = "zelt.ans.notifications";
constexpr unsigned int kUntouched = 4711;

class Msgbus : public SimulatedDevice {
  protected:
    Msgbus() : bus(nullptr) { EXPECT_EQ(bus.Initialize(), MSGBUS_SUCCESS); }

    void Channel(const std::string& value, const std::string& name = kNotifications) const {
        Document("{\"msgbus\": {\"" + name + "\": " + value + "}}");
    }

    /// The block that a client gets that asks for the size first.
    std::vector<std::byte> Block(const std::string& channel = kNotifications) {
        unsigned int size = 0;
        EXPECT_EQ(bus.GetData(channel, nullptr, size), MSGBUS_BUFFER_NEEDED);
        std::vector<std::byte> block(size);
        EXPECT_EQ(bus.GetData(channel, block.data(), size), MSGBUS_SUCCESS);
        EXPECT_EQ(size, block.size());
        return block;
    }

    /// Expects that the call fails with @p code and writes nothing, with a buffer and without one.
    void ExpectFailure(const std::string& channel, int code) {
        unsigned int size = kUntouched;
        EXPECT_EQ(bus.GetData(channel, nullptr, size), code);
        EXPECT_EQ(size, kUntouched);
        std::vector<std::byte> buffer(kUntouched, std::byte{0x5A});
        const std::vector<std::byte> before = buffer;
        EXPECT_EQ(bus.GetData(channel, buffer.data(), size), code);
        EXPECT_EQ(size, kUntouched);
        EXPECT_EQ(buffer, before);
    }

    MsgbusHandler bus;
};

TEST_F(Msgbus, NotificationsAreACountAndRecords) {
    Channel(R"([{"id": "smsReceived", "category": "messaging", "severity": "critical",
                 "labelId": "the_label", "titleId": "the_title", "textId": "the_text"},
                {"id": "dataOff", "severity": 4294967295, "active": false}])");
    AnsNotificationRecord sms = Notification("smsReceived");
    SetText(sms.category, "messaging");
    SetText(sms.labelId, "the_label");
    SetText(sms.titleId, "the_title");
    SetText(sms.textId, "the_text");
    sms.severity = ANS_SEVERITY_CRITICAL;
    AnsNotificationRecord dataOff = Notification("dataOff");
    dataOff.severity = UINT32_MAX;
    dataOff.flags = 0;
    EXPECT_EQ(Block(), NotificationList({sms, dataOff}));
}

TEST_F(Msgbus, NotificationsAreActiveByDefault) {
    Channel(R"([{}, {"active": true}, {"active": false}])");
    AnsNotificationRecord inactive = Notification("");
    inactive.flags = 0;
    EXPECT_EQ(Block(), NotificationList({Notification(""), Notification(""), inactive}));
}

TEST_F(Msgbus, SeveritiesHaveNames) {
    Channel(R"([{"severity": "info"}, {"severity": "warning"}, {"severity": "alert"},
                {"severity": "critical"}, {"severity": 2}])");
    std::vector<AnsNotificationRecord> records(5, Notification(""));
    for (std::uint32_t severity = 0; severity < 4; ++severity) {
        records[severity].severity = severity;
    }
    records[4].severity = ANS_SEVERITY_ALERT;
    EXPECT_EQ(Block(), NotificationList(records));
}

TEST_F(Msgbus, RecordsHaveThePublishedLayout) {
    Channel(R"([{"id": "a"}, {"id": "b", "severity": 258}])");
    const std::vector<std::byte> block = Block();
    ASSERT_EQ(block.size(), 4U + 2U * 464U);
    EXPECT_EQ(block[0], std::byte{2});
    EXPECT_EQ(block[4 + 20], std::byte{'a'});
    EXPECT_EQ(block[4 + 444], std::byte{1});
    EXPECT_EQ(block[468 + 20], std::byte{'b'});
    EXPECT_EQ(block[468 + 436], std::byte{2});
    EXPECT_EQ(block[468 + 437], std::byte{1});
}

TEST_F(Msgbus, EmptyListIsACountOfZero) {
    Channel("[]");
    EXPECT_EQ(Block(), std::vector<std::byte>(4));
}

TEST_F(Msgbus, BufferThatIsTooSmallIsLeftAlone) {
    Channel("[{}]");
    std::vector<std::byte> buffer(468, std::byte{0x5A});
    const std::vector<std::byte> before = buffer;
    unsigned int size = 467;
    EXPECT_EQ(bus.GetData(kNotifications, buffer.data(), size), MSGBUS_BUFFER_NEEDED);
    EXPECT_EQ(size, 468U);
    EXPECT_EQ(buffer, before);
}

TEST_F(Msgbus, SizeIsIgnoredWithoutABuffer) {
    Channel("[{}]");
    unsigned int size = kUntouched;
    EXPECT_EQ(bus.GetData(kNotifications, nullptr, size), MSGBUS_BUFFER_NEEDED);
    EXPECT_EQ(size, 468U);
}

TEST_F(Msgbus, LargerBufferIsFilledAsFarAsTheBlockGoes) {
    Channel(R"({"bytes": "0102"})");
    std::vector<std::byte> buffer(4, std::byte{0x5A});
    unsigned int size = 4;
    EXPECT_EQ(bus.GetData(kNotifications, buffer.data(), size), MSGBUS_SUCCESS);
    EXPECT_EQ(size, 2U);
    EXPECT_EQ(buffer, (std::vector<std::byte>{std::byte{1}, std::byte{2}, std::byte{0x5A},
                                              std::byte{0x5A}}));
}

TEST_F(Msgbus, RawBlocksAreDeliveredAsTheyAre) {
    Channel(R"({"bytes": "00ffA07f"})", "any.channel");
    EXPECT_EQ(Block("any.channel"), (std::vector<std::byte>{std::byte{0}, std::byte{0xFF},
                                                            std::byte{0xA0}, std::byte{0x7F}}));
}

TEST_F(Msgbus, EmptyBlockHasNoSize) {
    Channel(R"({"bytes": ""})");
    unsigned int size = kUntouched;
    EXPECT_EQ(bus.GetData(kNotifications, nullptr, size), MSGBUS_BUFFER_NEEDED);
    EXPECT_EQ(size, 0U);
    std::byte buffer{0x5A};
    size = 1;
    EXPECT_EQ(bus.GetData(kNotifications, &buffer, size), MSGBUS_SUCCESS);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(buffer, std::byte{0x5A});
}

TEST_F(Msgbus, ChannelsFailAsTheDocumentSays) {
    Channel(R"({"error": 31})");
    ExpectFailure(kNotifications, 31);
    Channel(R"({"error": 4})");
    ExpectFailure(kNotifications, MSGBUS_BUFFER_NEEDED);
}

TEST_F(Msgbus, UnnamedChannelsAreNotSimulated) {
    for (const std::string document : {"{}", R"({"msgbus": {}})", R"({"msgbus": {"other": []}})"}) {
        Document(document);
        ExpectFailure(kNotifications, binding::kNotAnswered);
    }
}

TEST_F(Msgbus, WithoutADocumentEveryChannelFails) {
    ExpectFailure(kNotifications, binding::kNoDevice);
}

TEST_F(Msgbus, MustBeJoined) {
    Channel("[]");
    MsgbusHandler other(nullptr);
    unsigned int size = kUntouched;
    EXPECT_EQ(other.GetData(kNotifications, nullptr, size), binding::kBusNotJoined);
    EXPECT_EQ(size, kUntouched);
    EXPECT_EQ(other.Initialize(), MSGBUS_SUCCESS);
    EXPECT_EQ(other.GetData(kNotifications, nullptr, size), MSGBUS_BUFFER_NEEDED);
    EXPECT_EQ(other.Uninitialize(), MSGBUS_SUCCESS);
    EXPECT_EQ(other.GetData(kNotifications, nullptr, size), binding::kBusNotJoined);
    EXPECT_EQ(bus.GetData(kNotifications, nullptr, size), MSGBUS_BUFFER_NEEDED)
        << "each client joins for itself";
}

TEST_F(Msgbus, SharesTheSnapshotOfTheSession) {
    Channel("[]");
    EXPECT_EQ(sys_sdkInitialize(), 0);
    Channel("[{}]");
    EXPECT_EQ(Block().size(), 4U);
    EXPECT_EQ(sys_sdkShutdown(), 0);
    EXPECT_EQ(Block().size(), 468U);
}

TEST_F(Msgbus, ShippedDocumentHasTwoActiveNotifications) {
    environment.Set("KESTAL_DEVICE", KESTAL_SHIPPED_DEVICES "/default.json");
    const std::vector<std::byte> block = Block();
    ASSERT_EQ(block.size(), ANS_NOTIFICATION_LIST_RECORDS + 2 * sizeof(AnsNotificationRecord));
    std::vector<AnsNotificationRecord> records(2);
    std::memcpy(records.data(), block.data() + ANS_NOTIFICATION_LIST_RECORDS,
                2 * sizeof(AnsNotificationRecord));
    EXPECT_STREQ(records[0].id, "smsReceived");
    EXPECT_STREQ(records[1].id, "softwareUpdate");
    EXPECT_EQ(records[0].flags & records[1].flags, ANS_NOTIFICATION_ACTIVE);
}

}  // namespace
