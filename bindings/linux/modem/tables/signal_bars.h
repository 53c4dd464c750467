// Bars of the signal, from 0 to 5.
#pragma once

#include <cstdint>
#include <optional>

namespace binding {

constexpr int kMostBars = 5;

/// Bars for a reference signal received power of an LTE or NR cell, in dBm. None for a power that
/// no modem can report (3GPP TS 36.133, 9.1.4: -156 to -44 dBm; TS 38.133, 10.1.6: -156 to -31
/// dBm).
std::optional<int> BarsOfPower(double dBm);

/// Bars for a quality of 0 to 100 percent; none for any other number.
std::optional<int> BarsOfPercent(std::int64_t percent);

}  // namespace binding
