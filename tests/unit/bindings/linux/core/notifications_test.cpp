// Which state of the device calls for which notification.
#include "bindings/linux/notification/notifications.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "bindings/linux/absent_device.h"
#include "bindings/linux/source.h"
#include "platform/notification.h"

namespace {

using binding::Device;
using binding::Settings;
using binding::Tell;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const binding::Notifications::Time kStart{seconds(1000)};

/// A device with which nothing is wrong.
Device Registered() {
    Device device = binding::AbsentDevice();
    Tell(device.getSIMStatus, SYS_SIM_READY);
    Tell(device.getRadioEnabled, 1);
    Tell(device.getCellularDataEnabled, 1);
    Tell(device.getCellularServiceStatus, SYS_SERVICE_AVAILABLE);
    return device;
}

std::vector<AnsNotificationRecord> Records(const Device& device) {
    const auto& block = device.channels.at(ANS_NOTIFICATION_CHANNEL).value;
    std::int32_t count = 0;
    std::memcpy(&count, block.data(), sizeof count);
    std::vector<AnsNotificationRecord> records(static_cast<std::size_t>(count));
    EXPECT_EQ(block.size(),
              ANS_NOTIFICATION_LIST_RECORDS + records.size() * sizeof(AnsNotificationRecord));
    std::memcpy(records.data(), block.data() + ANS_NOTIFICATION_LIST_RECORDS,
                records.size() * sizeof(AnsNotificationRecord));
    return records;
}

std::vector<std::string> Published(Device device, const Settings& settings = {}) {
    binding::Notifications notifications;
    (void)notifications.Publish(device, settings, kStart, true);
    std::vector<std::string> types;
    for (const AnsNotificationRecord& record : Records(device)) {
        types.emplace_back(record.id);
    }
    return types;
}

TEST(Notifications, NothingIsPublishedWhenNothingIsWrong) {
    EXPECT_THAT(Published(Registered()), IsEmpty());
}

TEST(Notifications, BoardWithoutAModemHasNone) {
    EXPECT_THAT(Published(binding::AbsentDevice()), IsEmpty());
}

TEST(Notifications, LockedSim) {
    Device device = Registered();
    Tell(device.getSIMStatus, SYS_SIM_PIN_LOCKED);
    EXPECT_THAT(Published(device), ElementsAre("simPINLocked"));
    Tell(device.getSIMStatus, SYS_SIM_PUK_LOCKED);
    EXPECT_THAT(Published(device), ElementsAre("simPUKLocked"));
}

TEST(Notifications, NoServiceWithASimAndTheRadioOn) {
    Device device = Registered();
    Tell(device.getCellularServiceStatus, SYS_SERVICE_NONE);
    EXPECT_THAT(Published(device), ElementsAre("noService"));
    Tell(device.getRadioEnabled, 0);
    EXPECT_THAT(Published(device), IsEmpty());
}

TEST(Notifications, SearchingIsNotYetNoService) {
    Device device = Registered();
    Tell(device.getCellularServiceStatus, SYS_SERVICE_SEARCHING);
    EXPECT_THAT(Published(device), IsEmpty());
}

TEST(Notifications, Roaming) {
    Device device = Registered();
    device.getCellularServiceStats.value.roaming = SYS_ROAMING_DOMESTIC;
    EXPECT_THAT(Published(device), ElementsAre("roamingDomestic"));
    device.getCellularServiceStats.value.roaming = SYS_ROAMING_INTERNATIONAL;
    EXPECT_THAT(Published(device), ElementsAre("roamingInternational"));
}

TEST(Notifications, DataSwitchedOff) {
    Device device = Registered();
    Tell(device.getCellularDataEnabled, 0);
    EXPECT_THAT(Published(device), ElementsAre("dataOff"));
}

TEST(Notifications, PlanUsedUpToNinetyAndToAHundredPercent) {
    Device device = Registered();
    Settings settings;
    settings.planBytes = 1000;
    auto& stats = device.getCellularDataConnectionStats.value;
    stats.bytesReceived1 = 800;
    stats.bytesTransmitted1 = 99;
    EXPECT_THAT(Published(device, settings), IsEmpty());
    stats.bytesTransmitted1 = 100;
    EXPECT_THAT(Published(device, settings), ElementsAre("data90"));
    stats.bytesTransmitted1 = 200;
    EXPECT_THAT(Published(device, settings), ElementsAre("data100"));
    EXPECT_THAT(Published(device), IsEmpty());
}

TEST(Notifications, PlanOfTheLargestSize) {
    Device device = Registered();
    Settings settings;
    settings.planBytes = UINT64_MAX;
    device.getCellularDataConnectionStats.value.bytesReceived1 = UINT64_MAX / 2;
    EXPECT_THAT(Published(device, settings), IsEmpty());
}

TEST(Notifications, UnreadMessages) {
    Device device = Registered();
    Tell(device.getSMSUnreadCount, 1);
    EXPECT_THAT(Published(device), ElementsAre("smsReceived"));
}

TEST(Notifications, UpdateUnderWayInstalledAndFailed) {
    Device device = Registered();
    auto& status = device.softwareUpdateStatus.value.status;
    for (const auto& [state, type] : std::map<int, std::string>{{4, "softwareUpdate"},
                                                                {7, "softwareUpdate"},
                                                                {8, "softwareUpdateSuccess"},
                                                                {9, "softwareUpdateFailure"}}) {
        status = state;
        EXPECT_THAT(Published(device), ElementsAre(type)) << state;
    }
}

TEST(Notifications, CallsThatFailCallForNothing) {
    Device device = Registered();
    binding::FailAll(9006, device.getSIMStatus, device.getSMSUnreadCount,
                     device.getCellularServiceStats, device.getCellularServiceStatus);
    device.getSMSUnreadCount.value = 3;
    EXPECT_THAT(Published(device), IsEmpty());
}

TEST(Notifications, MutedTypesAreNotPublished) {
    Device device = Registered();
    Tell(device.getSMSUnreadCount, 1);
    Settings settings;
    settings.mutedNotifications = {"smsReceived"};
    EXPECT_THAT(Published(device, settings), IsEmpty());
}

/// Settings of an owner who has added a notification of the type @p type.
Settings WithAdded(const std::string& type) {
    Settings settings;
    binding::AddedNotification& added = settings.addedNotifications.emplace_back();
    type.copy(added.record.id, sizeof added.record.id - 1);
    return settings;
}

TEST(Notifications, AddedOnesFollowThoseThatTheStateCallsFor) {
    Device device = Registered();
    EXPECT_THAT(Published(device, WithAdded("shop")), ElementsAre("shop"));
    Tell(device.getSMSUnreadCount, 1);
    EXPECT_THAT(Published(device, WithAdded("shop")), ElementsAre("smsReceived", "shop"));
}

TEST(Notifications, AddedOneStandsInPlaceOfThatOfTheSameType) {
    Device device = Registered();
    Tell(device.getSMSUnreadCount, 1);
    EXPECT_THAT(Published(device, WithAdded("smsReceived")), ElementsAre("smsReceived"));
}

TEST(Notifications, AccountStatesOfACarrierThatTellsThem) {
    Device device = Registered();
    Tell(device.getPCOCarrierEnabled, 1);
    EXPECT_THAT(Published(device), IsEmpty());
    Tell(device.getCellularDataAccountStatus, SYS_ACCOUNT_OUT_OF_CREDIT);
    EXPECT_THAT(Published(device), ElementsAre("PCO3"));
    Tell(device.getCellularDataAccountStatus, SYS_ACCOUNT_NOT_ACTIVE);
    EXPECT_THAT(Published(device), ElementsAre("PCO5"));
    Tell(device.getCellularDataAccountStatus, SYS_ACCOUNT_RESTRICTED);
    EXPECT_THAT(Published(device), IsEmpty());
}

TEST(Notifications, AccountStatesAreNotShownWhenTheCarrierDoesNotTellThem) {
    Device device = Registered();
    Tell(device.getCellularDataAccountStatus, SYS_ACCOUNT_OUT_OF_CREDIT);
    EXPECT_THAT(Published(device), IsEmpty());
}

TEST(Notifications, RecordHasSeverityAndMessageIdsOfItsType) {
    Device device = Registered();
    Tell(device.getSIMStatus, SYS_SIM_PUK_LOCKED);
    binding::Notifications notifications;
    (void)notifications.Publish(device, {}, kStart, true);
    const auto records = Records(device);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_STREQ(records[0].category, "sim");
    EXPECT_STREQ(records[0].labelId, "notification_category_sim_label");
    EXPECT_STREQ(records[0].titleId, "notification_sim_puk_locked_title");
    EXPECT_STREQ(records[0].textId, "notification_sim_puk_locked_text");
    EXPECT_EQ(records[0].severity, ANS_SEVERITY_CRITICAL);
    EXPECT_EQ(records[0].flags, ANS_NOTIFICATION_ACTIVE);
}

class ClientNotifications : public ::testing::Test {
  protected:
    /// What is published at @p at with so many clients.
    std::vector<std::string> After(seconds at, int wifi, int ethernet, int usb = 0) {
        Device device = Registered();
        const auto add = [&](int count, sys_connection_kind_e kind) {
            sys_connected_device_t record{};
            record.connectionKind = kind;
            auto& clients = device.getConnectedDeviceList.value;
            clients.insert(clients.end(), static_cast<std::size_t>(count), record);
        };
        add(wifi, SYS_CONNECTION_WIFI);
        add(ethernet, SYS_CONNECTION_WIRED_A);
        add(usb, SYS_CONNECTION_WIRED_B);
        end = notifications.Publish(device, {}, kStart + at, true);
        std::vector<std::string> types;
        for (const AnsNotificationRecord& record : Records(device)) {
            types.emplace_back(record.id);
        }
        return types;
    }

    binding::Notifications notifications;
    std::optional<binding::Notifications::Time> end;
};

TEST_F(ClientNotifications, ClientsThatWereThereAtTheStartHaveNotJoined) {
    EXPECT_THAT(After(seconds(0), 2, 1), IsEmpty());
    EXPECT_EQ(end, std::nullopt);
}

TEST_F(ClientNotifications, ClientsAreNotCountedBeforeAllSourcesHaveTold) {
    Device device = Registered();
    (void)notifications.Publish(device, {}, kStart, false);
    EXPECT_THAT(After(seconds(1), 2, 1), IsEmpty());
    (void)notifications.Publish(device, {}, kStart + seconds(2), false);
    EXPECT_THAT(After(seconds(3), 2, 1), IsEmpty());
}

TEST_F(ClientNotifications, ClientThatJoinsIsShownForAMinute) {
    (void)After(seconds(0), 0, 0);
    EXPECT_THAT(After(seconds(1), 1, 0), ElementsAre("deviceJoinWiFi"));
    EXPECT_EQ(end, kStart + seconds(61));
    EXPECT_THAT(After(seconds(60), 1, 0), ElementsAre("deviceJoinWiFi"));
    EXPECT_THAT(After(seconds(61), 1, 0), IsEmpty());
}

TEST_F(ClientNotifications, EachKindOfConnectionHasItsOwn) {
    (void)After(seconds(0), 0, 0);
    EXPECT_THAT(After(seconds(1), 0, 1), ElementsAre("deviceJoinEthernet"));
    EXPECT_THAT(After(seconds(2), 1, 1), ElementsAre("deviceJoinEthernet", "deviceJoinWiFi"));
    EXPECT_THAT(After(seconds(70), 1, 1, 1), ElementsAre("deviceJoinUSB"));
    EXPECT_THAT(After(seconds(140), 1, 1, 0), ElementsAre("deviceLeave"));
}

TEST_F(ClientNotifications, ClientThatLeavesIsShown) {
    (void)After(seconds(0), 1, 1);
    EXPECT_THAT(After(seconds(1), 1, 0), ElementsAre("deviceLeave"));
    EXPECT_THAT(After(seconds(30), 0, 0), ElementsAre("deviceLeave"));
    EXPECT_EQ(end, kStart + seconds(90));
}

}  // namespace
