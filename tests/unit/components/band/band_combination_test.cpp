// Which text results from which bands and bandwidths.
#include "components/band/band_combination.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"
#include "tests/support/translations.h"

using recording::CallCount;
using recording::Given;

namespace {

constexpr int kFailed = 5;

class BandCombinationTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        translations::Reset();
        translations::Give("webui", "webui_app_megahertz_text", "MHz");
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
    }

    /// The text that the operation makes of @p text.
    std::string Bands(std::string text = "") {
        EXPECT_EQ(bandCombination.GetBandCombinationString(text), PAGE_ERROR_NONE);
        return text;
    }

    std::string Bandwidths(std::string text = "") {
        EXPECT_EQ(bandCombination.GetBandwidthString(text), PAGE_ERROR_NONE);
        return text;
    }

    BandCombination bandCombination;
};

TEST_F(BandCombinationTest, WithoutReadySimBothTextsAreADashAndTheStatisticsAreNotRead) {
    for (const int status : {0, 1, 2, 3, 4, 5, 6, 8, -1}) {
        recording::Reset();
        Given("sys_getSIMStatus").Writes(status);
        EXPECT_EQ(Bands(), "-") << status;
        EXPECT_EQ(Bandwidths(), "-") << status;
        EXPECT_EQ(CallCount("sys_getCellularServiceStats"), 0U) << status;
    }
}

TEST_F(BandCombinationTest, WithoutReadySimTheDashReplacesTheText) {
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_PIN_LOCKED);
    EXPECT_EQ(Bands("old"), "-");
    EXPECT_EQ(Bandwidths("old"), "-");
}

TEST_F(BandCombinationTest, SimStatusThatWritesNothingCountsAsNotReady) {
    Given("sys_getSIMStatus").Returns(SYS_SUCCESS);
    EXPECT_EQ(Bands(), "-");
    EXPECT_EQ(Bandwidths(), "-");
}

TEST_F(BandCombinationTest, FailedSimStatusLeavesTheTextsAsTheyWere) {
    Given("sys_getSIMStatus").Returns(kFailed).Writes<int>(SYS_SIM_READY);
    EXPECT_EQ(Bands("old"), "old");
    EXPECT_EQ(Bandwidths("old"), "old");
    EXPECT_EQ(CallCount("sys_getCellularServiceStats"), 0U);
}

TEST_F(BandCombinationTest, FailedStatisticsLeaveTheTextsAsTheyWere) {
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_READY);
    sys_cellular_service_stats_t stats{};
    stats.technology = SYS_TECHNOLOGY_LTE;
    Given("sys_getCellularServiceStats").Returns(kFailed).Writes(stats);
    EXPECT_EQ(Bands("old"), "old");
    EXPECT_EQ(Bandwidths("old"), "old");
    EXPECT_EQ(CallCount("sys_getCellularBand"), 0U);
    EXPECT_EQ(CallCount("sys_getCABandWidth"), 0U);
}

TEST_F(BandCombinationTest, TechnologyWithoutBandsMakesBothTextsADash) {
    for (const int technology : {0, 1, 15, 18, 99, -1}) {
        recording::Reset();
        GivenTechnology(technology);
        EXPECT_EQ(Bands("old"), "-") << technology;
        EXPECT_EQ(Bandwidths("old"), "-") << technology;
    }
}

TEST_F(BandCombinationTest, SecondAndThirdGenerationShowTheirBandAfterB) {
    for (const int technology : {2, 3, 4, 5, 6, 7, 8, 9, 10, 12, 13, 14}) {
        recording::Reset();
        GivenTechnology(technology);
        Given("sys_getCellular3GBand").Writes(8);
        Given("sys_getCABandWidth").Writes(5);
        EXPECT_EQ(Bands(), "B8") << technology;
        EXPECT_EQ(Bandwidths(), "5 MHz") << technology;
        EXPECT_EQ(CallCount("sys_getCellularBand"), 0U) << technology;
        EXPECT_EQ(CallCount("sys_getCellular5GMode"), 0U) << technology;
    }
}

TEST_F(BandCombinationTest, ThirdGenerationWithFailedBandIsOnlyTheLetterB) {
    GivenTechnology(SYS_TECHNOLOGY_UMTS);
    Given("sys_getCellular3GBand").Returns(kFailed).Writes(8);
    EXPECT_EQ(Bands(), "B");
}

TEST_F(BandCombinationTest, LteShowsItsBandAfterBAndTheAggregatedBandwidth) {
    for (const int technology : {SYS_TECHNOLOGY_LTE, SYS_TECHNOLOGY_LTE_PLUS}) {
        recording::Reset();
        GivenTechnology(technology);
        Given("sys_getCellularBand").Writes(66);
        Given("sys_getCABandWidth").Writes(20);
        EXPECT_EQ(Bands(), "B66") << technology;
        EXPECT_EQ(Bandwidths(), "20 MHz") << technology;
        EXPECT_EQ(CallCount("sys_getCellular3GBand"), 0U) << technology;
        EXPECT_EQ(CallCount("sys_getCellular5GMode"), 0U) << technology;
    }
}

TEST_F(BandCombinationTest, LteWithFailedBandIsOnlyTheLetterB) {
    GivenTechnology(SYS_TECHNOLOGY_LTE);
    Given("sys_getCellularBand").Returns(kFailed).Writes(66);
    EXPECT_EQ(Bands(), "B");
}

TEST_F(BandCombinationTest, FailedAggregatedBandwidthAppendsNothing) {
    GivenTechnology(SYS_TECHNOLOGY_LTE);
    Given("sys_getCABandWidth").Returns(kFailed).Writes(20);
    EXPECT_EQ(Bandwidths(), "");
}

TEST_F(BandCombinationTest, TextsAreAppended) {
    GivenTechnology(SYS_TECHNOLOGY_LTE);
    Given("sys_getCellularBand").Writes(66);
    Given("sys_getCABandWidth").Writes(20);
    EXPECT_EQ(Bands("old "), "old B66");
    EXPECT_EQ(Bandwidths("old "), "old 20 MHz");
}

TEST_F(BandCombinationTest, ValueThatIsNotWrittenIsZero) {
    GivenTechnology(SYS_TECHNOLOGY_LTE);
    Given("sys_getCellularBand").Returns(SYS_SUCCESS);
    Given("sys_getCABandWidth").Returns(SYS_SUCCESS);
    EXPECT_EQ(Bands(), "B0");
    EXPECT_EQ(Bandwidths(), "0 MHz");
}

TEST_F(BandCombinationTest, NumbersAreWrittenInFull) {
    GivenTechnology(SYS_TECHNOLOGY_LTE);
    Given("sys_getCellularBand").Writes(std::numeric_limits<int>::min());
    Given("sys_getCABandWidth").Writes(std::numeric_limits<int>::max());
    EXPECT_EQ(Bands(), "B-2147483648");
    EXPECT_EQ(Bandwidths(), "2147483647 MHz");
}

TEST_F(BandCombinationTest, UnitWithoutTranslationIsTheMessageId) {
    translations::Reset();
    GivenTechnology(SYS_TECHNOLOGY_LTE);
    Given("sys_getCABandWidth").Writes(20);
    EXPECT_EQ(Bandwidths(), "20 webui_app_megahertz_text");
}

TEST_F(BandCombinationTest, StandaloneFiveGShowsItsBandAfterN) {
    GivenFiveG(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Writes(77).Writes(0);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(Bands(), "n77");
    EXPECT_EQ(Bandwidths(), "100 MHz");
    EXPECT_EQ(CallCount("sys_getCellularBand"), 0U);
    EXPECT_EQ(CallCount("sys_getCABandWidth"), 0U);
}

TEST_F(BandCombinationTest, StandaloneFiveGWithBandZeroShowsADashAndItsBandwidth) {
    GivenFiveG(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Writes(0).Writes(77);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(Bands(), "-");
    EXPECT_EQ(Bandwidths(), "100 MHz");
}

TEST_F(BandCombinationTest, StandaloneFiveGAppendsItsDash) {
    GivenFiveG(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Writes(0);
    EXPECT_EQ(Bands("old "), "old -");
}

TEST_F(BandCombinationTest, StandaloneFiveGWithFailedBandShowsADashAndItsBandwidth) {
    GivenFiveG(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Returns(kFailed).Writes(77);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(Bands(), "-");
    EXPECT_EQ(Bandwidths(), "100 MHz");
}

TEST_F(BandCombinationTest, StandaloneFiveGWithFailedBandwidthShowsZero) {
    GivenFiveG(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Writes(77);
    Given("sys_get5GBandWidth").Returns(kFailed).Writes(100);
    EXPECT_EQ(Bandwidths(), "0 MHz");
}

TEST_F(BandCombinationTest, NonStandaloneFiveGShowsLteFirst) {
    GivenFiveG(SYS_WAN_5G_NON_STANDALONE);
    Given("sys_getCellularBand").Writes(2);
    Given("sys_getCellular5GBand").Writes(41);
    Given("sys_getCABandWidth").Writes(20);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(Bands(), "B2, n41");
    EXPECT_EQ(Bandwidths(), "20 MHz, 100 MHz");
}

TEST_F(BandCombinationTest, NonStandaloneFiveGWithBandZeroShowsLteAlone) {
    GivenFiveG(SYS_WAN_5G_NON_STANDALONE);
    Given("sys_getCellularBand").Writes(2);
    Given("sys_getCellular5GBand").Writes(0);
    Given("sys_getCABandWidth").Writes(20);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(Bands(), "B2");
    EXPECT_EQ(Bandwidths(), "20 MHz");
}

TEST_F(BandCombinationTest, NonStandaloneFiveGWithFailedBandShowsLteAlone) {
    GivenFiveG(SYS_WAN_5G_NON_STANDALONE);
    Given("sys_getCellularBand").Writes(2);
    Given("sys_getCellular5GBand").Returns(kFailed).Writes(41);
    Given("sys_getCABandWidth").Writes(20);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(Bands(), "B2");
    EXPECT_EQ(Bandwidths(), "20 MHz");
}

TEST_F(BandCombinationTest, NonStandaloneFiveGWithFailedLteKeepsTheFiveGPart) {
    GivenFiveG(SYS_WAN_5G_NON_STANDALONE);
    Given("sys_getCellularBand").Returns(kFailed);
    Given("sys_getCellular5GBand").Writes(41);
    Given("sys_getCABandWidth").Returns(kFailed);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(Bands(), "B, n41");
    EXPECT_EQ(Bandwidths(), ", 100 MHz");
}

TEST_F(BandCombinationTest, NonStandaloneFiveGWithFailedBandwidthShowsZeroForIt) {
    GivenFiveG(SYS_WAN_5G_NON_STANDALONE);
    Given("sys_getCellular5GBand").Writes(41);
    Given("sys_getCABandWidth").Writes(20);
    Given("sys_get5GBandWidth").Returns(kFailed).Writes(100);
    EXPECT_EQ(Bandwidths(), "20 MHz, 0 MHz");
}

TEST_F(BandCombinationTest, FiveGTextsAreAppended) {
    for (const sys_wan_5g_mode_e mode : {SYS_WAN_5G_STANDALONE, SYS_WAN_5G_NON_STANDALONE}) {
        recording::Reset();
        GivenFiveG(mode);
        Given("sys_getCellularBand").Writes(2);
        Given("sys_getCellular5GBand").Writes(41);
        Given("sys_getCABandWidth").Writes(20);
        Given("sys_get5GBandWidth").Writes(100);
        const bool alone = mode == SYS_WAN_5G_STANDALONE;
        EXPECT_EQ(Bands("old "), alone ? "old n41" : "old B2, n41");
        EXPECT_EQ(Bandwidths("old "), alone ? "old 100 MHz" : "old 20 MHz, 100 MHz");
    }
}

TEST_F(BandCombinationTest, FiveGValuesThatAreNotWrittenAreZero) {
    GivenFiveG(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Returns(SYS_SUCCESS);
    Given("sys_get5GBandWidth").Returns(SYS_SUCCESS);
    EXPECT_EQ(Bands(), "-");
    EXPECT_EQ(Bandwidths(), "0 MHz");
}

TEST_F(BandCombinationTest, FiveGModeThatIsNotWrittenIsNoFiveG) {
    GivenTechnology(SYS_TECHNOLOGY_5G);
    Given("sys_getCellular5GMode").Returns(SYS_SUCCESS);
    Given("sys_getCellular5GBand").Writes(77);
    EXPECT_EQ(Bands(), "");
}

TEST_F(BandCombinationTest, TechnologyThatIsNotWrittenIsNone) {
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_READY);
    Given("sys_getCellularServiceStats").Returns(SYS_SUCCESS);
    EXPECT_EQ(Bands(), "-");
    EXPECT_EQ(Bandwidths(), "-");
}

TEST_F(BandCombinationTest, OtherFiveGModesLeaveBothTextsEmpty) {
    for (const std::int32_t mode : {0, 3, -1}) {
        recording::Reset();
        GivenTechnology(SYS_TECHNOLOGY_5G);
        Given("sys_getCellular5GMode").Writes(mode);
        Given("sys_getCellular5GBand").Writes(77);
        Given("sys_get5GBandWidth").Writes(100);
        EXPECT_EQ(Bands(), "") << mode;
        EXPECT_EQ(Bandwidths(), "") << mode;
    }
}

TEST_F(BandCombinationTest, FailedFiveGModeLeavesBothTextsEmpty) {
    GivenTechnology(SYS_TECHNOLOGY_5G);
    Given("sys_getCellular5GMode").Returns(kFailed).Writes(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Writes(77);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(Bands(), "");
    EXPECT_EQ(Bandwidths(), "");
}

TEST_F(BandCombinationTest, NegativeFiveGBandCountsAsABand) {
    GivenFiveG(SYS_WAN_5G_STANDALONE);
    Given("sys_getCellular5GBand").Writes(std::numeric_limits<int>::min());
    EXPECT_EQ(Bands(), "n-2147483648");
}

}  // namespace
