#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kMobileData = " - void StatusComponent::GetMobileDataEnabled(CTPP::CDT&)";

class MobileDataStatusTest : public StatusGroupTest {};

TEST_F(MobileDataStatusTest, EnabledIsTheIntegerOne) {
    Given("sys_getCellularDataEnabled").Writes(1);
    component->GetMobileDataEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarMobileDataEnabled":1})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kMobileData + " - BEGIN"), "sys_getCellularDataEnabled()",
                     Log(7, kMobileData + " - cellular data enabled status [1]"),
                     Log(7, kMobileData + " - END")}));
}

TEST_F(MobileDataStatusTest, DisabledIsTheIntegerZero) {
    Given("sys_getCellularDataEnabled").Writes(0);
    component->GetMobileDataEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarMobileDataEnabled":0})");
}

TEST_F(MobileDataStatusTest, AnyOtherValueThanZeroIsWrittenAsOneAndLoggedAsItIs) {
    for (const int value : {-1, 2, 256}) {
        recording::Reset();
        Given("sys_getCellularDataEnabled").Writes(value);
        component->GetMobileDataEnabled(statusData);
        EXPECT_EQ(ToJson(statusData), R"({"statusBarMobileDataEnabled":1})");
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kMobileData + " - BEGIN"), "sys_getCellularDataEnabled()",
                         Log(7, kMobileData + " - cellular data enabled status [" +
                                    std::to_string(value) + "]"),
                         Log(7, kMobileData + " - END")}));
    }
}

TEST_F(MobileDataStatusTest, ValueThatIsNotWrittenIsZero) {
    Given("sys_getCellularDataEnabled").Returns(SYS_SUCCESS);
    component->GetMobileDataEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarMobileDataEnabled":0})");
}

TEST_F(MobileDataStatusTest, FailureLeavesTheKeyOutEvenWhenAValueWasWritten) {
    Given("sys_getCellularDataEnabled").Returns(7).Writes(1);
    component->GetMobileDataEnabled(statusData);
    EXPECT_EQ(ToJson(statusData), "{}");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kMobileData + " - BEGIN"), "sys_getCellularDataEnabled()",
                     Failure(kMobileData +
                             " - sys_getCellularDataEnabled failed, returned error code [7]. Try "
                             "sysintcli getCellularDataEnabled from command line."),
                     Log(7, kMobileData + " - END")}));
}

}  // namespace
