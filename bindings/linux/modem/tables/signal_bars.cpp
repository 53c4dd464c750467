#include "bindings/linux/modem/tables/signal_bars.h"

#include <iterator>

namespace binding {

namespace {

constexpr double kLeastPower = -156;
constexpr double kMostPower = -31;

/// What a bar more needs, in dBm. 3GPP leaves it to the device. At -85 dBm a cell gives its full
/// rate; below -125 dBm modems look for another cell.
constexpr double kOneBar = -125;
constexpr double kTwoBars = -115;
constexpr double kThreeBars = -105;
constexpr double kFourBars = -95;
constexpr double kFiveBars = -85;
constexpr double kThresholds[] = {kOneBar, kTwoBars, kThreeBars, kFourBars, kFiveBars};
static_assert(std::size(kThresholds) == kMostBars);

}  // namespace

std::optional<int> BarsOfPower(double dBm) {
    // Written so that it holds for NaN, too.
    if (!(dBm >= kLeastPower && dBm <= kMostPower)) {
        return std::nullopt;
    }
    int bars = 0;
    for (const double threshold : kThresholds) {
        bars += dBm >= threshold ? 1 : 0;
    }
    return bars;
}

std::optional<int> BarsOfPercent(std::int64_t percent) {
    constexpr int kPercentPerBar = 100 / kMostBars;
    if (percent < 0 || percent > 100) {
        return std::nullopt;
    }
    return static_cast<int>((percent + kPercentPerBar - 1) / kPercentPerBar);
}

}  // namespace binding
