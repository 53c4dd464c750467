#include "bindings/linux/modem/tables/frequency_band.h"

#include <algorithm>
#include <iterator>

namespace binding {

namespace {

struct Channels {
    int band;
    std::int32_t first;
    std::int32_t last;
};

/// 3GPP TS 25.101, table 5.1, downlink. Band VI is left out: all of its channels are also in band
/// V, which far more networks use.
constexpr Channels kUmtsBands[] = {
    {1, 10562, 10838}, {2, 9662, 9938},  {3, 1162, 1513},  {4, 1537, 1738},  {5, 4357, 4458},
    {7, 2237, 2563},   {8, 2937, 3088},  {9, 9237, 9387},  {10, 3112, 3388}, {11, 3712, 3787},
    {12, 3842, 3903},  {13, 4017, 4043}, {14, 4117, 4143}, {19, 712, 763},   {20, 4512, 4638},
    {21, 862, 912},    {22, 4662, 5038}, {25, 5112, 5413}, {26, 5762, 5913}, {32, 6617, 6813},
};

struct Raster {
    int band;
    std::int32_t first;
    std::int32_t last;
    std::int32_t step;
};

/// 3GPP TS 25.101, table 5.1A: channels beside the raster of the others.
constexpr Raster kUmtsAdditional[] = {
    {2, 412, 687, 25},    {4, 1887, 2087, 25},  {5, 1007, 1012, 5},   {5, 1032, 1037, 5},
    {5, 1062, 1087, 25},  {7, 2587, 2912, 25},  {10, 3412, 3687, 25}, {12, 3932, 3957, 25},
    {12, 3962, 3987, 25}, {12, 3992, 3992, 1},  {13, 4067, 4092, 25}, {14, 4167, 4192, 25},
    {19, 787, 837, 25},   {25, 6292, 6592, 25},
};

/// 3GPP TS 36.101, table 5.7.3-1, downlink.
constexpr Channels kLteBands[] = {
    {1, 0, 599},        {2, 600, 1199},     {3, 1200, 1949},    {4, 1950, 2399},
    {5, 2400, 2649},    {6, 2650, 2749},    {7, 2750, 3449},    {8, 3450, 3799},
    {9, 3800, 4149},    {10, 4150, 4749},   {11, 4750, 4949},   {12, 5010, 5179},
    {13, 5180, 5279},   {14, 5280, 5379},   {17, 5730, 5849},   {18, 5850, 5999},
    {19, 6000, 6149},   {20, 6150, 6449},   {21, 6450, 6599},   {22, 6600, 7399},
    {23, 7500, 7699},   {24, 7700, 8039},   {25, 8040, 8689},   {26, 8690, 9039},
    {27, 9040, 9209},   {28, 9210, 9659},   {29, 9660, 9769},   {30, 9770, 9869},
    {31, 9870, 9919},   {32, 9920, 10359},  {33, 36000, 36199}, {34, 36200, 36349},
    {35, 36350, 36949}, {36, 36950, 37549}, {37, 37550, 37749}, {38, 37750, 38249},
    {39, 38250, 38649}, {40, 38650, 39649}, {41, 39650, 41589}, {42, 41590, 43589},
    {43, 43590, 45589}, {44, 45590, 46589}, {45, 46590, 46789}, {46, 46790, 54539},
    {47, 54540, 55239}, {48, 55240, 56739}, {49, 56740, 58239}, {50, 58240, 59089},
    {51, 59090, 59139}, {52, 59140, 60139}, {53, 60140, 60254}, {65, 65536, 66435},
    {66, 66436, 67335}, {67, 67336, 67535}, {68, 67536, 67835}, {69, 67836, 68335},
    {70, 68336, 68585}, {71, 68586, 68935}, {72, 68936, 68985}, {73, 68986, 69035},
    {74, 69036, 69465}, {75, 69466, 70315}, {76, 70316, 70365}, {85, 70366, 70545},
    {87, 70546, 70595}, {88, 70596, 70645},
};

template <typename Table>
std::optional<int> BandIn(const Table& table, std::int64_t channel) {
    const auto found = std::find_if(std::begin(table), std::end(table), [channel](const auto& row) {
        return channel >= row.first && channel <= row.last;
    });
    return found == std::end(table) ? std::nullopt : std::optional(found->band);
}

}  // namespace

std::optional<int> UmtsBandOf(std::int64_t uarfcn) {
    if (const auto band = BandIn(kUmtsBands, uarfcn)) {
        return band;
    }
    for (const Raster& raster : kUmtsAdditional) {
        if (uarfcn >= raster.first && uarfcn <= raster.last &&
            (uarfcn - raster.first) % raster.step == 0) {
            return raster.band;
        }
    }
    return std::nullopt;
}

std::optional<int> LteBandOf(std::int64_t earfcn) {
    return BandIn(kLteBands, earfcn);
}

}  // namespace binding
