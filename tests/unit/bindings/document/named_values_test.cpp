// Names in place of numbers: values of enumerations and codes of failures.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "bindings/device/codes.h"
#include "bindings/document/value_names.h"
#include "tests/unit/bindings/document/document_reading.h"

namespace {

using binding::Device;
using binding::KeyPath;
using binding::NamesAt;
using binding::NumberAt;

TEST(NamedValues, AreReadInAnswersAndTheirFields) {
    const Device device = Read(R"({"sys": {
        "getCellularDataConnectionStatus": "connected",
        "getCellularServiceStatus": "searching",
        "getCellularDataAccountStatus": "out_of_credit",
        "getSIMStatus": "puk_locked",
        "getCellular5GMode": "standalone",
        "getGPSStatus": "got_fix",
        "getCellularServiceStats": {"technology": "5g", "roaming": "flash", "fiveGType": "other"},
        "getCellularDataConnectionStats": {"trafficStatus": "both"},
        "getAllSimSlotsInfo": {"slots": [{"simStatus": 7}, {"simStatus": "error",
            "dataConnectionStatus": "unactivated", "serviceStatus": "available"}]},
        "getConnectedDeviceList": [{"connectionKind": "wired_b"}],
        "getBatteryStatus": {"detection": "present", "chargingSource": "usb"}}})");
    EXPECT_EQ(device.getCellularDataConnectionStatus.value, SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(device.getCellularServiceStatus.value, SYS_SERVICE_SEARCHING);
    EXPECT_EQ(device.getCellularDataAccountStatus.value, SYS_ACCOUNT_OUT_OF_CREDIT);
    EXPECT_EQ(device.getSIMStatus.value, SYS_SIM_PUK_LOCKED);
    EXPECT_EQ(device.getCellular5GMode.value, SYS_WAN_5G_STANDALONE);
    EXPECT_EQ(device.getGPSStatus.value, SYS_GPS_GOT_FIX);
    EXPECT_EQ(device.getCellularServiceStats.value.technology, SYS_TECHNOLOGY_5G);
    EXPECT_EQ(device.getCellularServiceStats.value.roaming, SYS_ROAMING_FLASH);
    EXPECT_EQ(device.getCellularServiceStats.value.fiveGType, SYS_5G_OTHER);
    EXPECT_EQ(device.getCellularDataConnectionStats.value.trafficStatus, SYS_TRAFFIC_BOTH);
    const sys_sim_slot_t& slot = device.getAllSimSlotsInfo.value.slots[1];
    EXPECT_EQ(slot.simStatus, SYS_SIM_ERROR);
    EXPECT_EQ(slot.dataConnectionStatus, SYS_DATA_CONNECTION_UNACTIVATED);
    EXPECT_EQ(slot.serviceStatus, SYS_SERVICE_AVAILABLE);
    EXPECT_EQ(device.getConnectedDeviceList.value.at(0).connectionKind, SYS_CONNECTION_WIRED_B);
    EXPECT_EQ(device.getBatteryStatus.value.detection, SYS_BATTERY_PRESENT);
    EXPECT_EQ(device.getBatteryStatus.value.chargingSource, SYS_CHARGING_SOURCE_USB);
}

TEST(NamedValues, StandForTheCodesOfTheirSection) {
    const Device device = Read(R"({
        "sys": {"getSDCardInfo": {"error": "error_no_sd_card"},
            "getGPSStatus": {"error": "not_answered", "healed": "searching"},
            "cellularDataConnect": {"error": "nothing_to_connect"},
            "getWiFiGuestProfileEnabled": {"1": {"error": "source_lost"}}},
        "webui": {"commonFeatures": {"error": "buffer_needed"},
            "uriData": {"sms": {"error": "not_answered"}}},
        "msgbus": {"a": {"error": "buffer_needed"}, "b": {"error": "bus_not_joined"}}})");
    EXPECT_EQ(device.getSDCardInfo.error, SYS_ERROR_NO_SD_CARD);
    EXPECT_EQ(device.getGPSStatus.error, 9001);
    EXPECT_EQ(device.cellularDataConnect.error, 9007);
    EXPECT_EQ(device.getWiFiGuestProfileEnabled.At(1).error, 9006);
    EXPECT_EQ(device.commonFeatures.error, WEBUI_BUFFER_NEEDED);
    EXPECT_EQ(device.uriData.value.at("sms").error, 992041);
    EXPECT_EQ(device.channels.at("a").error, 4);
    EXPECT_EQ(device.channels.at("b").error, 9005);
}

TEST(NamedValues, StandInFaultsForTheCodeAndTheAnswer) {
    const Device device = Read(R"({
        "sys": {"getSIMStatus": {"error": "error_no_sd_card", "times": 3, "healed": "ready"},
            "getWiFiGuestProfileEnabled":
                {"1": {"error": "interrupted", "delay": 2, "healed": {"error": "source_lost"}}},
            "getCellularDataConnectionStatus": {"error": null, "delay": 2, "healed":
                {"now": "connecting", "next": "connected", "at": "2026-11-21T12:00:00.000Z"}}},
        "webui": {"commonFeatures": {"error": "not_answered", "probability": 0.5, "healed": null}}})");
    EXPECT_EQ(device.getSIMStatus.fault->Plan().code, SYS_ERROR_NO_SD_CARD);
    EXPECT_EQ(device.getSIMStatus.value, SYS_SIM_READY);
    EXPECT_EQ(device.getWiFiGuestProfileEnabled.At(1).fault->Plan().code, 9008);
    EXPECT_EQ(device.getWiFiGuestProfileEnabled.At(1).error, 9006);
    EXPECT_EQ(device.getCellularDataConnectionStatus.value, SYS_DATA_CONNECTION_CONNECTING);
    EXPECT_EQ(device.statusChange.value().next, SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(device.commonFeatures.fault->Plan().code, 992041);
}

TEST(NamedValues, AWrongNameIsAnErrorThatListsTheRightOnes) {
    EXPECT_EQ(SysComplaint("getGPSStatus", "\"got_fx\""),
              "device.json:3: sys.getGPSStatus: expected off, searching, got_fix or a 32-bit "
              "integer or {\"error\": N}, found 'got_fx'; did you mean got_fix?");
    EXPECT_EQ(SysComplaint("getGPSStatus", "\"broken\""),
              "device.json:3: sys.getGPSStatus: expected off, searching, got_fix or a 32-bit "
              "integer or {\"error\": N}, found 'broken'");
    EXPECT_EQ(SysComplaint("getGPSStatus", "\"" + std::string(41, 'x') + "\""),
              "device.json:3: sys.getGPSStatus: expected off, searching, got_fix or a 32-bit "
              "integer or {\"error\": N}, found a text");
    EXPECT_EQ(SysComplaint("getBatteryStatus", "{\n\"chargingSource\": \"USB\"}"),
              "device.json:4: sys.getBatteryStatus.chargingSource: expected none, ac, usb or a "
              "32-bit integer, found 'USB'; did you mean usb?");
    EXPECT_EQ(ChannelComplaint("[{\"severity\": \"warnin\"}]"),
              "device.json:3: msgbus.a[0].severity: expected info, warning, alert, critical or an "
              "unsigned 32-bit integer, found 'warnin'; did you mean warning?");
    EXPECT_EQ(SysComplaint("getGPSStatus", "{\"error\": 5, \"healed\": \"of\"}"),
              "device.json:3: sys.getGPSStatus.healed: expected off, searching, got_fix or a "
              "32-bit integer or {\"error\": N}, found 'of'; did you mean off?");
}

TEST(NamedValues, AWrongNameOfACodeIsAnErrorThatListsTheCodesOfItsSection) {
    const std::string shared =
        "not_answered, no_device, not_changed, binding_failed, bus_not_joined, source_lost, "
        "nothing_to_connect, interrupted or a 32-bit integer other than 0 and 983040, found ";
    EXPECT_EQ(SysComplaint("getSDCardInfo", "{\"error\": \"no_sd_card\"}"),
              "device.json:3: sys.getSDCardInfo.error: expected error_buffer_needed, "
              "error_no_sd_card, " +
                  shared + "'no_sd_card'; did you mean error_no_sd_card?");
    EXPECT_EQ(WebuiComplaint("commonFeatures", "{\"error\": \"success\"}"),
              "device.json:3: webui.commonFeatures.error: expected buffer_needed, " + shared +
                  "'success'");
}

TEST(NamedValues, NumbersWithoutNamesHaveNone) {
    EXPECT_EQ(SysComplaint("getNumSims", "\"ready\""),
              "device.json:3: sys.getNumSims: expected a 32-bit integer or {\"error\": N}, found "
              "a text");
    EXPECT_EQ(SysComplaint("getBatteryStatus", "{\"chargePercent\": \"present\"}"),
              "device.json:3: sys.getBatteryStatus.chargePercent: expected a 32-bit integer, found "
              "a text");
    EXPECT_EQ(SysComplaint("getUIFieldShowEnabled", "{\"detection\": \"present\"}"),
              "device.json:3: sys.getUIFieldShowEnabled.detection: expected a 32-bit integer or "
              "{\"error\": N}, found a text");
}

TEST(NamedValues, ANameAndItsNumberAreTheSame) {
    const KeyPath slot = {"sys", "getAllSimSlotsInfo", "slots", std::size_t{1}, "simStatus"};
    EXPECT_EQ(NumberAt(slot, "ready"), 7);
    EXPECT_EQ(NumberAt(slot, 7), 7);
    EXPECT_EQ(NumberAt(slot, "redy"), std::nullopt);
    EXPECT_EQ(NumberAt(slot, nullptr), std::nullopt);
    EXPECT_EQ(NumberAt({"sys", "getNumSims"}, "ready"), std::nullopt);
    for (const KeyPath& path : {KeyPath(), KeyPath{"sys"}, KeyPath{"webui", "getSIMStatus"},
                                KeyPath{"sys", "getConnectedDeviceList", std::size_t{0}}}) {
        EXPECT_TRUE(NamesAt(path).empty());
    }
}

}  // namespace
