#include <limits>

#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kWifi = " - void StatusComponent::GetWifiStatus(CTPP::CDT&)";
const std::string kGuest = " - void StatusComponent::GetGuestWifiStatus(CTPP::CDT&)";
const std::string kProfile = "sys_getWiFiGuestProfileEnabled";

class WifiStatusTest : public StatusGroupTest {
  protected:
    std::string Json() {
        component->GetWifiStatus(statusData);
        return ToJson(statusData);
    }
};

TEST_F(WifiStatusTest, StateIsAnIntegerAndTheMaximumOfClientsAText) {
    Given("sys_getWiFiEnabled").Writes(1);
    Given("sys_getWiFiMaxClients").Writes(15U);
    EXPECT_EQ(Json(), R"({"statusBarMaxWiFiClientListSize":"15","statusBarWiFiEnabled":1})");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kWifi + " - BEGIN"), "sys_getWiFiEnabled()",
                                       Log(7, kWifi + " - wifi enabled status: 1"),
                                       "sys_getWiFiMaxClients()", Log(7, kWifi + " - END")}));
}

TEST_F(WifiStatusTest, AnyOtherStateThanZeroIsWrittenAsOneAndLoggedAsItIs) {
    Given("sys_getWiFiEnabled").Writes(-4);
    Given("sys_getWiFiMaxClients").Writes(0U);
    EXPECT_EQ(Json(), R"({"statusBarMaxWiFiClientListSize":"0","statusBarWiFiEnabled":1})");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kWifi + " - BEGIN"), "sys_getWiFiEnabled()",
                                       Log(7, kWifi + " - wifi enabled status: -4"),
                                       "sys_getWiFiMaxClients()", Log(7, kWifi + " - END")}));
}

TEST_F(WifiStatusTest, MaximumOfClientsIsUnsigned) {
    Given("sys_getWiFiEnabled").Writes(0);
    Given("sys_getWiFiMaxClients").Writes(std::numeric_limits<unsigned int>::max());
    EXPECT_EQ(Json(),
              R"({"statusBarMaxWiFiClientListSize":"4294967295","statusBarWiFiEnabled":0})");
}

TEST_F(WifiStatusTest, FailedStateLeavesItsKeyOutAndTheMaximumOfClientsIsStillRead) {
    Given("sys_getWiFiEnabled").Returns(3).Writes(1);
    Given("sys_getWiFiMaxClients").Writes(15U);
    EXPECT_EQ(Json(), R"({"statusBarMaxWiFiClientListSize":"15"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kWifi + " - BEGIN"), "sys_getWiFiEnabled()",
                     Failure(kWifi + " - sys_getWiFiEnabled failed, returned error code [3]. Try "
                                     "sysintcli getWiFiEnabled from command line."),
                     "sys_getWiFiMaxClients()", Log(7, kWifi + " - END")}));
}

TEST_F(WifiStatusTest, FailedMaximumOfClientsLeavesItsKeyOut) {
    Given("sys_getWiFiEnabled").Writes(1);
    Given("sys_getWiFiMaxClients").Returns(3);
    EXPECT_EQ(Json(), R"({"statusBarWiFiEnabled":1})");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kWifi + " - BEGIN"), "sys_getWiFiEnabled()",
               Log(7, kWifi + " - wifi enabled status: 1"), "sys_getWiFiMaxClients()",
               Failure(kWifi + " - sys_getWiFiMaxClients failed, returned error code [3]. Try "
                               "sysintcli getWiFiMaxClients from command line."),
               Log(7, kWifi + " - END")}));
}

TEST_F(WifiStatusTest, MaximumOfClientsThatIsNotWrittenIsThirty) {
    Given("sys_getWiFiEnabled").Returns(SYS_SUCCESS);
    Given("sys_getWiFiMaxClients").Returns(SYS_SUCCESS);
    EXPECT_EQ(Json(), R"({"statusBarMaxWiFiClientListSize":"30","statusBarWiFiEnabled":0})");
}

class GuestWifiStatusTest : public StatusGroupTest {
  protected:
    std::string Json() {
        component->GetGuestWifiStatus(statusData);
        return ToJson(statusData);
    }

    static Step FirstFailure(int code) {
        return Failure(kGuest + " - sys_getWiFiGuestProfileEnabled failed, returned error code [" +
                       std::to_string(code) +
                       "]. Try sysintcli getWiFiGuestProfileEnabled from command line for 2.4GHZ "
                       "guest profile");
    }

    static Step SecondFailure(int code) {
        return Failure(kGuest + " - sys_getWiFiGuestProfileEnabled failed, returned error code [" +
                       std::to_string(code) +
                       "]. Try sysintcli getWiFiGuestProfileEnabled from command line for 5GHZ "
                       "guest profile");
    }
};

TEST_F(GuestWifiStatusTest, FirstProfileEnabledIsEnoughAndTheSecondIsNotAsked) {
    Given(kProfile).Writes(1);
    EXPECT_EQ(Json(), R"({"statusBarGuestWifiEnabled":1})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGuest + " - BEGIN"), "sys_getWiFiGuestProfileEnabled(profile 1)",
                     Log(7, kGuest + " - guest 2.4 GHz wifi enabled status: 1"),
                     Log(7, kGuest + " - END")}));
}

TEST_F(GuestWifiStatusTest, SecondProfileEnabledIsEnough) {
    Given(kProfile).Writes(0);
    Given(kProfile).Writes(6);
    EXPECT_EQ(Json(), R"({"statusBarGuestWifiEnabled":1})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGuest + " - BEGIN"), "sys_getWiFiGuestProfileEnabled(profile 1)",
                     Log(7, kGuest + " - guest 2.4 GHz wifi enabled status: 0"),
                     "sys_getWiFiGuestProfileEnabled(profile 2)",
                     Log(7, kGuest + " - guest 5 GHz wifi enabled status: 6"),
                     Log(7, kGuest + " - END")}));
}

TEST_F(GuestWifiStatusTest, BothProfilesDisabledIsZero) {
    Given(kProfile).Writes(0);
    EXPECT_EQ(Json(), R"({"statusBarGuestWifiEnabled":0})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGuest + " - BEGIN"), "sys_getWiFiGuestProfileEnabled(profile 1)",
                     Log(7, kGuest + " - guest 2.4 GHz wifi enabled status: 0"),
                     "sys_getWiFiGuestProfileEnabled(profile 2)",
                     Log(7, kGuest + " - guest 5 GHz wifi enabled status: 0"),
                     Log(7, kGuest + " - END")}));
}

TEST_F(GuestWifiStatusTest, FailedFirstProfileIsLoggedAndTheSecondDecides) {
    Given(kProfile).Returns(21).Writes(1);
    Given(kProfile).Writes(1);
    EXPECT_EQ(Json(), R"({"statusBarGuestWifiEnabled":1})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGuest + " - BEGIN"), "sys_getWiFiGuestProfileEnabled(profile 1)",
                     FirstFailure(21), "sys_getWiFiGuestProfileEnabled(profile 2)",
                     Log(7, kGuest + " - guest 5 GHz wifi enabled status: 1"),
                     Log(7, kGuest + " - END")}));
}

TEST_F(GuestWifiStatusTest, ValueOfAFailedFirstProfileDoesNotReachTheSecond) {
    Given(kProfile).Returns(21).Writes(1);
    Given(kProfile).Returns(SYS_SUCCESS);
    EXPECT_EQ(Json(), R"({"statusBarGuestWifiEnabled":0})");
}

TEST_F(GuestWifiStatusTest, ProfileThatIsNotWrittenIsDisabled) {
    Given(kProfile).Returns(SYS_SUCCESS);
    EXPECT_EQ(Json(), R"({"statusBarGuestWifiEnabled":0})");
}

TEST_F(GuestWifiStatusTest, FailedSecondProfileIsZero) {
    Given(kProfile).Writes(0);
    Given(kProfile).Returns(22).Writes(1);
    EXPECT_EQ(Json(), R"({"statusBarGuestWifiEnabled":0})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGuest + " - BEGIN"), "sys_getWiFiGuestProfileEnabled(profile 1)",
                     Log(7, kGuest + " - guest 2.4 GHz wifi enabled status: 0"),
                     "sys_getWiFiGuestProfileEnabled(profile 2)", SecondFailure(22),
                     Log(7, kGuest + " - END")}));
}

TEST_F(GuestWifiStatusTest, BothProfilesFailedIsZero) {
    Given(kProfile).Returns(21);
    Given(kProfile).Returns(22);
    EXPECT_EQ(Json(), R"({"statusBarGuestWifiEnabled":0})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGuest + " - BEGIN"), "sys_getWiFiGuestProfileEnabled(profile 1)",
                     FirstFailure(21), "sys_getWiFiGuestProfileEnabled(profile 2)",
                     SecondFailure(22), Log(7, kGuest + " - END")}));
}

}  // namespace
