// Bands of 5G, found by the number of a downlink channel.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace binding {

/// Where operators use a band. NR bands overlap, so that a channel number alone does not name one.
enum class Region { elsewhere, europe, northAmerica, eastAsia };

/// Region of a network by the mobile country code at the beginning of @p operatorCode (ITU-T
/// E.212); elsewhere for a code that is no such.
Region RegionOf(std::string_view operatorCode);

/// NR band of an NR-ARFCN: 3GPP TS 38.104, tables 5.4.2.3-1 and 5.4.2.3-2. Of several bands, those
/// that are in @p modemBands are taken, if any is; of these those that are used in @p region, if
/// any is; of these the narrowest.
std::optional<int> NrBandOf(std::int64_t arfcn, Region region, const std::vector<int>& modemBands);

/// Whether @p band is one of millimetre waves (3GPP TS 38.104, 5.1: frequency range 2).
bool IsMillimetreBand(int band);

}  // namespace binding
