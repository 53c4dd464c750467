#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kEthernet = " - void StatusComponent::GetEthernetPortEnabled(CTPP::CDT&)";

class EthernetStatusTest : public StatusGroupTest {};

TEST_F(EthernetStatusTest, EnabledPortWithLinkIsConnected) {
    Given("sys_getEthernetEnabled").Writes(1);
    Given("sys_getEthernetLinkStatus").Writes(1);
    component->GetEthernetPortEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarEthernetPortEnabled":"connected"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kEthernet + " - BEGIN"), "sys_getEthernetEnabled()",
                     Log(7, kEthernet + " - ethernet enabled status [1]"),
                     "sys_getEthernetLinkStatus()", Log(7, kEthernet + " - END")}));
}

TEST_F(EthernetStatusTest, EnabledPortWithoutLinkIsEnabled) {
    Given("sys_getEthernetEnabled").Writes(1);
    Given("sys_getEthernetLinkStatus").Writes(0);
    component->GetEthernetPortEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarEthernetPortEnabled":"enabled"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kEthernet + " - BEGIN"), "sys_getEthernetEnabled()",
                     Log(7, kEthernet + " - ethernet enabled status [1]"),
                     "sys_getEthernetLinkStatus()", Log(7, kEthernet + " - END")}));
}

TEST_F(EthernetStatusTest, AnyOtherValueThanZeroMeansEnabledAndConnected) {
    Given("sys_getEthernetEnabled").Writes(-1);
    Given("sys_getEthernetLinkStatus").Writes(2);
    component->GetEthernetPortEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarEthernetPortEnabled":"connected"})");
}

TEST_F(EthernetStatusTest, DisabledPortIsNotAskedForItsLink) {
    Given("sys_getEthernetEnabled").Writes(0);
    Given("sys_getEthernetLinkStatus").Writes(1);
    component->GetEthernetPortEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarEthernetPortEnabled":"disabled"})");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kEthernet + " - BEGIN"), "sys_getEthernetEnabled()",
                                       Log(7, kEthernet + " - ethernet enabled status [0]"),
                                       Log(7, kEthernet + " - END")}));
}

TEST_F(EthernetStatusTest, PortStateThatIsNotWrittenIsDisabled) {
    Given("sys_getEthernetEnabled").Returns(SYS_SUCCESS);
    component->GetEthernetPortEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarEthernetPortEnabled":"disabled"})");
}

TEST_F(EthernetStatusTest, LinkStateThatIsNotWrittenIsNoLink) {
    Given("sys_getEthernetEnabled").Writes(1);
    Given("sys_getEthernetLinkStatus").Returns(SYS_SUCCESS);
    component->GetEthernetPortEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarEthernetPortEnabled":"enabled"})");
}

TEST_F(EthernetStatusTest, FailedPortStateIsDisabledAndTheLinkIsNotRead) {
    Given("sys_getEthernetEnabled").Returns(4).Writes(1);
    Given("sys_getEthernetLinkStatus").Writes(1);
    component->GetEthernetPortEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarEthernetPortEnabled":"disabled"})");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kEthernet + " - BEGIN"), "sys_getEthernetEnabled()",
               Failure(kEthernet + " - sys_getEthernetEnabled failed, returned error code [4]. Try "
                                   "sysintcli getEthernetEnabled from command line."),
               Log(7, kEthernet + " - END")}));
}

TEST_F(EthernetStatusTest, FailedLinkStateIsEnabled) {
    Given("sys_getEthernetEnabled").Writes(1);
    Given("sys_getEthernetLinkStatus").Returns(4).Writes(1);
    component->GetEthernetPortEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarEthernetPortEnabled":"enabled"})");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kEthernet + " - BEGIN"), "sys_getEthernetEnabled()",
               Log(7, kEthernet + " - ethernet enabled status [1]"), "sys_getEthernetLinkStatus()",
               Failure(kEthernet + ": sys_getEthernetLinkStatus failed to get link status by "
                                   "returning[4]. sysintcli getEthernetLinkStatus on command line"),
               Log(7, kEthernet + " - END")}));
}

}  // namespace
