// Texts of the internet group for numbers of the platform. Each function returns kTextSet, or
// kTextNone for a number that has no text, and then leaves the given string as it was.
#pragma once

#include <cstdint>
#include <string>

#include "components/status/cellular/subscriber_cache.h"

/// @p technology is a sys_technology_e. For 5G, the text depends on @p fiveGType, a sys_5g_type_e;
/// it is empty for a type that has no text.
int GetTechnologyText(std::int32_t technology, std::string& text, std::int32_t fiveGType);

/// @p roamingIndicator is a sys_roaming_e. Refreshes @p subscriber first, whatever the indicator:
/// one carrier does not want domestic roaming to be shown for its SIMs.
int GetRoamingText(SubscriberCache& subscriber, std::int32_t roamingIndicator, std::string& text);

/// @p trafficStatus is a sys_traffic_status_e.
int GetTrafficStatusText(std::int32_t trafficStatus, std::string& text);

/// @p radioEnabled is 1 with the radio on, 0 in airplane mode.
int GetAirplaneModeText(std::int32_t radioEnabled, std::string& text);

/// Translated name of the preferred network for a bit mask of enabled radio technologies. Always
/// returns kTextSet.
int GetPreferredNetworkText(std::int32_t enabledTechnologies, std::string& text);
