// Texts of the internet group for values of the platform. Return codes as in status_texts.h.
#pragma once

#include <cstdint>
#include <string>

/// @p technology is a sys_technology_e; for 5G, @p fiveGType is a sys_5g_type_e, and one without a
/// name gives an empty text.
int GetTechnologyText(std::int32_t technology, std::string& text, std::int32_t fiveGType);

/// @p roamingIndicator is 0 to 3. Asks for the subscriber first, since one carrier's SIMs roam
/// nationwide without being told so.
int GetRoamingText(std::int32_t roamingIndicator, std::string& text);

/// @p trafficStatus is a sys_traffic_status_e.
int GetTrafficStatusText(std::int32_t trafficStatus, std::string& text);

/// @p radioEnabled is 1 or 0.
int GetAirplaneModeText(std::int32_t radioEnabled, std::string& text);

/// Translated name of the preferred network for a set of enabled radio technologies; always
/// kTextSet.
int GetPreferredNetworkText(std::int32_t enabledTechnologies, std::string& text);
