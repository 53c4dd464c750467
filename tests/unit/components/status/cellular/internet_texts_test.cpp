#include "components/status/cellular/internet_texts.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <string>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"
#include "tests/support/records.h"
#include "tests/support/translations.h"
#include "tests/unit/components/status/status_text_table.h"

using recording::Given;

namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

const std::map<std::int32_t, std::string> kTechnologies = {
    {0, "None"},   {1, "WiFi"},  {2, "GPRS"},          {3, "CDMA 1XRTT"}, {4, "EVDO REV0"},
    {5, "UMTS"},   {6, "HSDPA"}, {7, "EDGE"},          {8, "EVDO REVA"},  {9, "HSUPA"},
    {10, "HSPA+"}, {11, "LTE"},  {12, "HSPA PLUS DC"}, {13, "EVDO REVB"}, {14, "EVDO EHRPD"},
    {15, "WIMAX"}, {16, "LTE+"},
};

TEST(InternetTexts, TechnologyWhereOnlyFiveGDependsOnItsType) {
    for (const std::int32_t fiveGType : {kMin, -1, 0, 1, 2, 3, kMax}) {
        std::map<std::int32_t, std::string> texts = kTechnologies;
        texts[17] = fiveGType == 1 ? "5G UWB" : fiveGType == 2 ? "5G" : "";
        ExpectStatusTexts(
            [=](std::int32_t technology, std::string& text) {
                return GetTechnologyText(technology, text, fiveGType);
            },
            texts);
    }
}

TEST(InternetTexts, TrafficStatus) {
    ExpectStatusTexts(GetTrafficStatusText,
                      {{0, "None"}, {1, "Uplink"}, {2, "Downlink"}, {3, "UplinkDownlink"}});
}

TEST(InternetTexts, AirplaneModeIsOnWhenTheRadioIsOff) {
    ExpectStatusTexts(GetAirplaneModeText, {{0, "AirplaneModeOn"}, {1, "AirplaneModeOff"}});
}

class RoamingTextTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    /// A SIM whose group identifier begins with @p gid.
    static void GivenSim(std::uint8_t gid) {
        recording::Reset();
        sys_subscriber_info_t info{};
        SetText(info.identity, "310480123456789");
        Given("sys_getSubscriberInfo").Writes(info);
        Given("sys_getSIMCarrierGID").Writes(gid).Writes<std::uint8_t>(1);
    }

    /// The roaming texts of a device that has just started are those of @p texts.
    static void ExpectRoamingTexts(const std::map<std::int32_t, std::string>& texts) {
        SubscriberCache cache;
        ExpectStatusTexts([&](std::int32_t indicator,
                              std::string& text) { return GetRoamingText(cache, indicator, text); },
                          texts);
    }
};

TEST_F(RoamingTextTest, EveryIndicatorHasItsTextForMostSims) {
    for (const int gid : {0, 1, 3, 127, 128, 254, 255}) {
        GivenSim(static_cast<std::uint8_t>(gid));
        ExpectRoamingTexts({{0, "None"}, {1, "Domestic"}, {2, "International"}, {3, "Flash"}});
    }
}

TEST_F(RoamingTextTest, SimWhoseGidByteIsTwoDoesNotRoamAtHome) {
    GivenSim(2);
    ExpectRoamingTexts({{0, "None"}, {1, "None"}, {2, "International"}, {3, "Flash"}});
}

TEST_F(RoamingTextTest, WithoutSubscriberEveryIndicatorHasItsText) {
    ExpectRoamingTexts({{0, "None"}, {1, "Domestic"}, {2, "International"}, {3, "Flash"}});
    EXPECT_EQ(recording::CallCount("sys_getSIMCarrierGID"), 0U);
}

class PreferredNetworkTextTest : public testing::Test {
  protected:
    void SetUp() override {
        translations::Reset();
        translations::Give("webui", "wwan_settings_preferred_network_lte_cdma_text", "LTE/CDMA");
        translations::Give("webui", "wwan_settings_preferred_network_gsm_umts_text", "GSM/UMTS");
        translations::Give("webui", "wwan_settings_preferred_network_global_text", "Global");
    }
    void TearDown() override { translations::Reset(); }

    static std::string TextOf(std::int32_t technologies) {
        std::string text = "replaced";
        EXPECT_EQ(GetPreferredNetworkText(technologies, text), 0) << technologies;
        return text;
    }
};

TEST_F(PreferredNetworkTextTest, TwoSetsHaveANameAndEveryOtherIsGlobal) {
    const std::set<std::int32_t> lteCdma = {4, 8, 16, 28};
    const std::set<std::int32_t> gsmUmts = {1, 2, 3};
    for (std::int32_t technologies = -3; technologies <= 64; ++technologies) {
        const std::string expected = lteCdma.contains(technologies)   ? "LTE/CDMA"
                                     : gsmUmts.contains(technologies) ? "GSM/UMTS"
                                                                      : "Global";
        EXPECT_EQ(TextOf(technologies), expected) << technologies;
    }
    EXPECT_EQ(TextOf(kMin), "Global");
    EXPECT_EQ(TextOf(kMax), "Global");
}

TEST_F(PreferredNetworkTextTest, WithoutTranslationItIsTheMessageId) {
    translations::Reset();
    EXPECT_EQ(TextOf(16), "wwan_settings_preferred_network_lte_cdma_text");
    EXPECT_EQ(TextOf(1), "wwan_settings_preferred_network_gsm_umts_text");
    EXPECT_EQ(TextOf(0), "wwan_settings_preferred_network_global_text");
}

}  // namespace
