#include "bindings/linux/modem/tables/modem_band.h"

namespace binding {

namespace {

struct BandNumber {
    std::int64_t number;
    int band;
};

/// MMModemBand: the first UTRA bands have the numbers that were free, later ones 200 plus their
/// own; the bands of LTE and 5G have 30 and 300 plus their own.
constexpr BandNumber kUmtsNumbers[] = {
    {5, 1}, {6, 3}, {7, 4}, {8, 6}, {9, 5}, {10, 8}, {11, 9}, {12, 2}, {13, 7},
};

/// The band with a number from @p before + @p least to @p before + @p most.
std::optional<int> Beyond(std::int64_t before, int least, int most, std::int64_t number) {
    return number >= before + least && number <= before + most
               ? std::optional(static_cast<int>(number - before))
               : std::nullopt;
}

}  // namespace

std::optional<int> UmtsBandOfNumber(std::int64_t modemBand) {
    for (const BandNumber& row : kUmtsNumbers) {
        if (row.number == modemBand) {
            return row.band;
        }
    }
    return Beyond(200, 10, 32, modemBand);
}

std::optional<int> LteBandOfNumber(std::int64_t modemBand) {
    return Beyond(30, 1, 88, modemBand);
}

std::optional<int> NrBandOfNumber(std::int64_t modemBand) {
    return Beyond(300, 1, 263, modemBand);
}

}  // namespace binding
