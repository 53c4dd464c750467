// What the device document may hold, and the error messages for everything else.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#include "platform/fixed_text.h"
#include "tests/unit/bindings/document/document_reading.h"

namespace {

using binding::Device;

TEST(DeviceDocument, MayBeEmpty) {
    EXPECT_EQ(Complaint("{}"), "");
    EXPECT_EQ(Complaint("{\"sys\": {}, \"webui\": {}, \"msgbus\": {}}"), "");
    EXPECT_FALSE(Read("{}").getSIMStatus.named);
}

TEST(DeviceDocument, ShippedOneAnswersEveryQuery) {
    std::ifstream file(KESTAL_SHIPPED_DEVICES "/default.json");
    const Device device = Read({std::istreambuf_iterator<char>(file), {}});
#define EXPECT_ANSWER(Type, name, Meaning, field, description) \
    EXPECT_TRUE(device.name.named&& device.name.error == 0) << #name;
    SYSINT_QUERIES(EXPECT_ANSWER)
#undef EXPECT_ANSWER
    EXPECT_TRUE(device.getSIMCarrierGID.At(1).named);
    EXPECT_TRUE(device.getModemMnsInfo.named);
    EXPECT_TRUE(device.getCellular5GBand.named);
    EXPECT_EQ(device.getConnectedDeviceList.value.size(), 5U);
    EXPECT_TRUE(device.getWiFiGuestProfileEnabled.At(SYS_WIFI_GUEST_2_4_GHZ).named);
    EXPECT_TRUE(device.getWiFiGuestProfileEnabled.At(SYS_WIFI_GUEST_5_GHZ).named);
#define EXPECT_ANSWERS(name, Subject, field, description) \
    EXPECT_TRUE(device.name.named&& device.name.error == 0) << #name;
    SYSINT_NAMED_QUERIES(EXPECT_ANSWERS)
#undef EXPECT_ANSWERS
    EXPECT_TRUE(device.commonFeatures.named);
    EXPECT_TRUE(device.appFeatures.named);
    EXPECT_TRUE(device.commonConfigurations.named);
    EXPECT_TRUE(device.appConfigurations.named);
    EXPECT_TRUE(device.uriData.named);
    EXPECT_TRUE(device.externalUriData.named);
    EXPECT_STREQ(device.i18nSettings.value.language, "en_US");
    EXPECT_EQ(device.softwareUpdateStatus.value.status, 5);
    EXPECT_TRUE(device.softwareInstallationDuration.named);
    EXPECT_STRNE(device.softwareUpdateCustomMsgs.value.at("en_US").value.readyToInstall, "");
    EXPECT_TRUE(device.channels.at("zelt.ans.notifications").named);
}

TEST(DeviceDocument, SyntaxErrorsNameLineAndColumn) {
    EXPECT_EQ(Complaint("{\n\"sys\": {,}\n}").find("device.json:2:9: syntax error"), 0U);
    // Newer releases of the library call this an empty input.
    EXPECT_EQ(Complaint("").find("device.json:1:1: "), 0U);
    EXPECT_EQ(Complaint("{\n\"sys\": {").find("device.json:2:8: syntax error"), 0U);
    EXPECT_EQ(Complaint("{}\n{}").find("device.json:2:1: syntax error"), 0U);
    EXPECT_EQ(Complaint("{\"a\": \"\xff\"}").find("device.json:1:8: syntax error"), 0U);
    EXPECT_EQ(Complaint("{\n\"msgbus\": {\"a\": 1e999}}").find("device.json:2:"), 0U);
}

TEST(DeviceDocument, DuplicateNamesAreErrors) {
    EXPECT_EQ(Complaint("{\n\"sys\": {\n\"getSIMStatus\": 1,\n\"getSIMStatus\": 1\n}\n}"),
              "device.json:4: sys.getSIMStatus: expected once, found twice");
    EXPECT_EQ(Complaint("{\"sys\": {},\n\"sys\": {}}"),
              "device.json:2: sys: expected once, found twice");
    EXPECT_EQ(Complaint("{\"msgbus\": {\"a\": [1, {\"b\": 1,\n\"b\": 1}]}}"),
              "device.json:2: msgbus.a[1].b: expected once, found twice");
    EXPECT_EQ(Complaint(R"({"msgbus": {"a": {"error": 1}, "b": {"error": 1}}})"), "");
}

TEST(DeviceDocument, HasThreeGroups) {
    EXPECT_EQ(Complaint("[]"), "device.json:1: expected an object, found a list");
    EXPECT_EQ(Complaint("\n7"), "device.json:2: expected an object, found 7");
    EXPECT_EQ(Complaint("{\n\n\"system\": {}}"),
              "device.json:3: system: expected one of title, sys, webui, msgbus, found an unknown "
              "name");
    EXPECT_EQ(Complaint("{\"sys\": []}"), "device.json:1: sys: expected an object, found a list");
    EXPECT_EQ(Complaint("{\"webui\": 1}"), "device.json:1: webui: expected an object, found 1");
    EXPECT_EQ(Complaint("{\"msgbus\": null}"),
              "device.json:1: msgbus: expected an object, found null");
}

TEST(DeviceDocument, MayHaveATitle) {
    EXPECT_EQ(Complaint(R"({"title": "Mine", "sys": {}})"), "");
    EXPECT_EQ(Complaint(R"({"title": 7})"), "device.json:1: title: expected a text, found 7");
}

TEST(DeviceDocument, Has64LevelsAtMost) {
    const auto nested = [](std::size_t levels) {
        return "{\n\"msgbus\": {\"a\":\n" + std::string(levels - 2, '[') + "7" +
               std::string(levels - 2, ']') + "}}";
    };
    const std::string complaint = "device.json:3: expected at most 64 levels, found more";
    EXPECT_EQ(Complaint(nested(64)),
              "device.json:3: msgbus.a[0]: expected an object, found a list");
    EXPECT_EQ(Complaint(nested(65)), complaint);
    EXPECT_EQ(Complaint(nested(100'000)), complaint);
}

TEST(DeviceDocument, UnknownCallsAreErrors) {
    EXPECT_EQ(
        SysComplaint("getSimStatus", "7"),
        "device.json:3: sys.getSimStatus: expected the name of a call, found an unknown name");
    EXPECT_EQ(WebuiComplaint("features", "{}"),
              "device.json:3: webui.features: expected one of commonFeatures, "
              "commonConfigurations, appFeatures, appConfigurations, uriData, externalUriData, "
              "i18nSettings, softwareUpdateStatus, softwareInstallationDuration, "
              "softwareUpdateCustomMsgs, found an unknown name");
}

TEST(DeviceDocument, IntegersAre32BitsWide) {
    EXPECT_EQ(Read("{\"sys\": {\"getSIMStatus\": -2147483648}}").getSIMStatus.value, INT32_MIN);
    EXPECT_EQ(Read("{\"sys\": {\"getSIMStatus\": 2147483647}}").getSIMStatus.value, INT32_MAX);
    const std::string expected =
        "device.json:3: sys.getSIMStatus: expected not_found, locked, restricted, error, failure, "
        "puk_locked, pin_locked, ready or a 32-bit integer or {\"error\": N}, found ";
    EXPECT_EQ(SysComplaint("getSIMStatus", "2147483648"), expected + "2147483648");
    EXPECT_EQ(SysComplaint("getSIMStatus", "-2147483649"), expected + "-2147483649");
    EXPECT_EQ(SysComplaint("getSIMStatus", "7.0"), expected + "7.0");
    EXPECT_EQ(SysComplaint("getSIMStatus", "\"7\""), expected + "'7'");
    EXPECT_EQ(SysComplaint("getSIMStatus", "true"), expected + "true");
    EXPECT_EQ(SysComplaint("getSIMStatus", "null"), expected + "null");
    EXPECT_EQ(SysComplaint("getSIMStatus", "[7]"), expected + "a list");
    EXPECT_EQ(SysComplaint("getSIMStatus", "{}"), expected + "an object");
}

TEST(DeviceDocument, UnsignedNumbersAreNotNegative) {
    EXPECT_EQ(Read("{\"sys\": {\"getWiFiMaxClients\": 4294967295}}").getWiFiMaxClients.value,
              UINT32_MAX);
    EXPECT_EQ(SysComplaint("getWiFiMaxClients", "-1"),
              "device.json:3: sys.getWiFiMaxClients: expected an unsigned 32-bit integer or "
              "{\"error\": N}, found -1");
    const Device device =
        Read("{\"sys\": {\"getSDCardInfo\": {\"totalCapacity\": 18446744073709551615}}}");
    EXPECT_EQ(device.getSDCardInfo.value.totalCapacity, UINT64_MAX);
    EXPECT_EQ(device.getSDCardInfo.value.freeSpace, 0U);
    EXPECT_EQ(SysComplaint("getSDCardInfo", "{\n\"freeSpace\": 18446744073709551616}"),
              "device.json:4: sys.getSDCardInfo.freeSpace: expected an unsigned 64-bit integer, "
              "found 1.8446744073709552e+19");
}

TEST(DeviceDocument, AnyCallMayFailInstead) {
    const Device device = Read(R"({"sys": {"getSIMStatus": {"error": -7},
        "getSDCardInfo": {"error": 2001}, "getConnectedDeviceList": {"error": 7}},
        "webui": {"commonFeatures": {"error": 983043}}})");
    EXPECT_EQ(device.getSIMStatus.error, -7);
    EXPECT_EQ(device.getSDCardInfo.error, SYS_ERROR_NO_SD_CARD);
    EXPECT_EQ(device.getConnectedDeviceList.error, SYS_ERROR_BUFFER_NEEDED);
    EXPECT_EQ(device.commonFeatures.error, WEBUI_BUFFER_NEEDED);
}

TEST(DeviceDocument, FailuresHaveNoCodeOfSuccess) {
    const std::string expected =
        "sys.getSIMStatus.error: expected a 32-bit integer other than 0 "
        "and 983040, found ";
    EXPECT_EQ(SysComplaint("getSIMStatus", "{\"error\": 0}"), "device.json:3: " + expected + "0");
    EXPECT_EQ(SysComplaint("getSIMStatus", "{\"error\": 983040}"),
              "device.json:3: " + expected + "983040");
    EXPECT_EQ(SysComplaint("getSIMStatus", "{\n\"error\": \"x\"}"),
              "device.json:4: sys.getSIMStatus.error: expected error_buffer_needed, "
              "error_no_sd_card, not_answered, no_device, not_changed, binding_failed, "
              "bus_not_joined, source_lost, nothing_to_connect, interrupted or a 32-bit integer "
              "other than 0 and 983040, found 'x'");
    EXPECT_EQ(SysComplaint("getBatteryStatus", "{\"error\": 1, \"chargePercent\": 2}"),
              "device.json:3: sys.getBatteryStatus.chargePercent: expected one of error, times, "
              "probability, seed, delay, hang, since, healed, found an unknown name");
}

TEST(DeviceDocument, ActionsCanOnlyFail) {
    const Device device = Read(R"({"sys": {"sdkInitialize": {"error": 1},
        "cellularDataConnect": {"error": 2}, "cellularDataDisconnect": {"error": 3}}})");
    EXPECT_EQ(device.sdkInitialize.error, 1);
    EXPECT_EQ(device.cellularDataConnect.error, 2);
    EXPECT_EQ(device.cellularDataDisconnect.error, 3);
    EXPECT_EQ(SysComplaint("cellularDataConnect", "0"),
              "device.json:3: sys.cellularDataConnect: expected {\"takes\": seconds} or "
              "{\"error\": N}, found 0");
    EXPECT_EQ(SysComplaint("sdkInitialize", "{}"),
              "device.json:3: sys.sdkInitialize: expected {\"error\": N}, found an object");
}

TEST(DeviceDocument, RecordsHaveNamedFields) {
    const auto stats = Read(R"({"sys": {"getCellularServiceStats": {"technology": 17, "roaming": 3,
        "signalBars": 4, "sinr": -5, "pci": 211, "snr": 6, "networkName": "Orvane",
        "networkId": "31048", "femtoCell": 1, "fiveGType": 2}}})")
                           .getCellularServiceStats.value;
    EXPECT_EQ(stats.technology, SYS_TECHNOLOGY_5G);
    EXPECT_EQ(stats.roaming, 3);
    EXPECT_EQ(stats.signalBars, 4);
    EXPECT_EQ(stats.sinr, -5);
    EXPECT_EQ(stats.pci, 211);
    EXPECT_EQ(stats.snr, 6);
    EXPECT_STREQ(stats.networkName, "Orvane");
    EXPECT_STREQ(stats.networkId, "31048");
    EXPECT_EQ(stats.femtoCell, 1);
    EXPECT_EQ(stats.fiveGType, 2);

    const auto battery = Read(R"({"sys": {"getBatteryStatus": {"chargePercent": 84,
        "chargingState": 1, "detection": 2, "chargingSource": 3}}})")
                             .getBatteryStatus.value;
    EXPECT_EQ(battery.chargePercent, 84);
    EXPECT_EQ(battery.chargingState, 1);
    EXPECT_EQ(battery.detection, 2);
    EXPECT_EQ(battery.chargingSource, 3);

    EXPECT_EQ(Read(R"({"sys": {"getSambaShareInfo": {"cardInUse": 9}}})")
                  .getSambaShareInfo.value.cardInUse,
              9U);
}

TEST(DeviceDocument, RecordsHaveNoOtherFields) {
    EXPECT_EQ(SysComplaint("getBatteryStatus", "{\n\n\"reserved16\": 1}"),
              "device.json:5: sys.getBatteryStatus.reserved16: expected one of chargePercent, "
              "chargingState, detection, chargingSource, found an unknown name");
    EXPECT_EQ(SysComplaint("getBatteryStatus", "{\"chargePercent\": \"x\"}"),
              "device.json:3: sys.getBatteryStatus.chargePercent: expected a 32-bit integer, found "
              "a text");
    EXPECT_EQ(SysComplaint("getBatteryStatus", "84"),
              "device.json:3: sys.getBatteryStatus: expected an object or {\"error\": N}, found "
              "84");
}

TEST(DeviceDocument, TextsFitTheirFieldsWithTheTerminator) {
    const auto withName = [](const std::string& name) {
        return "{\"networkName\": \"" + name + "\"}";
    };
    EXPECT_EQ(SysComplaint("getCellularServiceStats", withName(std::string(64, 'x'))), "");
    const std::string expected =
        "device.json:3: sys.getCellularServiceStats.networkName: expected a text of at most 64 "
        "bytes, found ";
    EXPECT_EQ(SysComplaint("getCellularServiceStats", withName(std::string(65, 'x'))),
              expected + "one of 65 bytes");
    EXPECT_EQ(SysComplaint("getCellularServiceStats", withName("a\\u0000b")),
              expected + "one with a NUL in it");
    EXPECT_EQ(SysComplaint("getCellularServiceStats", "{\"networkName\": 7}"), expected + "7");
}

TEST(DeviceDocument, TheDeviceListIsAList) {
    const Device device = Read(
        R"({"sys": {"getConnectedDeviceList": [{"connectionKind": 3}, {}, {"connectionKind": 9}]}})");
    const auto& devices = device.getConnectedDeviceList.value;
    ASSERT_EQ(devices.size(), 3U);
    EXPECT_EQ(devices[0].connectionKind, 3);
    EXPECT_EQ(devices[1].connectionKind, 0);
    EXPECT_EQ(devices[2].connectionKind, 9);
    EXPECT_EQ(
        SysComplaint("getConnectedDeviceList", "[\n{},\n{\n\"connectionKind\": []}]"),
        "device.json:6: sys.getConnectedDeviceList[1].connectionKind: expected wifi, wired_a, "
        "wired_b, guest_wifi or a 32-bit integer, found a list");
    EXPECT_EQ(SysComplaint("getConnectedDeviceList", "[\n{},\n5\n]"),
              "device.json:5: sys.getConnectedDeviceList[1]: expected an object, found 5");
    EXPECT_EQ(SysComplaint("getConnectedDeviceList", "{}"),
              "device.json:3: sys.getConnectedDeviceList: expected a list or {\"error\": N}, found "
              "an object");
}

TEST(DeviceDocument, GroupIdentifiersAreForEveryIndexOrPerIndex) {
    const auto every = Read(R"({"sys": {"getSIMCarrierGID": [2, 17]}})").getSIMCarrierGID;
    EXPECT_EQ(every.At(0).value.length, 2);
    EXPECT_EQ(every.At(255).value.bytes[1], 17);
    const auto some =
        Read(R"({"sys": {"getSIMCarrierGID": {"1": [], "255": {"error": 4}}}})").getSIMCarrierGID;
    EXPECT_TRUE(some.At(1).named);
    EXPECT_EQ(some.At(1).value.length, 0);
    EXPECT_EQ(some.At(255).error, 4);
    EXPECT_FALSE(some.At(2).named);
    EXPECT_EQ(Read(R"({"sys": {"getSIMCarrierGID": {"error": 4}}})").getSIMCarrierGID.At(9).error,
              4);
}

TEST(DeviceDocument, GroupIdentifiersAreBytes) {
    EXPECT_EQ(SysComplaint("getSIMCarrierGID", "[2,\n256]"),
              "device.json:4: sys.getSIMCarrierGID[1]: expected a number from 0 to 255, found 256");
    EXPECT_EQ(SysComplaint("getSIMCarrierGID", "7"),
              "device.json:3: sys.getSIMCarrierGID: expected a list of at most 255 bytes or "
              "{\"error\": N}, found 7");
    std::string tooMany = "[0";
    for (int count = 1; count < 256; ++count) {
        tooMany += ", 0";
    }
    EXPECT_EQ(SysComplaint("getSIMCarrierGID", tooMany + "]"),
              "device.json:3: sys.getSIMCarrierGID: expected a list of at most 255 bytes or "
              "{\"error\": N}, found one of 256");
    for (const std::string index : {"256", "-1", "01", "x", "", "1x"}) {
        EXPECT_EQ(SysComplaint("getSIMCarrierGID", "{\"" + index + "\": [1]}"),
                  "device.json:3: sys.getSIMCarrierGID." + index +
                      ": expected an index from 0 to 255, found an unknown name");
    }
}

TEST(DeviceDocument, GuestProfilesHaveOneValueOrAValueEach) {
    const auto single =
        Read(R"({"sys": {"getWiFiGuestProfileEnabled": {"1": {"error": 5}, "2": 1}}})")
            .getWiFiGuestProfileEnabled;
    EXPECT_EQ(single.At(1).error, 5);
    EXPECT_EQ(single.At(2).value, 1);
    const auto together =
        Read(R"({"sys": {"getWiFiGuestProfileEnabled": 1}})").getWiFiGuestProfileEnabled;
    EXPECT_EQ(together.At(1).value, 1);
    EXPECT_EQ(together.At(2).value, 1);
    EXPECT_EQ(SysComplaint("getWiFiGuestProfileEnabled", "{\"1\": 0,\n\"3\": 0}"),
              "device.json:4: sys.getWiFiGuestProfileEnabled.3: expected an index from 1 to 2, "
              "found an unknown name");
    EXPECT_EQ(SysComplaint("getWiFiGuestProfileEnabled", "{\"2\": \"on\"}"),
              "device.json:3: sys.getWiFiGuestProfileEnabled.2: expected a 32-bit integer or "
              "{\"error\": N}, found a text");
}

TEST(DeviceDocument, BytesStandForATextThatIsNotUtf8OrNotTerminated) {
    const auto pin = Read(R"({"sys": {"getGpioPin1CustomSettings": {
        "name": {"bytes": "4Fff00"}, "lowState": {"bytes": ""}, "highState": {"bytes": ")" +
                          std::string(128, 'a') + R"("}}}})")
                         .getGpioPin1CustomSettings.value;
    EXPECT_EQ(FixedText(pin.name), "O\xFF");
    EXPECT_EQ(FixedText(pin.lowState), "");
    EXPECT_EQ(FixedText(pin.highState), std::string(64, '\xAA'));
    EXPECT_EQ(SysComplaint("getSubscriberInfo",
                           "{\"identity\": {\"bytes\": \"" + std::string(66, '0') + "\"}}"),
              "device.json:3: sys.getSubscriberInfo.identity.bytes: expected at most 32 bytes, "
              "found 33");
    EXPECT_EQ(SysComplaint("getSubscriberInfo", R"({"identity": {"bytes": "0g"}})"),
              "device.json:3: sys.getSubscriberInfo.identity.bytes: expected a text of pairs of "
              "hexadecimal digits, found other characters");
    EXPECT_EQ(SysComplaint("getSubscriberInfo", R"({"identity": {"bytes": "00", "text": ""}})"),
              "device.json:3: sys.getSubscriberInfo.identity.text: expected one of bytes, found "
              "an unknown name");
    EXPECT_EQ(SysComplaint("getSubscriberInfo", R"({"identity": {"digits": "00"}})"),
              "device.json:3: sys.getSubscriberInfo.identity: expected a text of at most 31 "
              "bytes, found an object");
    EXPECT_EQ(WebuiComplaint("externalUriData", R"({"a": {"bytes": "ff"}})"), "");
}

TEST(DeviceDocument, GpioPinsHaveThreeTextsOf63Bytes) {
    for (const std::string call : {"getGpioPin1CustomSettings", "getGpioPin2CustomSettings"}) {
        for (const std::string field : {"name", "lowState", "highState"}) {
            const auto with = [&field](std::size_t size) {
                return "{\"" + field + "\": \"" + std::string(size, 'x') + "\"}";
            };
            EXPECT_EQ(SysComplaint(call, with(63)), "");
            EXPECT_EQ(SysComplaint(call, with(64)),
                      "device.json:3: sys." + call + "." + field +
                          ": expected a text of at most 63 bytes, found one of 64 bytes");
            EXPECT_EQ(SysComplaint(call, "{\"" + field + "\": 1}"),
                      "device.json:3: sys." + call + "." + field +
                          ": expected a text of at most 63 bytes, found 1");
        }
        EXPECT_EQ(
            SysComplaint(call, "\"Door\""),
            "device.json:3: sys." + call + ": expected an object or {\"error\": N}, found a text");
        EXPECT_EQ(SysComplaint(call, "{\n\"state\": \"Open\"}"),
                  "device.json:4: sys." + call +
                      ".state: expected one of name, lowState, highState, found an unknown name");
    }
}

TEST(DeviceDocument, NrBandsAreTwo) {
    const auto bands =
        Read(R"({"sys": {"getCellular5GBand": {"band": 77, "second": 41}}})").getCellular5GBand;
    EXPECT_EQ(bands.value.band, 77);
    EXPECT_EQ(bands.value.second, 41);
    EXPECT_EQ(SysComplaint("getCellular5GBand", "77"),
              "device.json:3: sys.getCellular5GBand: expected an object or {\"error\": N}, found "
              "77");
}

TEST(DeviceDocument, FeaturesAreBytesByName) {
    const auto& features =
        Read(R"({"webui": {"commonFeatures": {"Zeta": 255, "Alpha": 0}}})").commonFeatures.value;
    ASSERT_EQ(features.size(), 2U);
    EXPECT_STREQ(features[0].name, "Zeta") << "the order is that of the document";
    EXPECT_EQ(features[0].value, 255);
    EXPECT_STREQ(features[1].name, "Alpha");
    EXPECT_EQ(WebuiComplaint("commonFeatures", "{\"A\": 256}"),
              "device.json:3: webui.commonFeatures.A: expected a number from 0 to 255, found 256");
    const std::string longName(50, 'x');
    EXPECT_EQ(WebuiComplaint("commonFeatures", "{\"" + longName + "\": 1}"),
              "device.json:3: webui.commonFeatures." + longName +
                  ": expected a name of at most 49 bytes, found one of 50");
    EXPECT_EQ(WebuiComplaint("commonFeatures", "{\"" + std::string(49, 'x') + "\": 1}"), "");
    EXPECT_EQ(WebuiComplaint("commonFeatures", "[]"),
              "device.json:3: webui.commonFeatures: expected an object or {\"error\": N}, found a "
              "list");
}

TEST(DeviceDocument, ConfigurationsAreTextsByName) {
    const auto& values = Read(R"({"webui": {"commonConfigurations": {"A": "1", "B": ""}}})")
                             .commonConfigurations.value;
    ASSERT_EQ(values.size(), 2U);
    EXPECT_STREQ(values[0].value, "1");
    EXPECT_STREQ(values[1].value, "");
    EXPECT_EQ(WebuiComplaint("commonConfigurations", "{\"A\": 1}"),
              "device.json:3: webui.commonConfigurations.A: expected a text of at most 49 bytes, "
              "found 1");
}

TEST(DeviceDocument, ApplicationsHaveTheirOwn) {
    const Device device = Read(R"({"webui": {
        "appFeatures": {"status": {"A": 1}, "sms": {"error": 983041}},
        "appConfigurations": {"status": {"B": "x"}}}})");
    EXPECT_EQ(device.appFeatures.value.at("status").value.at(0).value, 1);
    EXPECT_EQ(device.appFeatures.value.at("sms").error, 983041);
    EXPECT_STREQ(device.appConfigurations.value.at("status").value.at(0).value, "x");
    EXPECT_EQ(WebuiComplaint("appFeatures", "{\"status\": {\n\"A\": -1}}"),
              "device.json:4: webui.appFeatures.status.A: expected a number from 0 to 255, found "
              "-1");
    EXPECT_EQ(WebuiComplaint("appFeatures", "{\"status\": 1}"),
              "device.json:3: webui.appFeatures.status: expected an object or {\"error\": N}, "
              "found 1");
}

TEST(DeviceDocument, PagesHaveAddressAndTitle) {
    const Device device = Read(R"({"webui": {
        "uriData": {"sms": {"address": "/messages", "titleId": "sms_title"}, "x": {"error": 5}},
        "externalUriData": {"help": "https://example.invalid/"},
        "i18nSettings": {"language": "de_DE"}}})");
    EXPECT_STREQ(device.uriData.value.at("sms").value.address, "/messages");
    EXPECT_STREQ(device.uriData.value.at("sms").value.titleId, "sms_title");
    EXPECT_EQ(device.uriData.value.at("x").error, 5);
    EXPECT_STREQ(device.externalUriData.value.at("help").value.address, "https://example.invalid/");
    EXPECT_STREQ(device.i18nSettings.value.language, "de_DE");
    EXPECT_EQ(WebuiComplaint("uriData", "{\"sms\": {\n\"title\": \"x\"}}"),
              "device.json:4: webui.uriData.sms.title: expected one of address, titleId, found an "
              "unknown name");
    EXPECT_EQ(WebuiComplaint("externalUriData", "{\"help\": {}}"),
              "device.json:3: webui.externalUriData.help: expected a text of at most 383 bytes or "
              "{\"error\": N}, found an object");
    EXPECT_EQ(WebuiComplaint("i18nSettings", "{\"language\": \"" + std::string(32, 'x') + "\"}"),
              "device.json:3: webui.i18nSettings.language: expected a text of at most 31 bytes, "
              "found one of 32 bytes");
}

TEST(DeviceDocument, SoftwareUpdatesHaveStatusDurationAndTexts) {
    const Device device = Read(R"({"webui": {
        "softwareUpdateStatus": {"status": 9, "userInitiated": 1, "value": -2, "version": "2.1"},
        "softwareInstallationDuration": 10,
        "softwareUpdateCustomMsgs": {
            "de_DE": {"description": "a", "download": "b", "readyToInstall": "c",
                      "installSuccess": "d", "installFail": "e"},
            "fr_FR": {"error": 5}}}})");
    EXPECT_EQ(device.softwareUpdateStatus.value.status, 9);
    EXPECT_EQ(device.softwareUpdateStatus.value.userInitiated, 1);
    EXPECT_EQ(device.softwareUpdateStatus.value.value, -2);
    EXPECT_STREQ(device.softwareUpdateStatus.value.version, "2.1");
    EXPECT_EQ(device.softwareInstallationDuration.value, 10);
    const auto& messages = device.softwareUpdateCustomMsgs.value.at("de_DE").value;
    EXPECT_STREQ(messages.description, "a");
    EXPECT_STREQ(messages.download, "b");
    EXPECT_STREQ(messages.readyToInstall, "c");
    EXPECT_STREQ(messages.installSuccess, "d");
    EXPECT_STREQ(messages.installFail, "e");
    EXPECT_EQ(device.softwareUpdateCustomMsgs.value.at("fr_FR").error, 5);
}

TEST(DeviceDocument, SoftwareUpdatesHaveNothingElse) {
    EXPECT_EQ(WebuiComplaint("softwareUpdateStatus", "{\n\"state\": 5}"),
              "device.json:4: webui.softwareUpdateStatus.state: expected one of status, "
              "userInitiated, value, version, found an unknown name");
    EXPECT_EQ(
        WebuiComplaint("softwareUpdateStatus", "{\"version\": \"" + std::string(256, 'x') + "\"}"),
        "device.json:3: webui.softwareUpdateStatus.version: expected a text of at most 255 bytes, "
        "found one of 256 bytes");
    EXPECT_EQ(WebuiComplaint("softwareInstallationDuration", "\"10\""),
              "device.json:3: webui.softwareInstallationDuration: expected a 32-bit integer or "
              "{\"error\": N}, found a text");
    EXPECT_EQ(
        WebuiComplaint("softwareUpdateCustomMsgs", "{\"de_DE\": {\n\"ready\": \"\"}}"),
        "device.json:4: webui.softwareUpdateCustomMsgs.de_DE.ready: expected one of "
        "description, download, readyToInstall, installSuccess, installFail, found an unknown "
        "name");
    const auto withFailText = [](std::size_t size) {
        return "{\"de_DE\": {\"installFail\": \"" + std::string(size, 'x') + "\"}}";
    };
    EXPECT_EQ(WebuiComplaint("softwareUpdateCustomMsgs", withFailText(1023)), "");
    EXPECT_EQ(WebuiComplaint("softwareUpdateCustomMsgs", withFailText(1024)),
              "device.json:3: webui.softwareUpdateCustomMsgs.de_DE.installFail: expected a text of "
              "at most 1023 bytes, found one of 1024 bytes");
    EXPECT_EQ(WebuiComplaint("softwareUpdateCustomMsgs", "{\"de_DE\": \"x\"}"),
              "device.json:3: webui.softwareUpdateCustomMsgs.de_DE: expected an object or "
              "{\"error\": N}, found a text");
}

TEST(DeviceDocument, ChannelsHoldNotificationsOrBytes) {
    EXPECT_EQ(ChannelComplaint("[]"), "");
    EXPECT_EQ(ChannelComplaint("{\"error\": 7}"), "");
    EXPECT_EQ(ChannelComplaint("{\"bytes\": \"00fF\"}"), "");
    const std::string expected =
        "device.json:3: msgbus.a: expected a list of notifications, {\"bytes\": \"hexadecimal "
        "digits\"} or {\"error\": N}, found ";
    EXPECT_EQ(ChannelComplaint("\"00\""), expected + "a text");
    EXPECT_EQ(ChannelComplaint("null"), expected + "null");
    EXPECT_EQ(ChannelComplaint("{}"), expected + "an object");
    EXPECT_EQ(ChannelComplaint("{\"bytes\": \"00\",\n\"size\": 1}"),
              "device.json:4: msgbus.a.size: expected one of bytes, found an unknown name");
    EXPECT_EQ(ChannelComplaint("{\"error\": 7, \"bytes\": \"\"}"),
              "device.json:3: msgbus.a.bytes: expected one of error, times, probability, seed, "
              "delay, hang, since, healed, found an unknown name");
    EXPECT_EQ(ChannelComplaint("{\"error\": 0}"),
              "device.json:3: msgbus.a.error: expected a 32-bit integer other than 0 and 983040, "
              "found 0");
}

TEST(DeviceDocument, BytesArePairsOfDigits) {
    const std::string expected =
        "device.json:3: msgbus.a.bytes: expected a text of pairs of hexadecimal digits, found ";
    EXPECT_EQ(ChannelComplaint("{\"bytes\": 0}"), expected + "0");
    EXPECT_EQ(ChannelComplaint("{\"bytes\": \"012\"}"), expected + "3 characters");
    for (const std::string pair : {"0x", "g0", "0 ", " 0", "-1", "+1"}) {
        EXPECT_EQ(ChannelComplaint("{\"bytes\": \"00" + pair + "\"}"),
                  expected + "other characters");
    }
}

TEST(DeviceDocument, NotificationsHaveNamedFields) {
    EXPECT_EQ(ChannelComplaint("[{},\n7]"),
              "device.json:4: msgbus.a[1]: expected an object, found 7");
    EXPECT_EQ(ChannelComplaint("[{\n\"flags\": 1}]"),
              "device.json:4: msgbus.a[0].flags: expected one of id, category, severity, labelId, "
              "titleId, textId, active, found an unknown name");
    EXPECT_EQ(ChannelComplaint("[{\"active\": 1}]"),
              "device.json:3: msgbus.a[0].active: expected true or false, found 1");
    for (const auto& [severity, found] :
         {std::pair("\"severe\"", "'severe'"), std::pair("-1", "-1"), std::pair("true", "true"),
          std::pair("4294967296", "4294967296")}) {
        EXPECT_EQ(ChannelComplaint("[{\"severity\": " + std::string(severity) + "}]"),
                  "device.json:3: msgbus.a[0].severity: expected info, warning, alert, critical or "
                  "an unsigned 32-bit integer, found " +
                      std::string(found));
    }
}

TEST(DeviceDocument, TextsOfNotificationsFitTheirFields) {
    for (const auto& [name, room] : {std::pair<std::string, std::size_t>("category", 19),
                                     {"id", 29},
                                     {"labelId", 49},
                                     {"titleId", 49},
                                     {"textId", 285}}) {
        const auto with = [field = name](std::size_t size) {
            return "[{\"" + field + "\": \"" + std::string(size, 'x') + "\"}]";
        };
        EXPECT_EQ(ChannelComplaint(with(room)), "");
        EXPECT_EQ(ChannelComplaint(with(room + 1)),
                  "device.json:3: msgbus.a[0]." + name + ": expected a text of at most " +
                      std::to_string(room) + " bytes, found one of " + std::to_string(room + 1) +
                      " bytes");
    }
}

}  // namespace
