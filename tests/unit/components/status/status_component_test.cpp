// Construction and capabilities.
#include "components/status/status_component.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"
#include "platform/webui.h"
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

class StatusComponentTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }
};

TEST_F(StatusComponentTest, ConstructionReadsTheCapabilitiesInOrderAndDestructionIsLogged) {
    (void)StatusComponent();
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
    StatusComponent component;
    recording::Reset();
    Given("sys_getGPSCarrierEnabled").Writes(1);
    CTPP::CDT out;
    component.GetData(out);
    EXPECT_FALSE(component.IsGPSSupported());
    EXPECT_EQ(CallCount("sys_getGPSCarrierEnabled"), 0U);
}

TEST_F(StatusComponentTest, InitLoadsDeviceWideFeaturesAndConfigurations) {
    StatusComponent component;
    recording::Reset();
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

}  // namespace
