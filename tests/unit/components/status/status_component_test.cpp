// Construction, capabilities, and the data set as a whole.
#include "components/status/status_component.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"
#include "platform/webui.h"
#include "tests/support/json.h"
#include "tests/support/records.h"
#include "tests/support/transcript.h"

using recording::CallCount;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kConstructor = " - StatusComponent::StatusComponent()";
const std::string kDestructor = " - virtual StatusComponent::~StatusComponent()";
const std::string kCapabilities = " - void StatusComponent::GetCapabilities()";
const std::string kGetData = " - PageError StatusComponent::GetData(CTPP::CDT&)";

/// A carrier switch, the accessor of its flag, and the position of the flag in the log line.
struct Capability {
    const char* call;
    bool (StatusComponent::*isSupported)() const;
};

const std::vector<Capability> kCapabilityList = {
    {"sys_getSambaCarrierEnabled", &StatusComponent::IsSMBSupported},
    {"sys_getGPSCarrierEnabled", &StatusComponent::IsGPSSupported},
    {"sys_getMTSMSCarrierEnabled", &StatusComponent::IsMTSMSSupported},
    {"sys_getWiFiCarrierEnabled", &StatusComponent::IsWifiSupported},
    {"sys_getWiFiGuestCarrierEnabled", &StatusComponent::IsGuestWifiSupported},
    {"sys_getPCOCarrierEnabled", &StatusComponent::IsPCOSupported},
    {"sys_getNUACarrierEnabled", &StatusComponent::IsNUASupported},
    {"sys_getOmadmFumoCarrierEnabled", &StatusComponent::IsOMADMSupported},
    {"sys_getMultiSimEnabled", &StatusComponent::IsDualSIMSupported},
};

Step CapabilitiesLine(const std::string& smb, const std::string& gps, const std::string& sms,
                      const std::string& wifi, const std::string& guest, const std::string& pco,
                      const std::string& nua, const std::string& omadm, const std::string& dual) {
    return Log(7, kCapabilities + " - IsSMBSupported is [" + smb + "], IsGPSSupported is [" + gps +
                      "],IsMTSMSSupported is [" + sms + "],IsWifiSupported is [" + wifi +
                      "],IsGuestWifiSupported is [" + guest + "],IsPCOSupported is [" + pco +
                      "],IsNUASupported is [" + nua + "],IsOMADMSupported is [" + omadm +
                      "], IsDualSIMSupported[" + dual + "]");
}

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

class StatusComponentTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    /// A component of a carrier that enables @p calls.
    static StatusComponent& Construct(std::optional<StatusComponent>& component,
                                      const std::vector<std::string>& calls) {
        recording::Reset();
        for (const Capability& capability : kCapabilityList) {
            const bool enabled =
                std::find(calls.begin(), calls.end(), capability.call) != calls.end();
            Given(capability.call).Writes(enabled ? 1 : 0);
        }
        component.emplace();
        recording::Reset();
        return *component;
    }

    std::optional<StatusComponent> storage;
    CTPP::CDT out;
};

TEST_F(StatusComponentTest, ConstructionReadsTheCapabilitiesInOrderAndDestructionIsLogged) {
    { const StatusComponent component; }
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kConstructor + " - BEGIN"), Log(7, kCapabilities + " - BEGIN"),
                     "sys_getSambaCarrierEnabled()", "sys_getGPSCarrierEnabled()",
                     "sys_getMTSMSCarrierEnabled()", "sys_getWiFiCarrierEnabled()",
                     "sys_getWiFiGuestCarrierEnabled()", "sys_getPCOCarrierEnabled()",
                     "sys_getNUACarrierEnabled()", "sys_getOmadmFumoCarrierEnabled()",
                     "sys_getMultiSimEnabled()",
                     CapabilitiesLine("0", "0", "0", "0", "0", "0", "0", "0", "0"),
                     Log(7, kCapabilities + " - END "), Log(7, kConstructor + " - ENd"),
                     Log(7, kDestructor + " - BEGIN"), Log(7, kDestructor + " - ENd")}));
}

TEST_F(StatusComponentTest, DestructionThroughTheBaseIsThatOfTheComponent) {
    std::unique_ptr<PageComponent> component = std::make_unique<StatusComponent>();
    recording::Reset();
    component.reset();
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kDestructor + " - BEGIN"), Log(7, kDestructor + " - ENd")}));
}

TEST_F(StatusComponentTest, EachCapabilityFollowsItsOwnCall) {
    for (std::size_t enabled = 0; enabled < kCapabilityList.size(); ++enabled) {
        recording::Reset();
        Given(kCapabilityList[enabled].call).Writes(1);
        const StatusComponent component;
        std::vector<std::string> flags(kCapabilityList.size(), "0");
        flags[enabled] = "1";
        for (std::size_t i = 0; i < kCapabilityList.size(); ++i) {
            EXPECT_EQ((component.*kCapabilityList[i].isSupported)(), i == enabled)
                << kCapabilityList[i].call;
        }
        EXPECT_EQ(TranscriptText("log 7 [KESTAL_CGI]:[DEBUG]" + kCapabilities + " - Is"),
                  Steps({CapabilitiesLine(flags[0], flags[1], flags[2], flags[3], flags[4],
                                          flags[5], flags[6], flags[7], flags[8])}));
    }
}

TEST_F(StatusComponentTest, AnyOtherSwitchValueThanZeroIsOnAndLoggedAsOne) {
    for (const Capability& capability : kCapabilityList) {
        Given(capability.call).Writes(-256);
    }
    const StatusComponent component;
    for (const Capability& capability : kCapabilityList) {
        EXPECT_TRUE((component.*capability.isSupported)()) << capability.call;
    }
    EXPECT_EQ(TranscriptText("log 7 [KESTAL_CGI]:[DEBUG]" + kCapabilities + " - Is"),
              Steps({CapabilitiesLine("1", "1", "1", "1", "1", "1", "1", "1", "1")}));
}

TEST_F(StatusComponentTest, SwitchThatReadsAsZeroOrNotAtAllIsOff) {
    for (const bool written : {true, false}) {
        recording::Reset();
        for (const Capability& capability : kCapabilityList) {
            recording::Answer& answer = Given(capability.call).Returns(0);
            if (written) {
                answer.Writes(0);
            }
        }
        const StatusComponent component;
        for (const Capability& capability : kCapabilityList) {
            EXPECT_FALSE((component.*capability.isSupported)()) << capability.call;
        }
    }
}

TEST_F(StatusComponentTest, SwitchThatCannotBeReadIsOffAndNotLogged) {
    for (const Capability& capability : kCapabilityList) {
        Given(capability.call).Returns(5);
    }
    const StatusComponent component;
    for (const Capability& capability : kCapabilityList) {
        EXPECT_FALSE((component.*capability.isSupported)()) << capability.call;
    }
    EXPECT_EQ(TranscriptText("syslog"), "");
    EXPECT_EQ(TranscriptText("log 3"), "");
}

TEST_F(StatusComponentTest, SwitchThatFailsButWritesAValueFollowsTheValue) {
    for (const Capability& capability : kCapabilityList) {
        Given(capability.call).Returns(5).Writes(1);
    }
    const StatusComponent component;
    for (const Capability& capability : kCapabilityList) {
        EXPECT_TRUE((component.*capability.isSupported)()) << capability.call;
    }
}

TEST_F(StatusComponentTest, CapabilitiesStayAsTheyWereAtConstruction) {
    StatusComponent& component = Construct(storage, {});
    Given("sys_getGPSCarrierEnabled").Writes(1);
    component.GetData(out);
    EXPECT_FALSE(component.IsGPSSupported());
    EXPECT_EQ(CallCount("sys_getGPSCarrierEnabled"), 0U);
}

TEST_F(StatusComponentTest, InitLoadsDeviceWideFeaturesAndConfigurations) {
    StatusComponent& component = Construct(storage, {});
    const std::string configurations = "webui_get_common_configurations";
    Given("webui_get_common_features").Returns(WEBUI_SUCCESS);
    Given(configurations).Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(1);
    Given(configurations)
        .Returns(WEBUI_SUCCESS)
        .WritesRecords(std::vector<webui_configuration_t>{Configuration("Answer", "42")})
        .Writes(1);
    component.Init("");
    EXPECT_EQ(TranscriptText("webui_"), Steps({"webui_get_common_features(no buffer)",
                                               "webui_get_common_configurations(no buffer)",
                                               "webui_get_common_configurations(room for 1)"}));
    EXPECT_EQ(component.ConfigurationNumber("Answer"), 42);
}

TEST_F(StatusComponentTest, CarrierThatEnablesNothingGetsTheGroupsThatAlwaysRun) {
    StatusComponent& component = Construct(storage, {});
    Given("sys_getBatteryStatus").Writes(sys_battery_status_t{{}, 85, 0, 0, 2, 0});
    Given("sys_getConnectedDeviceList").Returns(SYS_SUCCESS);
    Given("sys_getCellularDataEnabled").Writes(1);
    Given("sys_getEthernetEnabled").Writes(0);
    EXPECT_EQ(component.GetData(out), PAGE_ERROR_NONE);
    EXPECT_EQ(ToJson(out), R"({"statusData":{"isDualSimSupported":0,)"
                           R"("statusBarBatteryChargingSource":"ChargingSourceNone",)"
                           R"("statusBarBatteryChargingState":"false",)"
                           R"("statusBarBatteryDetection":"Present",)"
                           R"("statusBarBatteryPercent":"85",)"
                           R"("statusBarClientListSize":"0",)"
                           R"("statusBarEthernetPortEnabled":"disabled",)"
                           R"("statusBarFotaInstallStatus":-1,)"
                           R"("statusBarGuestClientListSize":"0",)"
                           R"("statusBarMobileDataEnabled":1,)"
                           R"("statusBarPrimaryClientListSize":"0",)"
                           R"("statusBarWiFiClientListSize":"0"}})");
}

TEST_F(StatusComponentTest, GroupsThatAlwaysRunAreCalledInOrder) {
    StatusComponent& component = Construct(storage, {});
    Given("sys_getBatteryStatus").Writes(sys_battery_status_t{{}, 85, 0, 0, 2, 0});
    Given("sys_getConnectedDeviceList").Returns(SYS_SUCCESS);
    Given("sys_getCellularDataEnabled").Writes(1);
    Given("sys_getEthernetEnabled").Writes(0);
    component.GetData(out);
    const std::string battery = Group("GetBatteryStatus");
    const std::string router = Group("GetRouterStatus");
    const std::string mobileData = Group("GetMobileDataEnabled");
    const std::string ethernet = Group("GetEthernetPortEnabled");
    const std::string fota = Group("GetFotaInstallStatus");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGetData + " - BEGIN"),
                     Log(7, battery + " - BEGIN"),
                     "sys_getBatteryStatus()",
                     Log(7, battery + " - battery percentage: 85 charging state: false battery "
                                      "detection: Present charging source: ChargingSourceNone"),
                     Log(7, battery + " - END"),
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
                     Log(7, kGetData + " - END")}));
}

TEST_F(StatusComponentTest, AllGroupsAreCalledInOrder) {
    StatusComponent& component = Construct(
        storage,
        {"sys_getSambaCarrierEnabled", "sys_getGPSCarrierEnabled", "sys_getMTSMSCarrierEnabled",
         "sys_getWiFiCarrierEnabled", "sys_getWiFiGuestCarrierEnabled", "sys_getPCOCarrierEnabled",
         "sys_getNUACarrierEnabled", "sys_getOmadmFumoCarrierEnabled", "sys_getMultiSimEnabled"});
    component.GetData(out);
    EXPECT_EQ(CalledGroups(),
              (std::vector<std::string>{"GetBatteryStatus", "GetRouterStatus",
                                        "GetMobileDataEnabled", "GetEthernetPortEnabled",
                                        "GetFotaInstallStatus", "GetWifiStatus", "GetGpsStatus",
                                        "GetSmsStatus", "GetSmbStatus", "GetGuestWifiStatus"}));
}

TEST_F(StatusComponentTest, EachCapabilityAddsItsOwnGroup) {
    const std::vector<std::pair<std::string, std::string>> groups = {
        {"sys_getWiFiCarrierEnabled", "GetWifiStatus"},
        {"sys_getGPSCarrierEnabled", "GetGpsStatus"},
        {"sys_getMTSMSCarrierEnabled", "GetSmsStatus"},
        {"sys_getSambaCarrierEnabled", "GetSmbStatus"},
        {"sys_getWiFiGuestCarrierEnabled", "GetGuestWifiStatus"},
    };
    for (const auto& [call, group] : groups) {
        StatusComponent& component = Construct(storage, {call});
        component.GetData(out);
        EXPECT_EQ(CalledGroups(), (std::vector<std::string>{
                                      "GetBatteryStatus", "GetRouterStatus", "GetMobileDataEnabled",
                                      "GetEthernetPortEnabled", "GetFotaInstallStatus", group}))
            << call;
    }
}

TEST_F(StatusComponentTest, DataSetExistsWhenEveryCallFails) {
    StatusComponent& component =
        Construct(storage, {"sys_getSambaCarrierEnabled", "sys_getGPSCarrierEnabled",
                            "sys_getMTSMSCarrierEnabled", "sys_getWiFiCarrierEnabled",
                            "sys_getWiFiGuestCarrierEnabled"});
    EXPECT_EQ(component.GetData(out), PAGE_ERROR_NONE);
    EXPECT_EQ(ToJson(out), R"({"statusData":{"isDualSimSupported":0,)"
                           R"("statusBarEthernetPortEnabled":"disabled",)"
                           R"("statusBarFotaInstallStatus":-1,)"
                           R"("statusBarGuestWifiEnabled":0,)"
                           R"("statusBarSdCardStatus":""}})");
}

TEST_F(StatusComponentTest, DualSimSupportIsAnInteger) {
    Construct(storage, {"sys_getMultiSimEnabled"}).GetData(out);
    const CTPP::CDT& supported = out.GetCDT("statusData").GetCDT("isDualSimSupported");
    EXPECT_EQ(supported.GetType(), CTPP::CDT::INT_VAL);
    EXPECT_EQ(supported.GetInt(), 1);
    Construct(storage, {}).GetData(out);
    const CTPP::CDT& unsupported = out.GetCDT("statusData").GetCDT("isDualSimSupported");
    EXPECT_EQ(unsupported.GetType(), CTPP::CDT::INT_VAL);
    EXPECT_EQ(unsupported.GetInt(), 0);
}

TEST_F(StatusComponentTest, DataSetIsHungIntoTheAnswerBesideWhatItHolds) {
    out["loginStatus"] = 1;
    Construct(storage, {}).GetData(out);
    EXPECT_EQ(ToJson(out),
              R"({"loginStatus":1,"statusData":{"isDualSimSupported":0,)"
              R"("statusBarEthernetPortEnabled":"disabled","statusBarFotaInstallStatus":-1}})");
}

TEST_F(StatusComponentTest, DataSetIsBuiltAfreshForEachRequest) {
    StatusComponent& component = Construct(storage, {});
    Given("sys_getCellularDataEnabled").Writes(1);
    component.GetData(out);
    EXPECT_EQ(ToJson(out),
              R"({"statusData":{"isDualSimSupported":0,"statusBarEthernetPortEnabled":"disabled",)"
              R"("statusBarFotaInstallStatus":-1,"statusBarMobileDataEnabled":1}})");
    recording::Reset();
    component.GetData(out);
    EXPECT_EQ(ToJson(out),
              R"({"statusData":{"isDualSimSupported":0,"statusBarEthernetPortEnabled":"disabled",)"
              R"("statusBarFotaInstallStatus":-1}})");
}

}  // namespace
