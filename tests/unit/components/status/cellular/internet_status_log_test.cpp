// Which calls the internet group makes, in which order, and what is logged.
#include <vector>

#include "tests/unit/components/status/cellular/internet_status_test.h"

using recording::Failure;
using recording::Given;
using recording::Lines;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kInternet = " - void StatusComponent::GetInternetStatus(CTPP::CDT&)";
const std::string kRefresh = " - int RefreshSubscriberInfo()";
const std::string kGid = " - void GetSIMCarrierGID(uint8_t*, uint8_t*, uint8_t)";
const std::string kBands =
    " - virtual PageError BandCombination::GetBandCombinationString(std::__cxx11::string&)";
const std::string kBandwidths =
    " - virtual PageError BandCombination::GetBandwidthString(std::__cxx11::string&)";

const std::string kReadings =
    Lines({Log(7, kInternet + " - BEGIN"), "sys_getCellularServiceStats()",
           "sys_getCellularDataConnectionStats()", "sys_getRadioEnabled()",
           "sys_getCellularServiceStatus()", "sys_getCellularDataConnectionStatus()"});

const std::string kSubscriber = Lines({Log(7, kRefresh + " - BEGIN"), "sys_getSubscriberInfo()",
                                       Log(7, kRefresh + " - END returning 0")});

const std::string kCarrier = Lines({Log(7, kGid + " - BEGIN"), "sys_getSIMCarrierGID(index 1)",
                                    Log(7, kGid + " - simGid: 186"), Log(7, kGid + " - END")});

const std::string kBandTexts =
    Lines({Log(7, kBands + "- BEGIN"), "sys_getSIMStatus()", Log(7, kBands + "- END returning 0"),
           Log(7, kBandwidths + "- BEGIN"), "sys_getSIMStatus()",
           Log(7, kBandwidths + "- END returning 0")});

const std::string kEnd = Lines({Log(7, kInternet + " - END")});

std::string Technology(int technology) {
    return Lines({Log(7, kInternet + " - wan technology " + std::to_string(technology))});
}

std::string CombinedFailure(const std::vector<int>& codes) {
    return Lines(Failure(
        kInternet + " sys_getCellularServiceStats failed, returned error code [" +
        std::to_string(codes[0]) +
        "], sys_getCellularDataConnectionStats failed, returned error code [" +
        std::to_string(codes[1]) + "], sys_getRadioEnabled failed, returned error code[" +
        std::to_string(codes[2]) + "], sys_getCellularServiceStatus failed, returned error code [" +
        std::to_string(codes[3]) +
        "], sys_getCellularDataAccountStatus failed, returned error code [" +
        std::to_string(codes[4]) + "]"));
}

const std::vector<std::string> kSources = {
    "sys_getCellularServiceStats", "sys_getCellularDataConnectionStats", "sys_getRadioEnabled",
    "sys_getCellularServiceStatus", "sys_getCellularDataConnectionStatus"};

class InternetStatusLog : public InternetStatusTest {
  protected:
    std::string Transcript() {
        Json();
        return TranscriptText();
    }
};

TEST_F(InternetStatusLog, EverythingIsReadThenTheTextsAreMadeThenTheBands) {
    EXPECT_EQ(Transcript(),
              kReadings + Technology(11) + kSubscriber + kCarrier + kBandTexts + kEnd);
}

TEST_F(InternetStatusLog, TheTechnologyIsLoggedByNumberWhetherItHasATextOrNot) {
    for (const int technology : {-1, 0, 17, 18}) {
        Construct({});
        service.technology = technology;
        EXPECT_EQ(Transcript(),
                  kReadings + Technology(technology) + kSubscriber + kCarrier + kBandTexts + kEnd);
    }
}

TEST_F(InternetStatusLog, GidOfAKnownSubscriberIsNotRead) {
    Json();
    recording::Reset();
    EXPECT_EQ(Transcript(), kReadings + Technology(11) + kSubscriber + kBandTexts + kEnd);
}

TEST_F(InternetStatusLog, FailedSubscriber) {
    Given("sys_getSubscriberInfo").Returns(41);
    EXPECT_EQ(Transcript(),
              kReadings + Technology(11) +
                  Steps({Log(7, kRefresh + " - BEGIN"), "sys_getSubscriberInfo()",
                         Failure(kRefresh +
                                 " - sys_getSubscriberInfo failed, returned error code [41]. Try "
                                 "sysintcli getSubscriberInfo from command line."),
                         Log(7, kRefresh + " - END returning 41")}) +
                  kBandTexts + kEnd);
}

TEST_F(InternetStatusLog, FailedGid) {
    Given("sys_getSIMCarrierGID").Returns(42);
    EXPECT_EQ(Transcript(),
              kReadings + Technology(11) + kSubscriber +
                  Steps({Log(7, kGid + " - BEGIN"), "sys_getSIMCarrierGID(index 1)",
                         Failure(kGid + " - sys_getSIMCarrierGID failed, returned error code [42]. "
                                        "Try sysintcli getSIMCarrierGID from command line."),
                         Log(7, kGid + " - END")}) +
                  kBandTexts + kEnd);
}

TEST_F(InternetStatusLog, AccountIsReadLastOfTheReadings) {
    Construct({"sys_getPCOCarrierEnabled"});
    EXPECT_EQ(Transcript(), kReadings + Lines({"sys_getCellularDataAccountStatus()"}) +
                                Technology(11) + kSubscriber + kCarrier + kBandTexts + kEnd);
}

TEST_F(InternetStatusLog, FailedAccountIsSilent) {
    Construct({"sys_getPCOCarrierEnabled"});
    Given("sys_getCellularDataAccountStatus").Returns(9);
    EXPECT_EQ(Transcript(), kReadings + Lines({"sys_getCellularDataAccountStatus()"}) +
                                Technology(11) + kSubscriber + kCarrier + kBandTexts + kEnd);
}

TEST_F(InternetStatusLog, EachFailedSourceHasItsCodeInTheOneLineAndTheRestIsStillRead) {
    for (std::size_t failed = 0; failed < kSources.size(); ++failed) {
        recording::Reset();
        const int code = 61 + static_cast<int>(failed);
        std::vector<int> codes(kSources.size(), 0);
        codes[failed] = code;
        Given(kSources[failed]).Returns(code);
        EXPECT_EQ(Transcript(), kReadings + CombinedFailure(codes) + kEnd) << kSources[failed];
    }
}

TEST_F(InternetStatusLog, AllFailedSourcesHaveTheirCodesInTheOneLine) {
    for (std::size_t failed = 0; failed < kSources.size(); ++failed) {
        Given(kSources[failed]).Returns(-1 - static_cast<int>(failed));
    }
    EXPECT_EQ(Transcript(), kReadings + CombinedFailure({-1, -2, -3, -4, -5}) + kEnd);
}

TEST_F(InternetStatusLog, TheAccountsOwnCodeIsNotInTheLineThatNamesIt) {
    Construct({"sys_getPCOCarrierEnabled"});
    Given("sys_getRadioEnabled").Returns(63);
    Given("sys_getCellularDataAccountStatus").Returns(66);
    EXPECT_EQ(Transcript(), kReadings + Lines({"sys_getCellularDataAccountStatus()"}) +
                                CombinedFailure({0, 0, 63, 0, 0}) + kEnd);
}

TEST_F(InternetStatusLog, PreferredTechnologyIsReadAfterEverythingElse) {
    Configure("ShowNonOrvaneTechnologies", "0");
    Given("sys_getEnabledRadioTechnologies").Writes(16);
    EXPECT_EQ(Transcript(), kReadings + Technology(11) + kSubscriber + kCarrier + kBandTexts +
                                Lines({"sys_getEnabledRadioTechnologies()",
                                       Log(7, kInternet + " - preferred technology 16")}) +
                                kEnd);
}

TEST_F(InternetStatusLog, FailedPreferredTechnologyIsLoggedWithoutTheFunction) {
    Configure("ShowNonOrvaneTechnologies", "0");
    Given("sys_getEnabledRadioTechnologies").Returns(71);
    EXPECT_EQ(Transcript(),
              kReadings + Technology(11) + kSubscriber + kCarrier + kBandTexts +
                  Steps({"sys_getEnabledRadioTechnologies()",
                         Failure(" - sys_getEnabledRadioTechnologies failed, returned error code "
                                 "[71].Try sysintcli getEnabledRadioTechnologies from command "
                                 "line.")}) +
                  kEnd);
}

TEST_F(InternetStatusLog, FailedSimIsLoggedWithTheBandTexts) {
    simStatus.reset();
    Given("sys_getSIMStatus").Returns(72);
    const std::string failure =
        " - sys_getSIMStatus failed, returned error code 72. Try sysintcli getSIMStatus from "
        "command line.";
    EXPECT_EQ(
        Transcript(),
        kReadings + Technology(11) + kSubscriber + kCarrier +
            Steps({Log(7, kBands + "- BEGIN"), "sys_getSIMStatus()", Failure(kBands + failure),
                   Log(7, kBands + "- END returning 0"), Log(7, kBandwidths + "- BEGIN"),
                   "sys_getSIMStatus()", Failure(kBandwidths + failure),
                   Log(7, kBandwidths + "- END returning 0")}) +
            kEnd);
}

}  // namespace
