// The owner's document stands in place of what the sources tell, and holds the settings.
#include "bindings/linux/board_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "bindings/linux/absent_device.h"
#include "bindings/linux/source.h"

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

TEST(BoardDocument, WhatIsWrongIsToldWithItsLine) {
    EXPECT_EQ(ProblemOf("{\n\"linux\": {\"apn\": 1}}"),
              "device.json:2: linux.apn: expected a text, found 1");
    EXPECT_EQ(ProblemOf("{\n\"sys\": {\"getGPSStatus\": \"x\"}}"),
              "device.json:2: sys.getGPSStatus: expected a 32-bit integer or {\"error\": N}, found "
              "a text");
    for (const std::string name : {"checkSeconds", "silenceSeconds", "clientNotificationSeconds"}) {
        EXPECT_EQ(ProblemOf("{\"linux\": {\"" + name + "\": 0}}"),
                  "device.json:1: linux." + name +
                      ": expected a number of seconds from 1 to 86400, found 0");
    }
    EXPECT_THAT(ProblemOf("{\"linux\": {\"wify\": []}}"), ::testing::HasSubstr("wify"));
    EXPECT_THAT(ProblemOf("[]"), ::testing::HasSubstr("expected an object"));
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
    EXPECT_EQ(Overlaid("{\"sys\": {\"cellularDataConnect\": {\"error\": 3}}}").cellularDataConnect,
              3);
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
