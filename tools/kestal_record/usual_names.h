// Names that the web UI asks the device for. The platform cannot list the names that a device
// knows.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <vector>

inline constexpr std::array kUsualFields = {"apn", "networkMode", "wifiPassword"};

/// Pages of the web UI, which are also its applications.
inline constexpr std::array kUsualPages = {
    "wwan_settings", "connected_devices", "sms", "data_usage", "sim",
    "sim_manager",   "software_update",   "pco"};

inline constexpr std::array kUsualExternalPages = {"support"};

/// With and without country, because devices have the one or the other.
inline constexpr std::array kUsualLanguages = {"en_US", "de",    "fr",    "es",    "ja",   "ar",
                                               "de_DE", "fr_FR", "es_ES", "ja_JP", "ar_EG"};

/// @p usual and those of @p names that are not among them.
template <typename Usual>
std::vector<std::string> With(const std::vector<std::string>& names, const Usual& usual) {
    std::vector<std::string> all(usual.begin(), usual.end());
    for (const std::string& name : names) {
        if (std::find(all.begin(), all.end(), name) == all.end()) {
            all.push_back(name);
        }
    }
    return all;
}
