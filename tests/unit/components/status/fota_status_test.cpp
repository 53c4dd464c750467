#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kFota = " - void StatusComponent::GetFotaInstallStatus(CTPP::CDT&)";

class FotaStatusTest : public StatusGroupTest {
  protected:
    void ExpectMinusOneWithoutAsking() {
        Given("sys_getFotaInstallStatus").Writes(3);
        component->GetFotaInstallStatus(statusData);
        EXPECT_EQ(ToJson(statusData), R"({"statusBarFotaInstallStatus":-1})");
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kFota + " - BEGIN"),
                         Log(7, kFota + " - Final statusBarFotaInstallStatus is -1"),
                         Log(7, kFota + " - END")}));
    }
};

TEST_F(FotaStatusTest, WithoutConfigurationItIsMinusOneAndThePlatformIsNotAsked) {
    ExpectMinusOneWithoutAsking();
}

TEST_F(FotaStatusTest, WithoutThePartitionValueItIsMinusOneAndThePlatformIsNotAsked) {
    Configure("ShowRoamingIndicator", "1");
    ExpectMinusOneWithoutAsking();
}

TEST_F(FotaStatusTest, WithPartitionValueZeroItIsMinusOneAndThePlatformIsNotAsked) {
    Configure("IsABPartitionEnabled", "0");
    ExpectMinusOneWithoutAsking();
}

TEST_F(FotaStatusTest, WithPartitionValueThatIsNoNumberItIsMinusOneAndThePlatformIsNotAsked) {
    Configure("IsABPartitionEnabled", "true");
    ExpectMinusOneWithoutAsking();
}

TEST_F(FotaStatusTest, WithPartitionsItIsThePlatformsNumber) {
    Configure("IsABPartitionEnabled", "1");
    Given("sys_getFotaInstallStatus").Writes(3);
    component->GetFotaInstallStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarFotaInstallStatus":3})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kFota + " - BEGIN"),
                     Log(7, kFota + " - Found AB partition and calling install status from fota"),
                     "sys_getFotaInstallStatus()",
                     Log(7, kFota + " - Final statusBarFotaInstallStatus is 3"),
                     Log(7, kFota + " - END")}));
}

TEST_F(FotaStatusTest, AnyOtherPartitionValueThanZeroMeansThatThereArePartitions) {
    Configure("IsABPartitionEnabled", "-2");
    Given("sys_getFotaInstallStatus").Writes(0);
    component->GetFotaInstallStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarFotaInstallStatus":0})");
}

TEST_F(FotaStatusTest, NumberThatIsNotWrittenIsMinusOne) {
    Configure("IsABPartitionEnabled", "1");
    Given("sys_getFotaInstallStatus").Returns(SYS_SUCCESS);
    component->GetFotaInstallStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarFotaInstallStatus":-1})");
}

TEST_F(FotaStatusTest, FailureIsMinusOne) {
    Configure("IsABPartitionEnabled", "1");
    Given("sys_getFotaInstallStatus").Returns(31);
    component->GetFotaInstallStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarFotaInstallStatus":-1})");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kFota + " - BEGIN"),
               Log(7, kFota + " - Found AB partition and calling install status from fota"),
               "sys_getFotaInstallStatus()",
               Failure(kFota +
                       " - sys_getFotaInstallStatus API failed with error code 31. Try sysintcli "
                       "getFotaInstallStatus from command line."),
               Log(7, kFota + " - Final statusBarFotaInstallStatus is -1"),
               Log(7, kFota + " - END")}));
}

TEST_F(FotaStatusTest, FailureThatWroteANumberKeepsIt) {
    Configure("IsABPartitionEnabled", "1");
    Given("sys_getFotaInstallStatus").Returns(31).Writes(5);
    component->GetFotaInstallStatus(statusData);
    EXPECT_EQ(ToJson(statusData), R"({"statusBarFotaInstallStatus":5})");
}

}  // namespace
