// Which calls the band texts make, in which order, and what is logged.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bindings/recording/recording.h"
#include "components/band/band_combination.h"
#include "platform/sysint.h"
#include "tests/support/transcript.h"
#include "tests/support/translations.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

constexpr int kFailed = 12;

const std::string kBands =
    " - virtual PageError BandCombination::GetBandCombinationString(std::__cxx11::string&)";
const std::string kBandwidths =
    " - virtual PageError BandCombination::GetBandwidthString(std::__cxx11::string&)";
const std::string kBand3G = " - void BandCombination::Get3GBandValue(std::__cxx11::string&)";
const std::string kBand4G = " - void BandCombination::Get4GBandValue(std::__cxx11::string&)";
const std::string kBand5G = " - void BandCombination::Get5GBandValue(std::__cxx11::string&)";
const std::string kMode5G = " - void BandCombination::Get5GMode(sys_wan_5g_mode_e&)";
const std::string kText3G = " - void BandCombination::GetThreeGBandString(std::__cxx11::string&)";
const std::string kText4G = " - void BandCombination::GetFourGBandString(std::__cxx11::string&)";
const std::string kText5G =
    " - void BandCombination::GetFiveGBandString(int, std::__cxx11::string&)";
const std::string kBandwidth = " - void BandCombination::GetBandwidth(std::__cxx11::string&)";
const std::string kBandwidth5G =
    " - void BandCombination::Get5GBandwidth(int, std::__cxx11::string&)";

Step Begin(const std::string& signature) {
    return Log(7, signature + "- BEGIN");
}

Step End(const std::string& signature) {
    return Log(7, signature + "- END ");
}

Step EndOfOperation(const std::string& signature) {
    return Log(7, signature + "- END returning 0");
}

Step Technology(const std::string& signature, int technology) {
    return Log(7, signature + " - technology: [" + std::to_string(technology) + "]");
}

Step NoFiveG(const std::string& signature) {
    return Log(7, signature + " - 5G is not available.");
}

class BandCombinationLogTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        translations::Reset();
    }

    static void GivenTechnology(std::int32_t technology) {
        Given("sys_getSIMStatus").Writes<int>(SYS_SIM_READY);
        sys_cellular_service_stats_t stats{};
        stats.technology = technology;
        Given("sys_getCellularServiceStats").Writes(stats);
    }

    static void GivenFiveG(sys_wan_5g_mode_e mode) {
        GivenTechnology(SYS_TECHNOLOGY_5G);
        Given("sys_getCellular5GMode").Writes(mode);
        Given("sys_getCellular5GBand").Writes(41);
        Given("sys_getCellularBand").Writes(2);
        Given("sys_get5GBandWidth").Writes(100);
        Given("sys_getCABandWidth").Writes(20);
    }

    static std::string BandTranscript() {
        std::string text;
        BandCombination().GetBandCombinationString(text);
        return TranscriptText();
    }

    static std::string BandwidthTranscript() {
        std::string text;
        BandCombination().GetBandwidthString(text);
        return TranscriptText();
    }
};

TEST_F(BandCombinationLogTest, CreationAndDestructionAreSilent) {
    (void)BandCombination();
    EXPECT_EQ(TranscriptText(), "");
}

TEST_F(BandCombinationLogTest, BandTextWithoutReadySim) {
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_NOT_FOUND);
    EXPECT_EQ(BandTranscript(),
              Steps({Begin(kBands), "sys_getSIMStatus()", EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextWithoutReadySim) {
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_NOT_FOUND);
    EXPECT_EQ(BandwidthTranscript(),
              Steps({Begin(kBandwidths), "sys_getSIMStatus()", EndOfOperation(kBandwidths)}));
}

TEST_F(BandCombinationLogTest, BandTextWithFailedSimStatus) {
    Given("sys_getSIMStatus").Returns(kFailed);
    EXPECT_EQ(BandTranscript(),
              Steps({Begin(kBands), "sys_getSIMStatus()",
                     Failure(kBands + " - sys_getSIMStatus failed, returned error code 12. Try "
                                      "sysintcli getSIMStatus from command line."),
                     EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextWithFailedSimStatus) {
    Given("sys_getSIMStatus").Returns(kFailed);
    EXPECT_EQ(BandwidthTranscript(),
              Steps({Begin(kBandwidths), "sys_getSIMStatus()",
                     Failure(kBandwidths + " - sys_getSIMStatus failed, returned error code 12. "
                                           "Try sysintcli getSIMStatus from command line."),
                     EndOfOperation(kBandwidths)}));
}

TEST_F(BandCombinationLogTest, BandTextWithFailedStatisticsNamesTheStatusCall) {
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_READY);
    Given("sys_getCellularServiceStats").Returns(kFailed);
    EXPECT_EQ(
        BandTranscript(),
        Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
               Failure(kBands + " - sys_getCellularServiceStatus failed, returned error code 12. "
                                "Try sysintcli getCellularServiceStatus from command line."),
               EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextWithFailedStatisticsNamesTheStatusCall) {
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_READY);
    Given("sys_getCellularServiceStats").Returns(kFailed);
    EXPECT_EQ(BandwidthTranscript(),
              Steps({Begin(kBandwidths), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Failure(kBandwidths +
                             " - sys_getCellularServiceStatus failed, returned error code 12. Try "
                             "sysintcli getCellularServiceStatus from command line."),
                     EndOfOperation(kBandwidths)}));
}

TEST_F(BandCombinationLogTest, BandTextOfTechnologyWithoutBands) {
    GivenTechnology(SYS_TECHNOLOGY_WIMAX);
    EXPECT_EQ(BandTranscript(),
              Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBands, 15), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextOfTechnologyWithoutBands) {
    GivenTechnology(SYS_TECHNOLOGY_NONE);
    EXPECT_EQ(BandwidthTranscript(),
              Steps({Begin(kBandwidths), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBandwidths, 0), EndOfOperation(kBandwidths)}));
}

TEST_F(BandCombinationLogTest, BandTextOfThirdGeneration) {
    GivenTechnology(SYS_TECHNOLOGY_UMTS);
    Given("sys_getCellular3GBand").Writes(8);
    EXPECT_EQ(BandTranscript(), Steps({Begin(kBands), "sys_getSIMStatus()",
                                       "sys_getCellularServiceStats()", Technology(kBands, 5),
                                       Begin(kText3G), Begin(kBand3G), "sys_getCellular3GBand()",
                                       End(kBand3G), End(kText3G), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandTextOfThirdGenerationWithFailedBand) {
    GivenTechnology(SYS_TECHNOLOGY_UMTS);
    Given("sys_getCellular3GBand").Returns(kFailed);
    EXPECT_EQ(
        BandTranscript(),
        Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
               Technology(kBands, 5), Begin(kText3G), Begin(kBand3G), "sys_getCellular3GBand()",
               Failure(kBand3G + " - sys_getCellular3GBand failed returning error code 12, "
                                 "try sysinicli getCellular3GBand on command line "),
               End(kBand3G), End(kText3G), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandTextOfLte) {
    GivenTechnology(SYS_TECHNOLOGY_LTE);
    Given("sys_getCellularBand").Writes(66);
    EXPECT_EQ(BandTranscript(),
              Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBands, 11), Begin(kText4G), Begin(kBand4G),
                     "sys_getCellularBand()", End(kBand4G), End(kText4G), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandTextOfLteWithFailedBand) {
    GivenTechnology(SYS_TECHNOLOGY_LTE_PLUS);
    Given("sys_getCellularBand").Returns(kFailed);
    EXPECT_EQ(
        BandTranscript(),
        Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
               Technology(kBands, 16), Begin(kText4G), Begin(kBand4G), "sys_getCellularBand()",
               Failure(kBand4G + " - sys_getCellularBand failed returning error code 12, try "
                                 "sysinicli getCellularBand on command line "),
               End(kBand4G), End(kText4G), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandTextOfStandaloneFiveG) {
    GivenFiveG(SYS_WAN_5G_STANDALONE);
    EXPECT_EQ(BandTranscript(),
              Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBands, 17), Begin(kMode5G), "sys_getCellular5GMode()",
                     End(kMode5G), Begin(kText5G), Begin(kBand5G), "sys_getCellular5GBand()",
                     End(kBand5G), End(kText5G), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandTextOfStandaloneFiveGWithFailedBand) {
    GivenTechnology(SYS_TECHNOLOGY_5G);
    Given("sys_getCellular5GMode").Writes(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Returns(kFailed);
    EXPECT_EQ(BandTranscript(),
              Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBands, 17), Begin(kMode5G), "sys_getCellular5GMode()",
                     End(kMode5G), Begin(kText5G), Begin(kBand5G), "sys_getCellular5GBand()",
                     Failure(kBand5G + " - sys_getCellular5GBand failed returning error code 12, "
                                       "try sysinicli getCellular5GBand on command line "),
                     End(kBand5G), End(kText5G), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandTextOfNonStandaloneFiveGReadsTheFiveGBandFirst) {
    GivenFiveG(SYS_WAN_5G_NON_STANDALONE);
    EXPECT_EQ(BandTranscript(),
              Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBands, 17), Begin(kMode5G), "sys_getCellular5GMode()",
                     End(kMode5G), Begin(kText5G), Begin(kBand5G), "sys_getCellular5GBand()",
                     End(kBand5G), Begin(kText4G), Begin(kBand4G), "sys_getCellularBand()",
                     End(kBand4G), End(kText4G), End(kText5G), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandTextWithoutFiveG) {
    GivenFiveG(SYS_WAN_5G_NONE);
    EXPECT_EQ(BandTranscript(),
              Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBands, 17), Begin(kMode5G), "sys_getCellular5GMode()",
                     End(kMode5G), Begin(kText5G), Begin(kBand5G), "sys_getCellular5GBand()",
                     End(kBand5G), NoFiveG(kText5G), End(kText5G), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandTextWithFailedFiveGMode) {
    GivenTechnology(SYS_TECHNOLOGY_5G);
    Given("sys_getCellular5GMode").Returns(kFailed);
    Given("sys_getCellular5GBand").Writes(41);
    EXPECT_EQ(BandTranscript(),
              Steps({Begin(kBands), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBands, 17), Begin(kMode5G), "sys_getCellular5GMode()",
                     Failure(kMode5G + " - sys_getCellular5GMode failed returning error code 12, "
                                       "try sysinicli getCellular5GMode on command line "),
                     End(kMode5G), Begin(kText5G), Begin(kBand5G), "sys_getCellular5GBand()",
                     End(kBand5G), NoFiveG(kText5G), End(kText5G), EndOfOperation(kBands)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextOfLteAndEarlier) {
    for (const int technology : {5, 11, 16}) {
        recording::Reset();
        GivenTechnology(technology);
        Given("sys_getCABandWidth").Writes(20);
        EXPECT_EQ(BandwidthTranscript(),
                  Steps({Begin(kBandwidths), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                         Technology(kBandwidths, technology), Begin(kBandwidth),
                         "sys_getCABandWidth()", End(kBandwidth), EndOfOperation(kBandwidths)}));
    }
}

TEST_F(BandCombinationLogTest, BandwidthTextOfLteWithFailedBandwidth) {
    GivenTechnology(SYS_TECHNOLOGY_LTE);
    Given("sys_getCABandWidth").Returns(kFailed);
    EXPECT_EQ(
        BandwidthTranscript(),
        Steps({Begin(kBandwidths), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
               Technology(kBandwidths, 11), Begin(kBandwidth), "sys_getCABandWidth()",
               Failure(kBandwidth + " - sys_getCABandwidth failed returning error code 12, try "
                                    "sysinicli getCABandwidth on command line "),
               End(kBandwidth), EndOfOperation(kBandwidths)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextOfStandaloneFiveG) {
    GivenFiveG(SYS_WAN_5G_STANDALONE);
    EXPECT_EQ(BandwidthTranscript(),
              Steps({Begin(kBandwidths), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBandwidths, 17), Begin(kMode5G), "sys_getCellular5GMode()",
                     End(kMode5G), Begin(kBandwidth5G), Begin(kBand5G), "sys_getCellular5GBand()",
                     End(kBand5G), "sys_get5GBandWidth()", Log(7, kBandwidth5G + "- END"),
                     EndOfOperation(kBandwidths)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextOfStandaloneFiveGWithFailedBandwidthNamesTheLteCall) {
    GivenTechnology(SYS_TECHNOLOGY_5G);
    Given("sys_getCellular5GMode").Writes(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Writes(41);
    Given("sys_get5GBandWidth").Returns(kFailed);
    EXPECT_EQ(
        BandwidthTranscript(),
        Steps({Begin(kBandwidths), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
               Technology(kBandwidths, 17), Begin(kMode5G), "sys_getCellular5GMode()", End(kMode5G),
               Begin(kBandwidth5G), Begin(kBand5G), "sys_getCellular5GBand()", End(kBand5G),
               "sys_get5GBandWidth()",
               Failure(kBandwidth5G + " - sys_getCABandwidth failed returning error code 12, try "
                                      "sysinicli getCABandwidth on command line "),
               Log(7, kBandwidth5G + "- END"), EndOfOperation(kBandwidths)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextOfNonStandaloneFiveGReadsTheFiveGBandwidthFirst) {
    GivenFiveG(SYS_WAN_5G_NON_STANDALONE);
    EXPECT_EQ(
        BandwidthTranscript(),
        Steps({Begin(kBandwidths), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
               Technology(kBandwidths, 17), Begin(kMode5G), "sys_getCellular5GMode()", End(kMode5G),
               Begin(kBandwidth5G), Begin(kBand5G), "sys_getCellular5GBand()", End(kBand5G),
               "sys_get5GBandWidth()", Begin(kBandwidth), "sys_getCABandWidth()", End(kBandwidth),
               Log(7, kBandwidth5G + "- END"), EndOfOperation(kBandwidths)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextWithoutFiveG) {
    GivenFiveG(SYS_WAN_5G_NONE);
    EXPECT_EQ(BandwidthTranscript(),
              Steps({Begin(kBandwidths), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBandwidths, 17), Begin(kMode5G), "sys_getCellular5GMode()",
                     End(kMode5G), Begin(kBandwidth5G), Begin(kBand5G), "sys_getCellular5GBand()",
                     End(kBand5G), "sys_get5GBandWidth()", NoFiveG(kBandwidth5G),
                     Log(7, kBandwidth5G + "- END"), EndOfOperation(kBandwidths)}));
}

TEST_F(BandCombinationLogTest, BandwidthTextWithFailedFiveGMode) {
    GivenTechnology(SYS_TECHNOLOGY_5G);
    Given("sys_getCellular5GMode").Returns(kFailed);
    Given("sys_getCellular5GBand").Writes(41);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(BandwidthTranscript(),
              Steps({Begin(kBandwidths), "sys_getSIMStatus()", "sys_getCellularServiceStats()",
                     Technology(kBandwidths, 17), Begin(kMode5G), "sys_getCellular5GMode()",
                     Failure(kMode5G + " - sys_getCellular5GMode failed returning error code 12, "
                                       "try sysinicli getCellular5GMode on command line "),
                     End(kMode5G), Begin(kBandwidth5G), Begin(kBand5G), "sys_getCellular5GBand()",
                     End(kBand5G), "sys_get5GBandWidth()", NoFiveG(kBandwidth5G),
                     Log(7, kBandwidth5G + "- END"), EndOfOperation(kBandwidths)}));
}

}  // namespace
