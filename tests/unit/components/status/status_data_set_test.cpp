// The data set as a whole: which groups it has, in which order they are read, what they share.
#include <stdexcept>

#include "components/status/cellular/subscriber_cache.h"
#include "platform/sysint.h"
#include "tests/support/translations.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::CallCount;
using recording::Failure;
using recording::Given;
using recording::Lines;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kGetData = " - PageError StatusComponent::GetData(CTPP::CDT&)";

const std::vector<std::string> kEverySwitch = {
    "sys_getSambaCarrierEnabled", "sys_getGPSCarrierEnabled",       "sys_getMTSMSCarrierEnabled",
    "sys_getWiFiCarrierEnabled",  "sys_getWiFiGuestCarrierEnabled", "sys_getPCOCarrierEnabled",
    "sys_getNUACarrierEnabled",   "sys_getOmadmFumoCarrierEnabled", "sys_getMultiSimEnabled"};

std::string Group(const std::string& name) {
    return " - void StatusComponent::" + name + "(CTPP::CDT&)";
}

/// Names of the groups that were called, in order.
std::vector<std::string> CalledGroups() {
    const std::string head = Log(7, " - void StatusComponent::");
    const std::string tail = "(CTPP::CDT&) - BEGIN";
    std::vector<std::string> groups;
    for (const std::string& line : recording::Transcript()) {
        if (line.starts_with(head) && line.ends_with(tail)) {
            groups.push_back(line.substr(head.size(), line.size() - head.size() - tail.size()));
        }
    }
    return groups;
}

class StatusDataSetTest : public StatusGroupTest {
  protected:
    void SetUp() override {
        StatusGroupTest::SetUp();
        translations::Reset();
    }

    /// Scripts the groups that run on every device.
    static void GivenBasics() {
        Given("sys_getBatteryStatus").Writes(sys_battery_status_t{{}, 85, 0, 0, 2, 0});
        Given("sys_getConnectedDeviceList").Returns(SYS_SUCCESS);
        Given("sys_getCellularDataEnabled").Writes(1);
        Given("sys_getEthernetEnabled").Writes(0);
    }

    /// An LTE connection on band 66.
    static void GivenConnection() {
        sys_cellular_service_stats_t service{};
        service.technology = SYS_TECHNOLOGY_LTE;
        service.signalBars = 4;
        service.pci = 211;
        service.snr = 17;
        SetText(service.networkName, "Orvane");
        SetText(service.networkId, "311480");
        Given("sys_getCellularServiceStats").Writes(service);
        Given("sys_getCellularDataConnectionStats").Writes(sys_cellular_data_connection_stats_t{});
        Given("sys_getRadioEnabled").Writes(1);
        Given("sys_getCellularServiceStatus").Writes<int>(SYS_SERVICE_AVAILABLE);
        Given("sys_getCellularDataConnectionStatus").Writes<int>(SYS_DATA_CONNECTION_CONNECTED);
        Given("sys_getCellularDataAccountStatus").Writes(0);
        Given("sys_getEnabledRadioTechnologies").Writes(31);
        Given("sys_getModemMnsInfo").Writes(1).Writes(0).Writes(0);
        Given("sys_getSIMStatus").Writes<int>(SYS_SIM_READY);
        Given("sys_getCellularBand").Writes(66);
        Given("sys_getCABandWidth").Writes(20);
        sys_subscriber_info_t subscriber{};
        SetText(subscriber.identity, "310480123456789");
        Given("sys_getSubscriberInfo").Writes(subscriber);
        Given("sys_getSIMCarrierGID").Writes<std::uint8_t>(186).Writes<std::uint8_t>(1);
        Given("sys_getNetworkSIMLockStatus").Writes(sys_network_sim_lock_t{});
        Given("sys_getSIMNetworkRejectCode").Writes(0);
    }

    /// Two ready SIMs of which the one in slot @p active, 1 or 2, is in use.
    static void GivenTwoSims(int active) {
        Given("sys_getActiveSimSlot").Writes(active);
        Given("sys_getNumSims").Writes(2);
        sys_all_sim_slots_t all{};
        all.count = 2;
        for (sys_sim_slot_t& slot : all.slots) {
            slot.simStatus = SYS_SIM_READY;
            slot.dataConnectionStatus = SYS_DATA_CONNECTION_CONNECTED;
            slot.serviceStatus = SYS_SERVICE_AVAILABLE;
        }
        SetText(all.slots[0].networkName, "Orvane");
        SetText(all.slots[1].networkName, "Velta Mobil");
        all.slots[active - 1].active = 1;
        Given("sys_getAllSimSlotsInfo").Writes(all);
    }

    /// The answer of one request.
    std::string Json() {
        EXPECT_EQ(component->GetData(out), PAGE_ERROR_NONE);
        return ToJson(out);
    }

    std::string DataValue(const std::string& key) {
        statusData = out.GetCDT("statusData");
        return Value(key);
    }

    CTPP::CDT out;
};

TEST_F(StatusDataSetTest, CarrierThatEnablesNothingGetsTheGroupsThatAlwaysRun) {
    GivenBasics();
    GivenConnection();
    EXPECT_EQ(Json(), R"({"statusData":{"isDualSimSupported":0,)"
                      R"("statusBarAirplaneMode":"AirplaneModeOff","statusBarBand":"B66",)"
                      R"("statusBarBandwidth":"20 webui_app_megahertz_text",)"
                      R"("statusBarBatteryChargingSource":"ChargingSourceNone",)"
                      R"("statusBarBatteryChargingState":"false",)"
                      R"("statusBarBatteryDetection":"Present","statusBarBatteryPercent":"85",)"
                      R"("statusBarBytesReceived":"0","statusBarBytesTotal":"0",)"
                      R"("statusBarBytesTransmitted":"0","statusBarClientListSize":"0",)"
                      R"("statusBarConnectionDuration":"0","statusBarConnectionState":"Connected",)"
                      R"("statusBarEthernetPortEnabled":"disabled","statusBarFemtoCellStatus":"0",)"
                      R"("statusBarFotaInstallStatus":-1,"statusBarGuestClientListSize":"0",)"
                      R"("statusBarMnsAvailable":1,"statusBarMnsInUse":0,"statusBarMnsScan":0,)"
                      R"("statusBarMobileDataEnabled":1,"statusBarNetwork":"Orvane",)"
                      R"("statusBarNetworkID":"311480","statusBarNotificationFlag":"0",)"
                      R"("statusBarPCI":"211",)"
                      R"("statusBarPrimaryClientListSize":"0","statusBarSNR":"17",)"
                      R"("statusBarSignalBars":"4","statusBarSimCarrierBlockedStatus":"0",)"
                      R"("statusBarSimMMCode":"0","statusBarSimStatus":"Ready",)"
                      R"("statusBarTechnology":"LTE","statusBarTechnologyText":"",)"
                      R"("statusBarTrafficStatus":"None","statusBarWiFiClientListSize":"0"}})");
}

TEST_F(StatusDataSetTest, GroupsThatAlwaysRunAreCalledInOrder) {
    GivenBasics();
    Json();
    const std::string battery = Group("GetBatteryStatus");
    const std::string mns = Group("GetMnsStatus");
    const std::string internet = Group("GetInternetStatus");
    const std::string router = Group("GetRouterStatus");
    const std::string mobileData = Group("GetMobileDataEnabled");
    const std::string ethernet = Group("GetEthernetPortEnabled");
    const std::string fota = Group("GetFotaInstallStatus");
    const std::string notification = Group("GetNotificationFlagStatus");
    const std::string sim = Group("GetSimStatus");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kGetData + " - BEGIN"),
               Log(7, battery + " - BEGIN"),
               "sys_getBatteryStatus()",
               Log(7, battery + " - battery percentage: 85 charging state: false battery "
                                "detection: Present charging source: ChargingSourceNone"),
               Log(7, battery + " - END"),
               Log(7, mns + " - BEGIN"),
               "sys_getModemMnsInfo()",
               Failure(mns + " sys_getModemMnsInfo failed, returned error code [90001]. Try "
                             "sysintcli getMnsInfo from command line."),
               Log(7, mns + " - END"),
               Log(7, internet + " - BEGIN"),
               "sys_getCellularServiceStats()",
               "sys_getCellularDataConnectionStats()",
               "sys_getRadioEnabled()",
               "sys_getCellularServiceStatus()",
               "sys_getCellularDataConnectionStatus()",
               Failure(internet +
                       " sys_getCellularServiceStats failed, returned error code [90001], "
                       "sys_getCellularDataConnectionStats failed, returned error code [90001], "
                       "sys_getRadioEnabled failed, returned error code[90001], "
                       "sys_getCellularServiceStatus failed, returned error code [90001], "
                       "sys_getCellularDataAccountStatus failed, returned error code [90001]"),
               Log(7, internet + " - END"),
               Log(7, router + " - BEGIN"),
               "sys_getConnectedDeviceList(no buffer)",
               Log(7, router + " - END"),
               Log(7, mobileData + " - BEGIN"),
               "sys_getCellularDataEnabled()",
               Log(7, mobileData + " - cellular data enabled status [1]"),
               Log(7, mobileData + " - END"),
               Log(7, ethernet + " - BEGIN"),
               "sys_getEthernetEnabled()",
               Log(7, ethernet + " - ethernet enabled status [0]"),
               Log(7, ethernet + " - END"),
               Log(7, fota + " - BEGIN"),
               Log(7, fota + " - Final statusBarFotaInstallStatus is -1"),
               Log(7, fota + " - END"),
               Log(7, notification + " - BEGIN"),
               "MsgbusHandler::MsgbusHandler(no callback)",
               "MsgbusHandler::Initialize()",
               "MsgbusHandler::GetData(zelt.ans.notifications, no buffer)",
               Failure(notification + ": msgbus.GetData for zelt.ans.notifications channel failed"),
               "MsgbusHandler::Uninitialize()",
               Log(7, notification + " - END"),
               Log(7, sim + " - BEGIN"),
               "sys_getSIMStatus()",
               Failure(sim + " sys_getSIMStatus failed, returned error code [90001]. Try sysintcli "
                             "getSIMStatus from command line."),
               Log(7, sim + " - END"),
               Log(7, kGetData + " - END")}));
}

TEST_F(StatusDataSetTest, AllGroupsAreCalledInOrder) {
    Construct(kEverySwitch);
    Json();
    EXPECT_EQ(
        CalledGroups(),
        (std::vector<std::string>{
            "GetBatteryStatus", "GetMnsStatus", "GetInternetStatus", "GetRouterStatus",
            "GetMobileDataEnabled", "GetEthernetPortEnabled", "GetFotaInstallStatus",
            "GetWifiStatus", "GetNotificationFlagStatus", "GetGpsStatus", "GetSmsStatus",
            "GetSmbStatus", "GetGuestWifiStatus", "GetSoftwareUpdateStatus", "GetDualSimStatus"}));
}

TEST_F(StatusDataSetTest, PlatformIsAskedInOrderWhenEverythingIsEnabled) {
    Construct(kEverySwitch);
    Configure({Configuration("IsABPartitionEnabled", "1"),
               Configuration("ShowRoamingIndicator", "1"),
               Configuration("ShowNonOrvaneTechnologies", "0")});
    GivenBasics();
    GivenConnection();
    GivenTwoSims(2);
    Json();
    EXPECT_EQ(TranscriptText("sys_"), Steps({"sys_getBatteryStatus()",
                                             "sys_getModemMnsInfo()",
                                             "sys_getCellularServiceStats()",
                                             "sys_getCellularDataConnectionStats()",
                                             "sys_getRadioEnabled()",
                                             "sys_getCellularServiceStatus()",
                                             "sys_getCellularDataConnectionStatus()",
                                             "sys_getCellularDataAccountStatus()",
                                             "sys_getSubscriberInfo()",
                                             "sys_getSIMCarrierGID(index 1)",
                                             "sys_getSIMStatus()",
                                             "sys_getCellularServiceStats()",
                                             "sys_getCellularBand()",
                                             "sys_getSIMStatus()",
                                             "sys_getCellularServiceStats()",
                                             "sys_getCABandWidth()",
                                             "sys_getEnabledRadioTechnologies()",
                                             "sys_getConnectedDeviceList(no buffer)",
                                             "sys_getCellularDataEnabled()",
                                             "sys_getEthernetEnabled()",
                                             "sys_getFotaInstallStatus()",
                                             "sys_getWiFiEnabled()",
                                             "sys_getWiFiMaxClients()",
                                             "sys_getGPSStatus()",
                                             "sys_getSMSUnreadCount()",
                                             "sys_getSDCardInfo()",
                                             "sys_getSambaEnabled()",
                                             "sys_getSambaShareInfo()",
                                             "sys_getWiFiGuestProfileEnabled(profile 1)",
                                             "sys_getWiFiGuestProfileEnabled(profile 2)",
                                             "sys_getActiveSimSlot()",
                                             "sys_getNumSims()",
                                             "sys_getAllSimSlotsInfo()",
                                             "sys_getCellularDataAccountStatus()",
                                             "sys_getNetworkSIMLockStatus()",
                                             "sys_getSIMNetworkRejectCode()",
                                             "sys_getCellularDataAccountStatus()",
                                             "sys_getNetworkSIMLockStatus()",
                                             "sys_getSIMNetworkRejectCode()"}));
}

TEST_F(StatusDataSetTest, EachCapabilityAddsItsOwnGroup) {
    const std::vector<std::pair<std::string, std::string>> groups = {
        {"sys_getGPSCarrierEnabled", "GetGpsStatus"},
        {"sys_getMTSMSCarrierEnabled", "GetSmsStatus"},
        {"sys_getSambaCarrierEnabled", "GetSmbStatus"},
        {"sys_getWiFiGuestCarrierEnabled", "GetGuestWifiStatus"},
        {"sys_getNUACarrierEnabled", "GetSoftwareUpdateStatus"},
        {"sys_getOmadmFumoCarrierEnabled", "GetSoftwareUpdateStatus"},
    };
    for (const auto& [call, group] : groups) {
        Construct({call});
        Json();
        EXPECT_EQ(CalledGroups(),
                  (std::vector<std::string>{"GetBatteryStatus", "GetMnsStatus", "GetInternetStatus",
                                            "GetRouterStatus", "GetMobileDataEnabled",
                                            "GetEthernetPortEnabled", "GetFotaInstallStatus",
                                            "GetNotificationFlagStatus", group, "GetSimStatus"}))
            << call;
    }
}

TEST_F(StatusDataSetTest, WifiStandsBeforeTheNotificationFlag) {
    Construct({"sys_getWiFiCarrierEnabled"});
    Json();
    EXPECT_EQ(CalledGroups(),
              (std::vector<std::string>{
                  "GetBatteryStatus", "GetMnsStatus", "GetInternetStatus", "GetRouterStatus",
                  "GetMobileDataEnabled", "GetEthernetPortEnabled", "GetFotaInstallStatus",
                  "GetWifiStatus", "GetNotificationFlagStatus", "GetSimStatus"}));
}

TEST_F(StatusDataSetTest, SoftwareUpdateIsShownOnlyWithAnAgentForIt) {
    for (const std::string agent :
         {"", "sys_getNUACarrierEnabled", "sys_getOmadmFumoCarrierEnabled"}) {
        Construct({agent});
        Json();
        const std::string status = agent.empty() ? "(absent)" : "0";
        const std::string text = agent.empty() ? "(absent)" : "";
        for (const char* key : {"StatusBarSoftwareUpdateStatus", "StatusBarSoftwareUpdateValue",
                                "StatusBarSoftwareUpdateUserInitiated",
                                "StatusBarSoftwareUpdateInstallationDuration"}) {
            EXPECT_EQ(DataValue(key), status) << agent << " " << key;
        }
        for (const char* key :
             {"StatusBarSoftwareUpdateVersion", "StatusBarSoftwareUpdateCustomDesc",
              "StatusBarSoftwareUpdateCustomDownloadMsg",
              "StatusBarSoftwareUpdateCustomReadyToInstallMsg",
              "StatusBarSoftwareUpdateCustomInstallSuccessMsg",
              "StatusBarSoftwareUpdateCustomInstallFailMsg"}) {
            EXPECT_EQ(DataValue(key), text) << agent << " " << key;
        }
        EXPECT_EQ(CallCount("webui_get_software_update_status"), agent.empty() ? 0U : 1U);
    }
}

TEST_F(StatusDataSetTest, WithDualSimSupportTheDualSimGroupReplacesTheSingleOne) {
    Construct({"sys_getMultiSimEnabled"});
    Json();
    EXPECT_EQ(CalledGroups(),
              (std::vector<std::string>{"GetBatteryStatus", "GetMnsStatus", "GetInternetStatus",
                                        "GetRouterStatus", "GetMobileDataEnabled",
                                        "GetEthernetPortEnabled", "GetFotaInstallStatus",
                                        "GetNotificationFlagStatus", "GetDualSimStatus"}));
}

TEST_F(StatusDataSetTest, DataSetExistsWhenEveryCallFails) {
    Construct({"sys_getSambaCarrierEnabled", "sys_getGPSCarrierEnabled",
               "sys_getMTSMSCarrierEnabled", "sys_getWiFiCarrierEnabled",
               "sys_getWiFiGuestCarrierEnabled"});
    EXPECT_EQ(Json(), R"({"statusData":{"isDualSimSupported":0,)"
                      R"("statusBarEthernetPortEnabled":"disabled",)"
                      R"("statusBarFotaInstallStatus":-1,)"
                      R"("statusBarGuestWifiEnabled":0,)"
                      R"("statusBarNotificationFlag":"0",)"
                      R"("statusBarSdCardStatus":""}})");
}

TEST_F(StatusDataSetTest, DualSimDataSetExistsWhenEveryCallFails) {
    Construct({"sys_getMultiSimEnabled"});
    EXPECT_EQ(Json(), R"({"statusData":{"isDualSimSupported":1,)"
                      R"("statusBarEthernetPortEnabled":"disabled",)"
                      R"("statusBarFotaInstallStatus":-1,"statusBarNotificationFlag":"0",)"
                      R"("statusBarSimSlotsCount":0}})");
}

TEST_F(StatusDataSetTest, DualSimSupportIsAnInteger) {
    Construct({"sys_getMultiSimEnabled"});
    Json();
    const CTPP::CDT& supported = out.GetCDT("statusData").GetCDT("isDualSimSupported");
    EXPECT_EQ(supported.GetType(), CTPP::CDT::INT_VAL);
    EXPECT_EQ(supported.GetInt(), 1);
    Construct({});
    Json();
    const CTPP::CDT& unsupported = out.GetCDT("statusData").GetCDT("isDualSimSupported");
    EXPECT_EQ(unsupported.GetType(), CTPP::CDT::INT_VAL);
    EXPECT_EQ(unsupported.GetInt(), 0);
}

TEST_F(StatusDataSetTest, ChangeOfTheActiveSlotShowsInTechnologyAndSignalOneRequestLate) {
    Construct({"sys_getMultiSimEnabled"});
    GivenConnection();
    GivenTwoSims(2);
    Json();
    EXPECT_EQ(DataValue("statusBarActiveSimSlot"), "2");
    EXPECT_EQ(DataValue("statusBarSim2MMCode"), "0");
    EXPECT_EQ(DataValue("statusBarTechnology"), "LTE");
    EXPECT_EQ(DataValue("statusBarSignalBars"), "4");
    EXPECT_EQ(DataValue("statusBarSim2Technology"), "");
    EXPECT_EQ(DataValue("statusBarSim2SignalBars"), "");

    recording::Reset();
    GivenConnection();
    GivenTwoSims(1);
    Json();
    EXPECT_EQ(DataValue("statusBarActiveSimSlot"), "1");
    EXPECT_EQ(DataValue("statusBarSim2MMCode"), "(absent)");
    EXPECT_EQ(DataValue("statusBarTechnology"), "");
    EXPECT_EQ(DataValue("statusBarSignalBars"), "");
    EXPECT_EQ(DataValue("statusBarSim2Technology"), "LTE");
    EXPECT_EQ(DataValue("statusBarSim2SignalBars"), "4");

    Json();
    EXPECT_EQ(DataValue("statusBarTechnology"), "LTE");
    EXPECT_EQ(DataValue("statusBarSim2Technology"), "");
}

TEST_F(StatusDataSetTest, ActiveSlotThatCannotBeReadStaysTheOneOfTheRequestBefore) {
    Construct({"sys_getMultiSimEnabled"});
    GivenConnection();
    GivenTwoSims(2);
    Given("sys_getActiveSimSlot").Returns(9).Writes(1);
    for (int request = 0; request < 3; ++request) {
        Json();
    }
    EXPECT_EQ(DataValue("statusBarActiveSimSlot"), "(absent)");
    EXPECT_EQ(DataValue("statusBarSim2Technology"), "LTE");
    EXPECT_EQ(DataValue("statusBarSim2MMCode"), "0");
}

TEST_F(StatusDataSetTest, DualSimNetworkAndConnectionComeFromTheSlotsAlone) {
    Construct({"sys_getMultiSimEnabled"});
    GivenConnection();
    Given("sys_getActiveSimSlot").Writes(1);
    Given("sys_getNumSims").Writes(0);
    Given("sys_getAllSimSlotsInfo").Writes(sys_all_sim_slots_t{});
    Json();
    EXPECT_EQ(DataValue("statusBarNetworkID"), "311480");
    EXPECT_EQ(DataValue("statusBarNetwork"), "(absent)");
    EXPECT_EQ(DataValue("statusBarConnectionState"), "(absent)");
}

TEST_F(StatusDataSetTest, FailedInternetGroupLeavesTheOthersAlone) {
    GivenBasics();
    GivenConnection();
    Given("sys_getRadioEnabled").Returns(9);
    Json();
    EXPECT_EQ(DataValue("statusBarTechnology"), "LTE");
    Json();
    EXPECT_EQ(DataValue("statusBarTechnology"), "(absent)");
    EXPECT_EQ(DataValue("statusBarBatteryPercent"), "85");
    EXPECT_EQ(DataValue("statusBarMnsAvailable"), "1");
    EXPECT_EQ(DataValue("statusBarSimStatus"), "Ready");
}

TEST_F(StatusDataSetTest, GroupThatThrowsIsLoggedByNameAndLeavesTheOthersAlone) {
    struct ThrowingGroup {
        const char* call;
        const char* name;
    };
    const ThrowingGroup groups[] = {
        {"sys_getBatteryStatus", "GetBatteryStatus"},
        {"sys_getModemMnsInfo", "GetMnsStatus"},
        {"sys_getCellularDataConnectionStats", "GetInternetStatus"},
        {"sys_getConnectedDeviceList", "GetRouterStatus"},
        {"sys_getCellularDataEnabled", "GetMobileDataEnabled"},
        {"sys_getEthernetEnabled", "GetEthernetPortEnabled"},
        {"sys_getFotaInstallStatus", "GetFotaInstallStatus"},
        {"sys_getWiFiEnabled", "GetWifiStatus"},
        {"sys_getGPSStatus", "GetGpsStatus"},
        {"sys_getSMSUnreadCount", "GetSmsStatus"},
        {"sys_getSDCardInfo", "GetSmbStatus"},
        {"sys_getWiFiGuestProfileEnabled", "GetGuestWifiStatus"},
        {"webui_get_software_update_status", "GetSoftwareUpdateStatus"},
        {"sys_getNumSims", "GetDualSimStatus"},
        {"sys_getSIMStatus", "GetSimStatus"},
    };
    const std::string failed = kGetData + " - ";
    for (const auto& [call, name] : groups) {
        std::vector<std::string> switches = kEverySwitch;
        if (name == std::string("GetSimStatus")) {
            switches.pop_back();
        }
        Construct(switches);
        Configure("IsABPartitionEnabled", "1");
        Given(call).Does([] { throw std::runtime_error("no answer"); });
        out = CTPP::CDT();
        EXPECT_EQ(component->GetData(out), PAGE_ERROR_NONE);
        EXPECT_EQ(CalledGroups().size(), 15U) << name;
        EXPECT_TRUE(out.GetCDT("statusData").Exists("isDualSimSupported")) << name;
        EXPECT_EQ(TranscriptText(Failure(failed)[0]) + TranscriptText(Failure(failed)[1]),
                  Steps({Failure(failed + name + " failed: no answer")}));
    }
}

TEST_F(StatusDataSetTest, GidIsReadOnceForManyRequestsToOneComponent) {
    GivenConnection();
    Json();
    Json();
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
    Construct({});
    GivenConnection();
    Json();
    EXPECT_EQ(CallCount("sys_getSubscriberInfo"), 1U);
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
}

TEST_F(StatusDataSetTest, DataSetIsAddedToTheAnswerBesideItsOtherKeys) {
    out["loginStatus"] = 1;
    EXPECT_EQ(Json(),
              R"({"loginStatus":1,"statusData":{"isDualSimSupported":0,)"
              R"("statusBarEthernetPortEnabled":"disabled","statusBarFotaInstallStatus":-1,)"
              R"("statusBarNotificationFlag":"0"}})");
}

TEST_F(StatusDataSetTest, DataSetIsBuiltAfreshForEachRequest) {
    Given("sys_getCellularDataEnabled").Writes(1);
    EXPECT_EQ(Json(),
              R"({"statusData":{"isDualSimSupported":0,"statusBarEthernetPortEnabled":"disabled",)"
              R"("statusBarFotaInstallStatus":-1,"statusBarMobileDataEnabled":1,)"
              R"("statusBarNotificationFlag":"0"}})");
    recording::Reset();
    EXPECT_EQ(Json(),
              R"({"statusData":{"isDualSimSupported":0,"statusBarEthernetPortEnabled":"disabled",)"
              R"("statusBarFotaInstallStatus":-1,"statusBarNotificationFlag":"0"}})");
}

}  // namespace
