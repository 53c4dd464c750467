// Bands of UMTS and LTE, found by the number of a downlink channel. In both tables each channel has
// one band, or one that is preferred.
#pragma once

#include <cstdint>
#include <optional>

namespace binding {

/// UTRA band of a UARFCN: 3GPP TS 25.101, tables 5.1 and 5.1A.
std::optional<int> UmtsBandOf(std::int64_t uarfcn);

/// E-UTRA band of an EARFCN: 3GPP TS 36.101, table 5.7.3-1.
std::optional<int> LteBandOf(std::int64_t earfcn);

}  // namespace binding
