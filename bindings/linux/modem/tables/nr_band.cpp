#include "bindings/linux/modem/tables/nr_band.h"

#include <algorithm>
#include <iterator>

namespace binding {

namespace {

constexpr unsigned kElsewhere = 1U << static_cast<unsigned>(Region::elsewhere);
constexpr unsigned kEurope = 1U << static_cast<unsigned>(Region::europe);
constexpr unsigned kNorthAmerica = 1U << static_cast<unsigned>(Region::northAmerica);
constexpr unsigned kEastAsia = 1U << static_cast<unsigned>(Region::eastAsia);
constexpr unsigned kOldWorld = kElsewhere | kEurope | kEastAsia;
constexpr unsigned kEverywhere = kOldWorld | kNorthAmerica;
/// For bands that hardly anybody uses where another band overlaps them.
constexpr unsigned kRarely = 0;

struct Row {
    int band;
    std::int32_t first;
    std::int32_t last;
    unsigned regions;

    bool Holds(std::int64_t arfcn) const { return arfcn >= first && arfcn <= last; }
    std::int32_t Width() const { return last - first; }
};

/// 3GPP TS 38.104, tables 5.4.2.3-1 and 5.4.2.3-2, downlink. Bands without a downlink (n80 to n84,
/// n86, n89, n95, n97 to n99) are left out.
constexpr Row kBands[] = {
    {1, 422000, 434000, kOldWorld},
    {2, 386000, 398000, kNorthAmerica},
    {3, 361000, 376000, kEverywhere},
    {5, 173800, 178800, kEverywhere},
    {7, 524000, 538000, kEurope | kElsewhere},
    {8, 185000, 192000, kEverywhere},
    {12, 145800, 149200, kNorthAmerica},
    {13, 149200, 151200, kNorthAmerica},
    {14, 151600, 153600, kNorthAmerica},
    {18, 172000, 175000, kEastAsia},
    {20, 158200, 164200, kEurope},
    {24, 305000, 311800, kNorthAmerica},
    {25, 386000, 399000, kNorthAmerica},
    {26, 171800, 178800, kEverywhere},
    {28, 151600, 160600, kOldWorld},
    {29, 143400, 145600, kNorthAmerica},
    {30, 470000, 472000, kNorthAmerica},
    {31, 92500, 93500, kEverywhere},
    {34, 402000, 405000, kOldWorld},
    {38, 514000, 524000, kEurope | kElsewhere},
    {39, 376000, 384000, kOldWorld},
    {40, 460000, 480000, kOldWorld},
    {41, 499200, 537999, kNorthAmerica | kEastAsia},
    {46, 743334, 795000, kEverywhere},
    {47, 790334, 795000, kRarely},
    {48, 636667, 646666, kNorthAmerica},
    {50, 286400, 303400, kRarely},
    {51, 285400, 286400, kRarely},
    {53, 496700, 499000, kEverywhere},
    {54, 334000, 335000, kNorthAmerica},
    {65, 422000, 440000, kOldWorld},
    {66, 422000, 440000, kNorthAmerica},
    {67, 147600, 151600, kEurope},
    {70, 399000, 404000, kNorthAmerica},
    {71, 123400, 130400, kNorthAmerica},
    {72, 92200, 93200, kEurope},
    {74, 295000, 303600, kEastAsia},
    {75, 286400, 303400, kEurope | kElsewhere},
    {76, 285400, 286400, kEurope | kElsewhere},
    {77, 620000, 680000, kEverywhere},
    {78, 620000, 653333, kOldWorld},
    {79, 693334, 733333, kEastAsia},
    {85, 145600, 149200, kNorthAmerica},
    {90, 499200, 538000, kRarely},
    {91, 285400, 286400, kRarely},
    {92, 286400, 303400, kRarely},
    {93, 285400, 286400, kRarely},
    {94, 286400, 303400, kRarely},
    {96, 795000, 875000, kNorthAmerica},
    {100, 183880, 185000, kEurope},
    {101, 380000, 382000, kRarely},
    {102, 796334, 828333, kEurope},
    {104, 828334, 875000, kEastAsia},
    {257, 2054166, 2104165, kEastAsia},
    {258, 2016667, 2070832, kEverywhere},
    {259, 2270833, 2337499, kEverywhere},
    {260, 2229166, 2279165, kNorthAmerica},
    {261, 2070833, 2084999, kNorthAmerica},
    {262, 2399166, 2415832, kEverywhere},
    {263, 2564083, 2794243, kEverywhere},
};

constexpr int kFirstMillimetreBand = 257;

struct Country {
    int first;
    int last;
    Region region;
};

/// ITU-T E.212. The ranges of Europe and of the United States are whole; the rest are the countries
/// whose networks use the bands that stand for their region in the table above.
constexpr Country kCountries[] = {
    {200, 299, Region::europe},        // geographic zone 2
    {302, 302, Region::northAmerica},  // Canada
    {310, 316, Region::northAmerica},  // United States
    {330, 330, Region::northAmerica},  // Puerto Rico
    {332, 332, Region::northAmerica},  // United States Virgin Islands
    {440, 441, Region::eastAsia},      // Japan
    {450, 450, Region::eastAsia},      // South Korea
    {454, 455, Region::eastAsia},      // Hong Kong, Macao
    {460, 461, Region::eastAsia},      // China
    {466, 466, Region::eastAsia},      // Taiwan
};

}  // namespace

Region RegionOf(std::string_view operatorCode) {
    constexpr std::size_t kDigits = 3;
    int code = 0;
    for (const char digit : operatorCode.substr(0, kDigits)) {
        if (digit < '0' || digit > '9') {
            return Region::elsewhere;
        }
        code = code * 10 + (digit - '0');
    }
    // Shorter texts are smaller than all codes.
    const auto* const found = std::find_if(
        std::begin(kCountries), std::end(kCountries),
        [code](const Country& country) { return code >= country.first && code <= country.last; });
    return found == std::end(kCountries) ? Region::elsewhere : found->region;
}

std::optional<int> NrBandOf(std::int64_t arfcn, Region region, const std::vector<int>& modemBands) {
    const unsigned here = 1U << static_cast<unsigned>(region);
    // Higher is better; the width decides between equals.
    const auto rank = [&](const Row& row) {
        const bool ofModem =
            std::find(modemBands.begin(), modemBands.end(), row.band) != modemBands.end();
        return (ofModem ? 2 : 0) + ((row.regions & here) != 0 ? 1 : 0);
    };
    const Row* best = nullptr;
    for (const Row& row : kBands) {
        if (!row.Holds(arfcn)) {
            continue;
        }
        if (best == nullptr || rank(row) > rank(*best) ||
            (rank(row) == rank(*best) && row.Width() < best->Width())) {
            best = &row;
        }
    }
    return best == nullptr ? std::nullopt : std::optional(best->band);
}

bool IsMillimetreBand(int band) {
    return band >= kFirstMillimetreBand;
}

}  // namespace binding
