#include <map>

#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::CallCount;
using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kSim = " - void StatusComponent::GetSimStatus(CTPP::CDT&)";

sys_network_sim_lock_t Lock(int carrierBlocked) {
    sys_network_sim_lock_t lock{};
    lock.reserved0[0] = 1;
    lock.reserved0[1] = 1;
    lock.reserved0[2] = 1;
    lock.carrierBlocked = carrierBlocked;
    return lock;
}

class SimStatusTest : public StatusGroupTest {
  protected:
    std::string Json() {
        component->GetSimStatus(statusData);
        return ToJson(statusData);
    }
};

TEST_F(SimStatusTest, ReadySimShowsItsLockAndTheLastReject) {
    Given("sys_getSIMStatus").Writes(7);
    Given("sys_getNetworkSIMLockStatus").Writes(Lock(0));
    Given("sys_getSIMNetworkRejectCode").Writes(33);
    EXPECT_EQ(Json(), R"({"statusBarSimCarrierBlockedStatus":"0","statusBarSimMMCode":"33",)"
                      R"("statusBarSimStatus":"Ready"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSim + " - BEGIN"), "sys_getSIMStatus()",
                     "sys_getNetworkSIMLockStatus()", "sys_getSIMNetworkRejectCode()",
                     Log(7, kSim + " - sim network reject code: 33"), Log(7, kSim + " - END")}));
}

TEST_F(SimStatusTest, NoUsableSimShowsItsStatusAloneAndIsNotAskedForItsLock) {
    const std::map<int, std::string> texts = {{0, "Not Found"}, {3, "SIM Error"}, {4, "SIM Error"}};
    for (const auto& [status, text] : texts) {
        recording::Reset();
        statusData = CTPP::CDT(CTPP::CDT::HASH_VAL);
        Given("sys_getSIMStatus").Writes(status);
        Given("sys_getNetworkSIMLockStatus").Writes(Lock(1));
        Given("sys_getSIMNetworkRejectCode").Writes(33);
        EXPECT_EQ(Json(), R"({"statusBarSimStatus":")" + text + "\"}");
        EXPECT_EQ(TranscriptText(), Steps({Log(7, kSim + " - BEGIN"), "sys_getSIMStatus()",
                                           Log(7, kSim + " - END")}));
    }
}

TEST_F(SimStatusTest, EveryOtherStatusIsAskedForItsLock) {
    const std::map<int, std::string> texts = {{1, "SIM Locked"}, {2, "SIM Restricted"},
                                              {5, "PUK Locked"}, {6, "PIN Locked"},
                                              {7, "Ready"},      {8, ""},
                                              {99, ""},          {-1, ""}};
    for (const auto& [status, text] : texts) {
        recording::Reset();
        statusData = CTPP::CDT(CTPP::CDT::HASH_VAL);
        Given("sys_getSIMStatus").Writes(status);
        Given("sys_getNetworkSIMLockStatus").Writes(Lock(1));
        Given("sys_getSIMNetworkRejectCode").Writes(0);
        EXPECT_EQ(Json(), R"({"statusBarSimCarrierBlockedStatus":"1","statusBarSimMMCode":"0",)"
                          R"("statusBarSimStatus":")" +
                              text + "\"}");
    }
}

TEST_F(SimStatusTest, StatusThatIsNotWrittenIsReady) {
    Given("sys_getSIMStatus").Returns(SYS_SUCCESS);
    Given("sys_getNetworkSIMLockStatus").Returns(SYS_SUCCESS);
    Given("sys_getSIMNetworkRejectCode").Returns(SYS_SUCCESS);
    EXPECT_EQ(Json(), R"({"statusBarSimCarrierBlockedStatus":"0","statusBarSimMMCode":"0",)"
                      R"("statusBarSimStatus":"Ready"})");
}

TEST_F(SimStatusTest, RejectCodeIsSigned) {
    Given("sys_getSIMStatus").Writes(7);
    Given("sys_getNetworkSIMLockStatus").Writes(Lock(0));
    Given("sys_getSIMNetworkRejectCode").Writes(-7);
    Json();
    EXPECT_EQ(Value("statusBarSimMMCode"), "-7");
}

TEST_F(SimStatusTest, UnknownCarrierBlockStateIsAnEmptyText) {
    Given("sys_getSIMStatus").Writes(7);
    Given("sys_getNetworkSIMLockStatus").Writes(Lock(5));
    Given("sys_getSIMNetworkRejectCode").Writes(0);
    EXPECT_EQ(Json(), R"({"statusBarSimCarrierBlockedStatus":"","statusBarSimMMCode":"0",)"
                      R"("statusBarSimStatus":"Ready"})");
}

TEST_F(SimStatusTest, FailedStatusWritesNoKeyAndAsksForNothingElse) {
    Given("sys_getSIMStatus").Returns(11).Writes(6);
    EXPECT_EQ(Json(), "{}");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSim + " - BEGIN"), "sys_getSIMStatus()",
                     Failure(kSim + " sys_getSIMStatus failed, returned error code [11]. Try "
                                    "sysintcli getSIMStatus from command line."),
                     Log(7, kSim + " - END")}));
}

TEST_F(SimStatusTest, FailedLockTakesTheRejectCodeWithIt) {
    Given("sys_getSIMStatus").Writes(7);
    Given("sys_getNetworkSIMLockStatus").Returns(12).Writes(Lock(1));
    Given("sys_getSIMNetworkRejectCode").Writes(33);
    EXPECT_EQ(Json(), R"({"statusBarSimStatus":"Ready"})");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kSim + " - BEGIN"), "sys_getSIMStatus()", "sys_getNetworkSIMLockStatus()",
               "sys_getSIMNetworkRejectCode()",
               Failure(kSim + " - sys_getNetworkSIMLockStatus failed, returned error code [12]. "
                              "Try sysintcli getNetworkSIMLockStatus from command line."),
               Log(7, kSim + " - END")}));
}

TEST_F(SimStatusTest, FailedRejectCodeLeavesOnlyItsOwnKeyOut) {
    Given("sys_getSIMStatus").Writes(7);
    Given("sys_getNetworkSIMLockStatus").Writes(Lock(1));
    Given("sys_getSIMNetworkRejectCode").Returns(13).Writes(33);
    EXPECT_EQ(Json(), R"({"statusBarSimCarrierBlockedStatus":"1","statusBarSimStatus":"Ready"})");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kSim + " - BEGIN"), "sys_getSIMStatus()", "sys_getNetworkSIMLockStatus()",
               "sys_getSIMNetworkRejectCode()",
               Failure(kSim + " sys_getSIMNetworkRejectCode failed, returned error code [13]. Try "
                              "sysintcli getSIMNetworkRejectCode from command line."),
               Log(7, kSim + " - END")}));
}

TEST_F(SimStatusTest, FailedLockAndRejectCodeAreOneFailureInTheLog) {
    Given("sys_getSIMStatus").Writes(6);
    Given("sys_getNetworkSIMLockStatus").Returns(12);
    Given("sys_getSIMNetworkRejectCode").Returns(13);
    EXPECT_EQ(Json(), R"({"statusBarSimStatus":"PIN Locked"})");
    EXPECT_EQ(TranscriptText("log 3"),
              Steps({Log(3, kSim + " - sys_getNetworkSIMLockStatus failed, returned error code "
                                   "[12]. Try sysintcli getNetworkSIMLockStatus from command "
                                   "line.")}));
    EXPECT_EQ(CallCount("sys_getSIMNetworkRejectCode"), 1U);
}

}  // namespace
