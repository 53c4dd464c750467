#include "bindings/linux/modem/cells.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/modem/tables/frequency_band.h"

namespace binding {

namespace {

using nlohmann::json;

// MMCellType.
constexpr std::int64_t kUmtsCell = 3;
constexpr std::int64_t kLteCell = 5;
constexpr std::int64_t kNrCell = 6;

// MMServingCellType.
constexpr std::int64_t kPrimary = 1;
constexpr std::int64_t kPrimaryOfSecondGroup = 3;

// 3GPP TS 36.211, 6.11, and TS 38.211, 7.4.2.1.
constexpr int kMostLteCellIdentity = 503;
constexpr int kMostNrCellIdentity = 1007;

struct BandwidthRow {
    std::int64_t told;
    int megahertz;
};

/// ModemManager passes on what the modem says, without a unit: MHz, or resource blocks (3GPP TS
/// 36.101, table 5.6-1). 15 can be both, and 15 MHz is far more frequent than 3 MHz, which has 15
/// blocks. 1.4 MHz is rounded.
constexpr BandwidthRow kLteBandwidths[] = {
    {1, 1},   {3, 3},  {5, 5},   {6, 1},   {10, 10},  {15, 15},
    {20, 20}, {25, 5}, {50, 10}, {75, 15}, {100, 20},
};

/// 3GPP TS 38.104, tables 5.3.5-1 and 5.3.5-2, in MHz, as far as there are modems for them.
constexpr BandwidthRow kNrBandwidths[] = {
    {5, 5},   {10, 10}, {15, 15}, {20, 20}, {25, 25}, {30, 30},   {35, 35},   {40, 40},   {45, 45},
    {50, 50}, {60, 60}, {70, 70}, {80, 80}, {90, 90}, {100, 100}, {200, 200}, {400, 400},
};

template <typename Table>
std::optional<int> MegahertzOf(const Table& table, std::optional<std::int64_t> told) {
    if (!told) {
        return std::nullopt;
    }
    // Numbers beyond the tables are in kHz or Hz; the narrowest carrier has 1400 kHz.
    constexpr std::int64_t kKilo = 1000;
    std::int64_t number = *told;
    for (int units = 0; units < 2 && number >= kKilo; ++units) {
        number /= kKilo;
    }
    const auto* const found =
        std::find_if(std::begin(table), std::end(table),
                     [number](const BandwidthRow& row) { return row.told == number; });
    return found == std::end(table) ? std::nullopt : std::optional(found->megahertz);
}

std::optional<int> PhysicalCell(const json& cell, int most) {
    const auto text = Text(cell, "physical-ci");
    if (!text) {
        return std::nullopt;
    }
    constexpr int kHexadecimal = 16;
    int number = 0;
    const char* const end = text->data() + text->size();
    const auto result = std::from_chars(text->data(), end, number, kHexadecimal);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    return isNumber && number >= 0 && number <= most ? std::optional(number) : std::nullopt;
}

/// The serving cells of one type, the primary one first.
std::vector<const json*> ServingCellsOf(const json& cells, std::int64_t type) {
    std::vector<const json*> serving;
    if (!cells.is_array()) {
        return serving;
    }
    for (const json& cell : cells) {
        if (Number(cell, "cell-type") == type && Boolean(cell, "serving") == true) {
            serving.push_back(&cell);
        }
    }
    std::stable_partition(serving.begin(), serving.end(), [](const json* cell) {
        const std::int64_t role = Number(*cell, "serving-cell-type").value_or(0);
        return role == kPrimary || role == kPrimaryOfSecondGroup;
    });
    return serving;
}

template <typename Table>
std::optional<int> SumOfBandwidths(const std::vector<const json*>& cells, const Table& table) {
    std::optional<int> sum;
    for (const json* cell : cells) {
        if (const auto megahertz = MegahertzOf(table, Number(*cell, "bandwidth"))) {
            sum = sum.value_or(0) + *megahertz;
        }
    }
    return sum;
}

}  // namespace

ServingCells ReadCells(const json& cells, Region region, const std::vector<int>& nrBands) {
    ServingCells result;
    const auto umts = ServingCellsOf(cells, kUmtsCell);
    if (!umts.empty()) {
        if (const auto channel = Number(*umts.front(), "uarfcn")) {
            result.umtsBand = UmtsBandOf(*channel);
        }
    }
    const auto lte = ServingCellsOf(cells, kLteCell);
    result.lteCarriers = static_cast<int>(lte.size());
    if (!lte.empty()) {
        if (const auto channel = Number(*lte.front(), "earfcn")) {
            result.lteBand = LteBandOf(*channel);
        }
        result.lteCell = PhysicalCell(*lte.front(), kMostLteCellIdentity);
        result.lteBandwidth = SumOfBandwidths(lte, kLteBandwidths);
    }
    const auto nr = ServingCellsOf(cells, kNrCell);
    if (!nr.empty()) {
        if (const auto channel = Number(*nr.front(), "nrarfcn")) {
            result.nrBand = NrBandOf(*channel, region, nrBands);
        }
        result.nrCell = PhysicalCell(*nr.front(), kMostNrCellIdentity);
        result.nrBandwidth = SumOfBandwidths(nr, kNrBandwidths);
    }
    return result;
}

}  // namespace binding
