// The owner's document stands in place of what the sources tell, and holds the settings.
#include "bindings/linux/board_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "bindings/linux/absent_device.h"
#include "bindings/linux/source.h"
#include "platform/notification.h"

namespace {

using binding::BoardDocument;
using binding::Device;
using ::testing::ElementsAre;

BoardDocument Read(const std::string& text) {
    return binding::ReadBoardDocument("device.json", text);
}

std::string ProblemOf(const std::string& text) {
    try {
        (void)Read(text);
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

/// The board's device when @p text is the document.
Device Overlaid(const std::string& text) {
    Device device = binding::AbsentDevice();
    binding::Tell(device.getSMSUnreadCount, 5);
    binding::FailAll(9006, device.getGPSStatus);
    binding::Tell(device.uriData.value["sms"], webui_uri_data_t{});
    binding::Overlay(device, Read(text).device);
    return device;
}

TEST(BoardDocument, AnEmptyOneLeavesAllToTheSourcesAndTheDefaults) {
    const BoardDocument document = Read("{}");
    EXPECT_EQ(document.settings, binding::Settings());
    EXPECT_EQ(Overlaid("{}").getSMSUnreadCount.value, 5);
}

TEST(BoardDocument, SettingsAreInTheObjectLinux) {
    const BoardDocument document =
        Read("{\"linux\": {\"wifi\": [\"wlan7\"], \"planBytes\": 5000000000, \"apn\": \"net\"}}");
    EXPECT_THAT(document.settings.wifi, ElementsAre("wlan7"));
    EXPECT_EQ(document.settings.planBytes, 5'000'000'000U);
    EXPECT_EQ(document.settings.apn, "net");
    EXPECT_EQ(document.settings.bridge, "br0");
}

TEST(BoardDocument, TheCommentedExampleHasTheDefaults) {
    std::ifstream file(KESTAL_COMMENTED_SETTINGS);
    std::string uncommented;
    for (std::string line; std::getline(file, line);) {
        const bool isComment = line.find_first_not_of(' ') == line.find("//");
        uncommented += isComment ? "\n" : line + "\n";
    }
    EXPECT_EQ(Read(uncommented).settings, binding::Settings());
}

TEST(BoardDocument, WhatIsWrongIsToldWithItsLine) {
    EXPECT_EQ(ProblemOf("{\n\"linux\": {\"apn\": 1}}"),
              "device.json:2: linux.apn: expected a text, found 1");
    EXPECT_EQ(ProblemOf("{\n\"sys\": {\"getGPSStatus\": \"x\"}}"),
              "device.json:2: sys.getGPSStatus: expected off, searching, got_fix or a 32-bit "
              "integer or {\"error\": N}, found 'x'");
    for (const std::string name : {"checkSeconds", "silenceSeconds", "clientNotificationSeconds"}) {
        EXPECT_EQ(ProblemOf("{\"linux\": {\"" + name + "\": 0}}"),
                  "device.json:1: linux." + name +
                      ": expected a number of seconds from 1 to 86400, found 0");
    }
    EXPECT_THAT(ProblemOf("{\"linux\": {\"wify\": []}}"), ::testing::HasSubstr("wify"));
    EXPECT_THAT(ProblemOf("[]"), ::testing::HasSubstr("expected an object"));
}

/// What the reader says of the value @p value of the setting @p name; empty if it accepts it.
std::string Setting(const std::string& name, const std::string& value) {
    const std::string problem = ProblemOf("{\n\"linux\": {\"" + name + "\": " + value + "}}");
    const std::string place = "device.json:2: linux.";
    EXPECT_EQ(problem.substr(0, place.size()), problem.empty() ? "" : place);
    return problem.empty() ? "" : problem.substr(place.size());
}

TEST(BoardDocument, InterfacesHaveNamesThatTheKernelAllows) {
    const std::string expected = "expected a name of at most 15 bytes without slashes, found ";
    for (const std::string name : {"", "/etc/shadow", "../eth0", "..", "a-name-of-16-cha"}) {
        const std::string text = "\"" + name + "\"";
        EXPECT_EQ(Setting("wifi", "[\"wlan0\", " + text + "]"), "wifi[1]: " + expected + text);
    }
    EXPECT_EQ(Setting("bridge", "\"a/b\""), "bridge: " + expected + "\"a/b\"");
    EXPECT_EQ(Setting("bridge", "\"\""), "");
    EXPECT_EQ(Setting("bridge", "7"), "bridge: expected a text, found 7");
}

TEST(BoardDocument, MemoryCardIsAnEntryOfAFolder) {
    EXPECT_EQ(Setting("memoryCard", "\"../../etc\""),
              "memoryCard: expected a name of at most 255 bytes without slashes, found "
              "\"../../etc\"");
    EXPECT_EQ(Setting("memoryCard", "\"\""), "");
    EXPECT_EQ(Setting("memoryCard", "\"mmcblk1\""), "");
}

TEST(BoardDocument, PathsAreAbsolute) {
    for (const std::string name : {"hostapdDirectory", "leases", "powerSupplies", "updateSocket"}) {
        for (const std::string path : {"", "/", "leases", "/run/"}) {
            const std::string text = "\"" + path + "\"";
            EXPECT_EQ(Setting(name, text), name + ": expected an absolute path, found " + text);
        }
        EXPECT_NE(Setting(name, "\"/" + std::string(5000, 'a') + "\""), "");
    }
}

TEST(BoardDocument, TextsHaveNoControlCharacters) {
    for (const std::string character : {"\\u0000", "\\n", "\\u001b", "\\u007f"}) {
        EXPECT_EQ(Setting("apn", "\"a" + character + "b\""),
                  "apn: expected a text without control characters, found such");
    }
    EXPECT_EQ(Setting("apn", "\"caf\u00e9\""), "");
}

TEST(BoardDocument, ListsAreBounded) {
    std::string names = "\"a\"";
    for (int count = 1; count < 32; ++count) {
        names += ", \"a\"";
    }
    EXPECT_EQ(Setting("wifi", "[" + names + "]"), "");
    EXPECT_EQ(Setting("wifi", "[" + names + ", \"a\"]"),
              "wifi: expected a list of at most 32, found one of 33");
}

TEST(BoardDocument, AccessPointServesAsManyClientsAsHostapdCan) {
    EXPECT_EQ(Setting("wifiMaxClients", "2007"), "");
    EXPECT_EQ(Setting("wifiMaxClients", "4294967295"),
              "wifiMaxClients: expected a number from 0 to 2007, found 4294967295");
}

TEST(BoardDocument, NotificationsThatAreMutedMustExist) {
    EXPECT_EQ(Setting("mutedNotifications", "[\"smsReceived\"]"), "");
    EXPECT_EQ(Setting("mutedNotifications", "[\"smsRecieved\"]"),
              "mutedNotifications[0]: expected a type of notification, found \"smsRecieved\"");
}

TEST(BoardDocument, NotificationsCanBeAdded) {
    const BoardDocument document = Read(
        "{\"linux\": {\"addedNotifications\": ["
        "{\"id\": \"simNonQKT\", \"severity\": \"critical\"},"
        "{\"id\": \"shop\", \"category\": \"account\", \"active\": false}]}}");
    const auto& added = document.settings.addedNotifications;
    ASSERT_EQ(added.size(), 2U);
    // What is not said of a type that is known is as usual.
    EXPECT_STREQ(added[0].record.category, "sim");
    EXPECT_STREQ(added[0].record.titleId, "notification_sim_non_qkt_title");
    EXPECT_EQ(added[0].record.severity, ANS_SEVERITY_CRITICAL);
    EXPECT_EQ(added[0].record.flags, ANS_NOTIFICATION_ACTIVE);
    EXPECT_STREQ(added[1].record.id, "shop");
    EXPECT_STREQ(added[1].record.titleId, "");
    EXPECT_EQ(added[1].record.flags, 0U);
    EXPECT_FALSE(document.settings == binding::Settings());
}

TEST(BoardDocument, WrongAddedNotificationsAreToldWithTheirPlace) {
    EXPECT_EQ(Setting("addedNotifications", "{}"),
              "addedNotifications: expected a list, found an object");
    EXPECT_EQ(Setting("addedNotifications", "[{\"category\": \"sim\"}]"),
              "addedNotifications[0]: expected a notification with an \"id\", found none");
    EXPECT_EQ(Setting("addedNotifications", "[{\"id\": \"\"}]"),
              "addedNotifications[0]: expected a notification with an \"id\", found none");
    EXPECT_EQ(Setting("addedNotifications", "[{\"id\": \"a\", \"severity\": \"loud\"}]"),
              "addedNotifications[0].severity: expected info, warning, alert, critical or an "
              "unsigned 32-bit integer, found 'loud'");
    EXPECT_NE(Setting("addedNotifications", "[{\"id\": \"a\", \"txtId\": \"b\"}]"), "");
    EXPECT_NE(Setting("addedNotifications", "[{\"id\": \"" + std::string(30, 'a') + "\"}]"), "");
}

TEST(BoardDocument, AnAnswerStandsInPlaceOfTheSources) {
    EXPECT_EQ(Overlaid("{\"sys\": {\"getSMSUnreadCount\": 1}}").getSMSUnreadCount.value, 1);
    EXPECT_EQ(
        Overlaid("{\"sys\": {\"getSMSUnreadCount\": {\"error\": 4}}}").getSMSUnreadCount.error, 4);
}

TEST(BoardDocument, AnAnswerHealsACallWhoseSourceIsLost) {
    const Device device = Overlaid("{\"sys\": {\"getGPSStatus\": 2}}");
    EXPECT_EQ(device.getGPSStatus.error, 0);
    EXPECT_EQ(device.getGPSStatus.value, 2);
}

TEST(BoardDocument, NamedAnswersAreAddedToThoseThatThereAre) {
    const Device device = Overlaid(
        "{\"webui\": {\"uriData\": {\"gps\": {\"address\": \"/gps\", \"titleId\": \"t\"}}}}");
    EXPECT_EQ(device.uriData.value.size(), 2U);
}

TEST(BoardDocument, OneIndexOfACallIsReplacedAlone) {
    const Device device = Overlaid("{\"sys\": {\"getWiFiGuestProfileEnabled\": {\"2\": 1}}}");
    EXPECT_EQ(device.getWiFiGuestProfileEnabled.At(1).value, 0);
    EXPECT_EQ(device.getWiFiGuestProfileEnabled.At(2).value, 1);
}

TEST(BoardDocument, ActionsCanBeMadeToFail) {
    const Device device = Overlaid("{\"sys\": {\"cellularDataConnect\": {\"error\": 3}}}");
    EXPECT_EQ(device.cellularDataConnect.error, 3);
}

TEST(BoardDocument, AFaultWithoutAnAnswerHappensBeforeThatOfTheSource) {
    const Device device = Overlaid(
        R"({"sys": {"getGPSStatus": {"error": null, "delay": 1, "healed": null},
                    "getWiFiGuestProfileEnabled": {"error": 5, "times": 1, "healed": null},
                    "getSIMStatus": {"error": 5, "times": 1, "healed": 6}},
            "webui": {"uriData": {"error": 5, "times": 1, "healed": null}}})");
    const Device source = Overlaid("{}");
    EXPECT_TRUE(device.getGPSStatus.named);
    EXPECT_EQ(device.getGPSStatus.value, source.getGPSStatus.value);
    EXPECT_NE(device.getGPSStatus.fault, nullptr);
    EXPECT_NE(device.getWiFiGuestProfileEnabled.fault, nullptr);
    EXPECT_TRUE(device.getWiFiGuestProfileEnabled.At(1).named);
    EXPECT_EQ(device.getSIMStatus.value, 6);
    EXPECT_NE(device.getSIMStatus.fault, nullptr);
    EXPECT_NE(device.uriData.fault, nullptr);
    EXPECT_EQ(device.uriData.value.size(), source.uriData.value.size());
    EXPECT_EQ(device.faults.size(), 4U);
}

TEST(BoardDocument, OnlySimulatedDevicesChangeByThemselves) {
    EXPECT_EQ(ProblemOf("{\"sys\": {\n\"cellularDataConnect\": {\"takes\": 2}}}"),
              "device.json:2: sys.cellularDataConnect: only a simulated device changes by itself");
}

TEST(AbsentDevice, EachCallAnswersAndOnlyTheCardTellsThatItIsAbsent) {
    const Device device = binding::AbsentDevice();
#define DEVICE_EXPECT_NAMED(Type, name, Meaning, field, description) \
    EXPECT_TRUE(device.name.named) << #name;                         \
    EXPECT_EQ(device.name.error, #name == std::string("getSDCardInfo") ? 2001 : 0) << #name;
    SYSINT_QUERIES(DEVICE_EXPECT_NAMED)
#undef DEVICE_EXPECT_NAMED
    EXPECT_EQ(device.getBatteryStatus.value.detection, SYS_BATTERY_NOT_PRESENT);
    EXPECT_EQ(device.getWebUICarrierEnabled.value, 1);
}

}  // namespace
