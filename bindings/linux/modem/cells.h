// The cells that serve the modem: bands and bandwidths in use.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <vector>

#include "bindings/linux/modem/tables/nr_band.h"

namespace binding {

/// A member without a value has not been told.
struct ServingCells {
    std::optional<int> umtsBand;
    std::optional<int> lteBand;  ///< of the primary cell, as are the next four
    std::optional<int> nrBand;
    std::optional<int> lteCell;  ///< physical cell identity
    std::optional<int> nrCell;
    std::optional<int> lteBandwidth;  ///< of all LTE cells together, in MHz
    std::optional<int> nrBandwidth;   ///< of all NR cells together, in MHz
    int lteCarriers = 0;

    bool operator==(const ServingCells&) const = default;
};

/// Reads the reply of Modem.GetCellInfo, a list of dictionaries. @p region and @p nrBands, those of
/// the modem, decide between NR bands that overlap.
ServingCells ReadCells(const nlohmann::json& cells, Region region, const std::vector<int>& nrBands);

}  // namespace binding
