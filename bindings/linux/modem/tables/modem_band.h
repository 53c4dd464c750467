// Bands as ModemManager counts them (MMModemBand), in the lists of bands that a modem has and uses.
#pragma once

#include <cstdint>
#include <optional>

namespace binding {

// Each returns the number that 3GPP gives the band; none for a band of another generation.

std::optional<int> UmtsBandOfNumber(std::int64_t modemBand);
std::optional<int> LteBandOfNumber(std::int64_t modemBand);
std::optional<int> NrBandOfNumber(std::int64_t modemBand);

}  // namespace binding
