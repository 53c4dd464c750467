#include "components/status/cellular/internet_texts.h"

#include "framework/text_domain.h"
#include "framework/value_text.h"
#include "platform/sysint.h"

namespace {

/// Group identifier of the carrier whose domestic roaming is not shown.
constexpr std::uint8_t kGidWithoutDomesticRoaming = 2;

// 5G is not in the table, because its text depends on its type.
constexpr ValueText kTechnologyTexts[] = {
    {SYS_TECHNOLOGY_NONE, "None"},
    {SYS_TECHNOLOGY_WIFI, "WiFi"},
    {SYS_TECHNOLOGY_GPRS, "GPRS"},
    {SYS_TECHNOLOGY_CDMA_1XRTT, "CDMA 1XRTT"},
    {SYS_TECHNOLOGY_EVDO_REV0, "EVDO REV0"},
    {SYS_TECHNOLOGY_UMTS, "UMTS"},
    {SYS_TECHNOLOGY_HSDPA, "HSDPA"},
    {SYS_TECHNOLOGY_EDGE, "EDGE"},
    {SYS_TECHNOLOGY_EVDO_REVA, "EVDO REVA"},
    {SYS_TECHNOLOGY_HSUPA, "HSUPA"},
    {SYS_TECHNOLOGY_HSPA_PLUS, "HSPA+"},
    {SYS_TECHNOLOGY_LTE, "LTE"},
    {SYS_TECHNOLOGY_HSPA_PLUS_DC, "HSPA PLUS DC"},
    {SYS_TECHNOLOGY_EVDO_REVB, "EVDO REVB"},
    {SYS_TECHNOLOGY_EVDO_EHRPD, "EVDO EHRPD"},
    {SYS_TECHNOLOGY_WIMAX, "WIMAX"},
    {SYS_TECHNOLOGY_LTE_PLUS, "LTE+"},
};

constexpr ValueText kFiveGTexts[] = {
    {SYS_5G_ULTRA_WIDEBAND, "5G UWB"},
    {SYS_5G_OTHER, "5G"},
};

constexpr ValueText kRoamingTexts[] = {
    {SYS_ROAMING_NONE, "None"},
    {SYS_ROAMING_DOMESTIC, "Domestic"},
    {SYS_ROAMING_INTERNATIONAL, "International"},
    {SYS_ROAMING_FLASH, "Flash"},
};

constexpr ValueText kTrafficStatusTexts[] = {
    {SYS_TRAFFIC_NONE, "None"},
    {SYS_TRAFFIC_UPLINK, "Uplink"},
    {SYS_TRAFFIC_DOWNLINK, "Downlink"},
    {SYS_TRAFFIC_BOTH, "UplinkDownlink"},
};

constexpr ValueText kAirplaneModeTexts[] = {
    {1, "AirplaneModeOff"},
    {0, "AirplaneModeOn"},
};

}  // namespace

int GetTechnologyText(std::int32_t technology, std::string& text, std::int32_t fiveGType) {
    if (technology == SYS_TECHNOLOGY_5G) {
        text.clear();
        (void)FindText(kFiveGTexts, fiveGType, text);
        return kTextSet;
    }
    return FindText(kTechnologyTexts, technology, text);
}

int GetRoamingText(SubscriberCache& subscriber, std::int32_t roamingIndicator, std::string& text) {
    RefreshSubscriberInfo(subscriber);
    subscriber.RefreshGid();
    if (roamingIndicator == SYS_ROAMING_DOMESTIC &&
        subscriber.Gid() == kGidWithoutDomesticRoaming) {
        roamingIndicator = SYS_ROAMING_NONE;
    }
    return FindText(kRoamingTexts, roamingIndicator, text);
}

int GetTrafficStatusText(std::int32_t trafficStatus, std::string& text) {
    return FindText(kTrafficStatusTexts, trafficStatus, text);
}

int GetAirplaneModeText(std::int32_t radioEnabled, std::string& text) {
    return FindText(kAirplaneModeTexts, radioEnabled, text);
}

int GetPreferredNetworkText(std::int32_t enabledTechnologies, std::string& text) {
    const char* id = nullptr;
    switch (enabledTechnologies) {
        case 4:
        case 8:
        case 16:
        case 28:
            id = "wwan_settings_preferred_network_lte_cdma_text";
            break;
        case 1:
        case 2:
        case 3:
            id = "wwan_settings_preferred_network_gsm_umts_text";
            break;
        default:
            id = "wwan_settings_preferred_network_global_text";
            break;
    }
    text = Translated(id);
    return kTextSet;
}
