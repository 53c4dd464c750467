#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kSms = " - void StatusComponent::GetSmsStatus(CTPP::CDT&)";

class SmsStatusTest : public StatusGroupTest {};

TEST_F(SmsStatusTest, UnreadCountIsAText) {
    Given("sys_getSMSUnreadCount").Writes(12);
    component->GetSmsStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarSmsUnreadCount":"12"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSms + " - BEGIN"), "sys_getSMSUnreadCount()",
                     Log(7, kSms + " - sms unread count 12"), Log(7, kSms + " - END")}));
}

TEST_F(SmsStatusTest, CountZeroIsTheTextZero) {
    Given("sys_getSMSUnreadCount").Writes(0);
    component->GetSmsStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarSmsUnreadCount":"0"})");
}

TEST_F(SmsStatusTest, NegativeCountIsWrittenAsItIs) {
    Given("sys_getSMSUnreadCount").Writes(-1);
    component->GetSmsStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarSmsUnreadCount":"-1"})");
}

TEST_F(SmsStatusTest, CountThatIsNotWrittenIsZero) {
    Given("sys_getSMSUnreadCount").Returns(SYS_SUCCESS);
    component->GetSmsStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarSmsUnreadCount":"0"})");
}

TEST_F(SmsStatusTest, FailureLeavesTheKeyOutEvenWhenAValueWasWritten) {
    Given("sys_getSMSUnreadCount").Returns(9).Writes(12);
    component->GetSmsStatus(statusData);
    EXPECT_EQ(ToJson(statusData), "{}");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSms + " - BEGIN"), "sys_getSMSUnreadCount()",
                     Failure(kSms + " sys_getSMSUnreadCount failed, returned error code [9]. Try "
                                    "sysintcli getSMSUnreadCount from command line."),
                     Log(7, kSms + " - END")}));
}

}  // namespace
