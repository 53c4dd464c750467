#include <limits>

#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kMns = " - void StatusComponent::GetMnsStatus(CTPP::CDT&)";

class MnsStatusTest : public StatusGroupTest {
  protected:
    std::string Json() {
        component->GetMnsStatus(statusData);
        return ToJson(statusData);
    }
};

TEST_F(MnsStatusTest, ValuesAreIntegers) {
    Given("sys_getModemMnsInfo").Writes(1).Writes(0).Writes(2);
    EXPECT_EQ(Json(), R"({"statusBarMnsAvailable":1,"statusBarMnsInUse":0,"statusBarMnsScan":2})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kMns + " - BEGIN"), "sys_getModemMnsInfo()",
                     Log(7, kMns + " mns allowed: 1 mns selected 0 mns scan status 2"),
                     Log(7, kMns + " - END")}));
}

TEST_F(MnsStatusTest, ValuesAreSignedAndPublishedAsTheyAre) {
    Given("sys_getModemMnsInfo")
        .Writes(std::numeric_limits<int>::min())
        .Writes(std::numeric_limits<int>::max())
        .Writes(-1);
    EXPECT_EQ(Json(), R"({"statusBarMnsAvailable":-2147483648,"statusBarMnsInUse":2147483647,)"
                      R"("statusBarMnsScan":-1})");
}

TEST_F(MnsStatusTest, ValuesThatAreNotWrittenAreZero) {
    Given("sys_getModemMnsInfo").Returns(SYS_SUCCESS);
    EXPECT_EQ(Json(), R"({"statusBarMnsAvailable":0,"statusBarMnsInUse":0,"statusBarMnsScan":0})");
}

TEST_F(MnsStatusTest, FailureWritesNoKeyWhateverTheCallWroteAndNamesAnotherCommand) {
    Given("sys_getModemMnsInfo").Returns(13).Writes(1).Writes(1).Writes(1);
    EXPECT_EQ(Json(), "{}");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kMns + " - BEGIN"), "sys_getModemMnsInfo()",
                     Failure(kMns + " sys_getModemMnsInfo failed, returned error code [13]. Try "
                                    "sysintcli getMnsInfo from command line."),
                     Log(7, kMns + " - END")}));
}

}  // namespace
