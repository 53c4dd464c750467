#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kGps = " - void StatusComponent::GetGpsStatus(CTPP::CDT&)";

class GpsStatusTest : public StatusGroupTest {
  protected:
    void ExpectText(int status, const std::string& text) {
        recording::Reset();
        Given("sys_getGPSStatus").Writes(status);
        component->GetGpsStatus(statusData);
        EXPECT_EQ(ToJson(statusData), R"({"statusBarGpsStatus":")" + text + R"("})");
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kGps + " - BEGIN"), "sys_getGPSStatus()",
                         Log(7, kGps + " - gps status : " + text), Log(7, kGps + " - END")}));
    }
};

TEST_F(GpsStatusTest, StateOfTheReceiverIsATextThatIsLogged) {
    ExpectText(0, "GpsOff");
    ExpectText(1, "Searching");
    ExpectText(2, "GotFix");
}

TEST_F(GpsStatusTest, UnknownStateIsAnEmptyText) {
    ExpectText(3, "");
    ExpectText(-1, "");
}

TEST_F(GpsStatusTest, StateThatIsNotWrittenIsOff) {
    Given("sys_getGPSStatus").Returns(SYS_SUCCESS);
    component->GetGpsStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarGpsStatus":"GpsOff"})");
}

TEST_F(GpsStatusTest, FailureLeavesTheKeyOutEvenWhenAValueWasWritten) {
    Given("sys_getGPSStatus").Returns(9).Writes(2);
    component->GetGpsStatus(statusData);
    EXPECT_EQ(ToJson(statusData), "{}");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGps + " - BEGIN"), "sys_getGPSStatus()",
                     Failure(kGps + " sys_getGPSStatus failed, returned error code [9]. Try "
                                    "sysintcli getGPSStatus from command line."),
                     Log(7, kGps + " - END")}));
}

}  // namespace
