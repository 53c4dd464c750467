// sysintcli: which platform calls each command makes and what it prints.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <tuple>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"
#include "tests/support/records.h"
#include "tests/unit/tools/transcript.h"
#include "tools/sysint_commands.h"

using recording::Given;
using recording::Lines;
using recording::TranscriptText;

namespace {

class Sysintcli : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    static std::string Run(const std::vector<std::string>& arguments) {
        return Shown(SysintTool(), arguments);
    }
};

/// The transcript of a session of the SDK with @p calls.
std::string Round(std::vector<std::string> calls) {
    calls.insert(calls.begin(), "sys_sdkInitialize()");
    calls.emplace_back("sys_sdkShutdown()");
    return Lines(calls);
}

TEST_F(Sysintcli, OpensTheSdkForEachCall) {
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_READY);
    EXPECT_EQ(Run({"getSIMStatus"}), R"({
    "status": {
        "value": 7,
        "name": "ready"
    }
}
)");
    EXPECT_EQ(TranscriptText(), Round({"sys_getSIMStatus()"}));
}

TEST_F(Sysintcli, ANumberWithoutANameIsExplained) {
    Given("sys_getSIMStatus").Writes(-3);
    EXPECT_EQ(Run({"getSIMStatus"}), R"({
    "status": {
        "value": -3,
        "name": null,
        "explanation": "no name; these have: 0 not_found, 1 locked, 2 restricted, 3 error, 4 failure, 5 puk_locked, 6 pin_locked, 7 ready"
    }
}
)");
}

TEST_F(Sysintcli, ValuesOfEnumerationsHaveTheirNames) {
    using Case = std::tuple<const char*, const char*, int, const char*>;
    for (const auto& [name, field, value, valueName] : {
             Case{"getCellularDataConnectionStatus", "status", 2, "connected"},
             Case{"getCellularServiceStatus", "status", 1, "searching"},
             Case{"getCellularDataAccountStatus", "status", 3, "out_of_credit"},
             Case{"getCellular5GMode", "mode", 2, "non_standalone"},
             Case{"getGPSStatus", "status", 2, "got_fix"},
         }) {
        Given("sys_" + std::string(name)).Writes(value);
        EXPECT_EQ(Run({name}), "{\n    \"" + std::string(field) +
                                   "\": {\n        \"value\": " + std::to_string(value) +
                                   ",\n        \"name\": \"" + valueName + "\"\n    }\n}\n");
    }
}

TEST_F(Sysintcli, OtherNumbersArePrintedUnchanged) {
    using Case = std::pair<const char*, const char*>;
    for (const auto& [name, field] : {
             Case{"getWebUICarrierEnabled", "enabled"},
             Case{"getSambaCarrierEnabled", "enabled"},
             Case{"getGPSCarrierEnabled", "enabled"},
             Case{"getMTSMSCarrierEnabled", "enabled"},
             Case{"getWiFiCarrierEnabled", "enabled"},
             Case{"getWiFiGuestCarrierEnabled", "enabled"},
             Case{"getPCOCarrierEnabled", "enabled"},
             Case{"getNUACarrierEnabled", "enabled"},
             Case{"getOmadmFumoCarrierEnabled", "enabled"},
             Case{"getMultiSimEnabled", "enabled"},
             Case{"getWDCPCarrierEnabled", "enabled"},
             Case{"getHalyardAgentCarrierEnabled", "enabled"},
             Case{"getWatchdogInterval", "interval"},
             Case{"getCellularDataEnabled", "enabled"},
             Case{"getRadioEnabled", "enabled"},
             Case{"getEnabledRadioTechnologies", "technologies"},
             Case{"getSIMNetworkRejectCode", "code"},
             Case{"getActiveSimSlot", "slot"},
             Case{"getNumSims", "count"},
             Case{"getCellular3GBand", "band"},
             Case{"getCellularBand", "band"},
             Case{"getCABandWidth", "bandwidth"},
             Case{"get5GBandWidth", "bandwidth"},
             Case{"getEthernetEnabled", "enabled"},
             Case{"getEthernetLinkStatus", "status"},
             Case{"getFotaInstallStatus", "status"},
             Case{"getSMSUnreadCount", "count"},
             Case{"getSambaEnabled", "enabled"},
             Case{"getWiFiEnabled", "enabled"},
         }) {
        recording::Reset();
        Given("sys_" + std::string(name)).Writes(-5);
        EXPECT_EQ(Run({name}), "{\n    \"" + std::string(field) + "\": -5\n}\n");
        EXPECT_EQ(TranscriptText(), Round({"sys_" + std::string(name) + "()"}));
    }
}

TEST_F(Sysintcli, TheNumberOfClientsIsUnsigned) {
    Given("sys_getWiFiMaxClients").Writes(4294967295U);
    EXPECT_EQ(Run({"getWiFiMaxClients"}), "{\n    \"count\": 4294967295\n}\n");
}

TEST_F(Sysintcli, FieldsAndApplicationsAreNamed) {
    using Case = std::pair<const char*, const char*>;
    for (const auto& [name, field] : {
             Case{"getUIFieldShowEnabled", "show"},
             Case{"getUIFieldLockEnabled", "locked"},
             Case{"getUIAppDisplayEnabled", "display"},
             Case{"getUIAppWriteEnabled", "write"},
         }) {
        recording::Reset();
        Given("sys_" + std::string(name)).Writes(1);
        EXPECT_EQ(Run({name, "the ssid"}), "{\n    \"" + std::string(field) + "\": 1\n}\n");
        EXPECT_EQ(TranscriptText(), Round({"sys_" + std::string(name) + "(the ssid)"}));
    }
}

TEST_F(Sysintcli, ConnectsAndDisconnectsAndPrintsNothing) {
    Given("sys_cellularDataConnect");
    EXPECT_EQ(Run({"cellularDataConnect"}), "");
    EXPECT_EQ(TranscriptText(), Round({"sys_cellularDataConnect(0)"}));
    recording::Reset();
    Given("sys_cellularDataDisconnect");
    EXPECT_EQ(Run({"cellularDataDisconnect"}), "");
    EXPECT_EQ(TranscriptText(), Round({"sys_cellularDataDisconnect(0)"}));
}

TEST_F(Sysintcli, ShowsTheCellularService) {
    sys_cellular_service_stats_t stats{};
    stats.technology = SYS_TECHNOLOGY_LTE_PLUS;
    stats.roaming = SYS_ROAMING_FLASH;
    stats.signalBars = 4;
    stats.sinr = -18;
    stats.pci = 211;
    stats.snr = 17;
    SetText(stats.networkName, "Orvane \"West\"");
    SetText(stats.networkId, "31048");
    stats.femtoCell = 1;
    Given("sys_getCellularServiceStats").Writes(stats);
    EXPECT_EQ(Run({"getCellularServiceStats"}), R"({
    "technology": {
        "value": 16,
        "name": "lte_plus"
    },
    "roaming": {
        "value": 3,
        "name": "flash"
    },
    "signalBars": 4,
    "sinr": -18,
    "pci": 211,
    "snr": 17,
    "networkName": "Orvane \"West\"",
    "networkId": "31048",
    "femtoCell": 1,
    "fiveGType": {
        "value": 0,
        "name": null,
        "explanation": "no name; these have: 1 ultra_wideband, 2 other"
    }
}
)");
}

TEST_F(Sysintcli, ShowsTheTraffic) {
    sys_cellular_data_connection_stats_t stats{};
    stats.trafficStatus = SYS_TRAFFIC_BOTH;
    stats.duration = 1;
    stats.bytesReceived1 = 18446744073709551615U;
    stats.bytesTransmitted1 = 3;
    stats.bytesReceived2 = 4;
    stats.bytesTransmitted2 = 5;
    Given("sys_getCellularDataConnectionStats").Writes(stats);
    EXPECT_EQ(Run({"getCellularDataConnectionStats"}), R"({
    "trafficStatus": {
        "value": 3,
        "name": "both"
    },
    "duration": 1,
    "bytesReceived1": 18446744073709551615,
    "bytesTransmitted1": 3,
    "bytesReceived2": 4,
    "bytesTransmitted2": 5
}
)");
}

TEST_F(Sysintcli, TextsEndWithTheirField) {
    sys_subscriber_info_t info{};
    SetText(info.identity, std::string(32, '9'));
    info.reserved32[0] = '8';
    Given("sys_getSubscriberInfo").Writes(info);
    EXPECT_EQ(Run({"getSubscriberInfo"}),
              "{\n    \"identity\": \"99999999999999999999999999999999\"\n}\n");
}

TEST_F(Sysintcli, BytesThatAreNotUtf8AreReplaced) {
    sys_subscriber_info_t info{};
    SetText(info.identity, "31\xFF\xC3");
    Given("sys_getSubscriberInfo").Writes(info);
    EXPECT_EQ(Run({"getSubscriberInfo"}),
              "{\n    \"identity\": \"31\xEF\xBF\xBD\xEF\xBF\xBD\"\n}\n");
}

TEST_F(Sysintcli, ShowsTheLockOfTheNetwork) {
    sys_network_sim_lock_t lock{};
    lock.carrierBlocked = 1;
    Given("sys_getNetworkSIMLockStatus").Writes(lock);
    EXPECT_EQ(Run({"getNetworkSIMLockStatus"}), "{\n    \"carrierBlocked\": 1\n}\n");
}

sys_all_sim_slots_t TwoSlots(int count) {
    sys_all_sim_slots_t all{};
    all.count = count;
    SetText(all.slots[0].networkName, "Orvane");
    all.slots[0].active = 1;
    all.slots[0].simStatus = SYS_SIM_READY;
    all.slots[0].dataConnectionStatus = SYS_DATA_CONNECTION_DORMANT;
    all.slots[0].serviceStatus = SYS_SERVICE_AVAILABLE;
    all.slots[1].simStatus = SYS_SIM_ERROR;
    return all;
}

const std::string kFirstSlot = R"(        {
            "networkName": "Orvane",
            "active": 1,
            "simStatus": {
                "value": 7,
                "name": "ready"
            },
            "dataConnectionStatus": {
                "value": 1,
                "name": "dormant"
            },
            "serviceStatus": {
                "value": 2,
                "name": "available"
            }
        })";

const std::string kSecondSlot = R"(        {
            "networkName": "",
            "active": 0,
            "simStatus": {
                "value": 3,
                "name": "error"
            },
            "dataConnectionStatus": {
                "value": 0,
                "name": "ready"
            },
            "serviceStatus": {
                "value": 0,
                "name": "none"
            }
        })";

TEST_F(Sysintcli, ShowsTheSlotsThatAreValid) {
    Given("sys_getAllSimSlotsInfo").Writes(TwoSlots(1));
    EXPECT_EQ(Run({"getAllSimSlotsInfo"}),
              "{\n    \"count\": 1,\n    \"slots\": [\n" + kFirstSlot + "\n    ]\n}\n");
}

TEST_F(Sysintcli, ShowsNoMoreSlotsThanThereAre) {
    Given("sys_getAllSimSlotsInfo").Writes(TwoSlots(2147483647));
    EXPECT_EQ(Run({"getAllSimSlotsInfo"}), "{\n    \"count\": 2147483647,\n    \"slots\": [\n" +
                                               kFirstSlot + ",\n" + kSecondSlot + "\n    ]\n}\n");
}

TEST_F(Sysintcli, ANegativeCountOfSlotsCountsAsZero) {
    Given("sys_getAllSimSlotsInfo").Writes(TwoSlots(-1));
    EXPECT_EQ(Run({"getAllSimSlotsInfo"}), "{\n    \"count\": -1,\n    \"slots\": []\n}\n");
}

TEST_F(Sysintcli, ShowsTheNetworkSelectionByEitherName) {
    Given("sys_getModemMnsInfo").Writes(1).Writes(2).Writes(3);
    const std::string expected =
        "{\n    \"allowed\": 1,\n    \"selected\": 2,\n    \"scanStatus\": 3\n}\n";
    EXPECT_EQ(Run({"getModemMnsInfo"}), expected);
    EXPECT_EQ(Run({"getMnsInfo"}), expected);
}

TEST_F(Sysintcli, TheBandwidthHasTwoSpellings) {
    Given("sys_getCABandWidth").Writes(40);
    EXPECT_EQ(Run({"getCABandWidth"}), "{\n    \"bandwidth\": 40\n}\n");
    EXPECT_EQ(Run({"getCABandwidth"}), "{\n    \"bandwidth\": 40\n}\n");
}

TEST_F(Sysintcli, ShowsBothNumbersOfTheNrBand) {
    Given("sys_getCellular5GBand").Writes(77).Writes(5);
    EXPECT_EQ(Run({"getCellular5GBand"}), "{\n    \"band\": 77,\n    \"second\": 5\n}\n");
}

TEST_F(Sysintcli, ShowsAGroupIdentifierByItsNumber) {
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{0x02, 0xFF, 0x10};
    Given("sys_getSIMCarrierGID").Writes(gid).Writes<std::uint8_t>(2);
    EXPECT_EQ(Run({"getSIMCarrierGID", "255"}),
              "{\n    \"length\": 2,\n    \"gid\": \"02ff\"\n}\n");
    EXPECT_EQ(TranscriptText(), Round({"sys_getSIMCarrierGID(index 255)"}));
}

TEST_F(Sysintcli, NumbersOutOfRangeAreWrongUsage) {
    for (const std::string wrong : {"256", "-1", "0x1", "1 ", "", "99999999999"}) {
        recording::Reset();
        EXPECT_EQ(Run({"getSIMCarrierGID", wrong}), "sysintcli: INDEX: '" + wrong +
                                                        "' is not a number from 0 to 255\n"
                                                        "Try 'sysintcli --help'.\n[2]\n");
        EXPECT_EQ(TranscriptText(), "");
    }
}

TEST_F(Sysintcli, ShowsAGuestProfileByItsNumber) {
    Given("sys_getWiFiGuestProfileEnabled").Writes(1);
    EXPECT_EQ(Run({"getWiFiGuestProfileEnabled", "2"}), "{\n    \"enabled\": 1\n}\n");
    EXPECT_EQ(TranscriptText(), Round({"sys_getWiFiGuestProfileEnabled(profile 2)"}));
    EXPECT_EQ(
        Run({"getWiFiGuestProfileEnabled", "3"}),
        "sysintcli: PROFILE: '3' is not a number from 1 to 2\nTry 'sysintcli --help'.\n[2]\n");
}

TEST_F(Sysintcli, ShowsTheNamesOfThePins) {
    GpioCustomSettings settings{};
    SetText(settings.name, "door");
    SetText(settings.lowState, "open");
    SetText(settings.highState, "shut");
    for (const std::string pin : {"1", "2"}) {
        recording::Reset();
        Given("sys_getGpioPin" + pin + "CustomSettings").Writes(settings);
        EXPECT_EQ(Run({"getGpioPin" + pin + "CustomSettings"}),
                  "{\n    \"name\": \"door\",\n    \"lowState\": \"open\",\n"
                  "    \"highState\": \"shut\"\n}\n");
    }
}

TEST_F(Sysintcli, ShowsTheMemoryCard) {
    Given("sys_getSDCardInfo").Writes(sys_sd_card_info_t{31902400512U, 24117248000U});
    EXPECT_EQ(Run({"getSDCardInfo"}),
              "{\n    \"totalCapacity\": 31902400512,\n    \"freeSpace\": 24117248000\n}\n");
}

TEST_F(Sysintcli, ShowsTheFileSharing) {
    sys_samba_share_info_t info{};
    info.cardInUse = 4294967295U;
    Given("sys_getSambaShareInfo").Writes(info);
    EXPECT_EQ(Run({"getSambaShareInfo"}), "{\n    \"cardInUse\": 4294967295\n}\n");
}

TEST_F(Sysintcli, ShowsTheBattery) {
    sys_battery_status_t battery{};
    battery.chargePercent = 84;
    battery.chargingState = 1;
    battery.detection = SYS_BATTERY_PRESENT;
    battery.chargingSource = SYS_CHARGING_SOURCE_USB;
    Given("sys_getBatteryStatus").Writes(battery);
    EXPECT_EQ(Run({"getBatteryStatus"}), R"({
    "chargePercent": 84,
    "chargingState": 1,
    "detection": {
        "value": 2,
        "name": "present"
    },
    "chargingSource": {
        "value": 2,
        "name": "usb"
    }
}
)");
}

std::vector<sys_connected_device_t> Devices(std::size_t count) {
    std::vector<sys_connected_device_t> devices(count);
    for (sys_connected_device_t& device : devices) {
        device.connectionKind = SYS_CONNECTION_GUEST_WIFI;
    }
    return devices;
}

const std::string kOneGuest = R"({
    "devices": [
        {
            "connectionKind": {
                "value": 3,
                "name": "guest_wifi"
            }
        }
    ]
}
)";

TEST_F(Sysintcli, AsksForTheLengthOfTheDeviceListFirst) {
    Given("sys_getConnectedDeviceList").Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(1U);
    Given("sys_getConnectedDeviceList").WritesRecords(Devices(1)).Writes(1U);
    EXPECT_EQ(Run({"getConnectedDeviceList"}), kOneGuest);
    EXPECT_EQ(TranscriptText(), Round({"sys_getConnectedDeviceList(no buffer)",
                                       "sys_getConnectedDeviceList(room for 1)"}));
}

TEST_F(Sysintcli, WithoutDevicesTheListIsEmpty) {
    Given("sys_getConnectedDeviceList").WritesNothing().Writes(0U);
    EXPECT_EQ(Run({"getConnectedDeviceList"}), "{\n    \"devices\": []\n}\n");
}

TEST_F(Sysintcli, TheNumberOfDevicesMayChangeBetweenTheCalls) {
    Given("sys_getConnectedDeviceList").Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(1U);
    Given("sys_getConnectedDeviceList").Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(3U);
    Given("sys_getConnectedDeviceList").WritesRecords(Devices(1)).Writes(1U);
    EXPECT_EQ(Run({"getConnectedDeviceList"}), kOneGuest);
    EXPECT_EQ(TranscriptText(), Round({"sys_getConnectedDeviceList(no buffer)",
                                       "sys_getConnectedDeviceList(room for 1)",
                                       "sys_getConnectedDeviceList(room for 3)"}));
}

TEST_F(Sysintcli, ACountBeyondTheBufferIsNotTrusted) {
    Given("sys_getConnectedDeviceList").Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(1U);
    Given("sys_getConnectedDeviceList").WritesRecords(Devices(1)).Writes(1000000U);
    EXPECT_EQ(Run({"getConnectedDeviceList"}), kOneGuest);
}

TEST_F(Sysintcli, AListThatNeverFitsFails) {
    Given("sys_getConnectedDeviceList").Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(1U);
    EXPECT_EQ(Run({"getConnectedDeviceList"}),
              "sysintcli: sys_getConnectedDeviceList failed, returned error code 7 "
              "(error_buffer_needed)\n[1]\n");
    EXPECT_EQ(recording::CallCount("sys_getConnectedDeviceList"), 6U);
}

TEST_F(Sysintcli, EveryFailingCallPrintsItsCode) {
    const Tool tool = SysintTool();
    for (const Command& command : tool.commands) {
        recording::Reset();
        const std::string call = "sys_" + command.names.front();
        Given(call).Returns(-4711);
        EXPECT_EQ(Run(Acceptable(command)), "sysintcli: " + call +
                                                " failed, returned error code -4711 (no name; what "
                                                "it means depends on the device)\n[1]\n");
        EXPECT_EQ(recording::Transcript().size(), 3U);
        EXPECT_EQ(recording::Transcript().front(), "sys_sdkInitialize()");
        EXPECT_EQ(recording::CallCount(call), 1U);
        EXPECT_EQ(recording::Transcript().back(), "sys_sdkShutdown()");
    }
}

TEST_F(Sysintcli, PrintsTheNameOfACode) {
    Given("sys_getSDCardInfo").Returns(SYS_ERROR_NO_SD_CARD);
    EXPECT_EQ(Run({"getSDCardInfo"}),
              "sysintcli: sys_getSDCardInfo failed, returned error code 2001 "
              "(error_no_sd_card)\n[1]\n");
}

TEST_F(Sysintcli, IfTheSdkCannotBeOpenedNoCallIsMade) {
    Given("sys_sdkInitialize").Returns(3);
    EXPECT_EQ(Run({"getSIMStatus"}),
              "sysintcli: sys_sdkInitialize failed, returned error code 3 (no name; what it means "
              "depends on the device)\n[1]\n");
    EXPECT_EQ(TranscriptText(), "sys_sdkInitialize()\n");
}

TEST_F(Sysintcli, AFailureToCloseTheSdkIsReportedAfterTheAnswer) {
    Given("sys_getNumSims").Writes(2);
    Given("sys_sdkShutdown").Returns(3);
    EXPECT_EQ(Run({"getNumSims"}),
              "{\n    \"count\": 2\n}\n"
              "sysintcli: sys_sdkShutdown failed, returned error code 3 (no name; what it means "
              "depends on the device)\n[1]\n");
    EXPECT_EQ(recording::CallCount("sys_sdkShutdown"), 1U);
}

}  // namespace
