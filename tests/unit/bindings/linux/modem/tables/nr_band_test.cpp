#include "bindings/linux/modem/tables/nr_band.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using binding::IsMillimetreBand;
using binding::NrBandOf;
using binding::Region;
using binding::RegionOf;

/// NR-ARFCN of a frequency: 3GPP TS 38.104, 5.4.2.1.
double Channel(double megahertz) {
    if (megahertz < 3000) {
        return megahertz / 0.005;
    }
    if (megahertz < 24250) {
        return 600000 + (megahertz - 3000) / 0.015;
    }
    return 2016667 + (megahertz - 24250.08) / 0.06;
}

// 3GPP TS 38.104, tables 5.2-1 and 5.2-2. Channels of n258 begin with the first one above 24250
// MHz, those of n263 half a carrier inside the band.
TEST(NrBand, HoldsTheChannelsOfItsDownlink) {
    const struct {
        int band;
        double low;
        double high;
    } rows[] = {
        {1, 2110, 2170},     {2, 1930, 1990},     {3, 1805, 1880},        {5, 869, 894},
        {7, 2620, 2690},     {8, 925, 960},       {12, 729, 746},         {13, 746, 756},
        {14, 758, 768},      {18, 860, 875},      {20, 791, 821},         {24, 1525, 1559},
        {25, 1930, 1995},    {26, 859, 894},      {28, 758, 803},         {29, 717, 728},
        {30, 2350, 2360},    {31, 462.5, 467.5},  {34, 2010, 2025},       {38, 2570, 2620},
        {39, 1880, 1920},    {40, 2300, 2400},    {41, 2496, 2690},       {46, 5150, 5925},
        {47, 5855, 5925},    {48, 3550, 3700},    {50, 1432, 1517},       {51, 1427, 1432},
        {53, 2483.5, 2495},  {54, 1670, 1675},    {65, 2110, 2200},       {66, 2110, 2200},
        {67, 738, 758},      {70, 1995, 2020},    {71, 617, 652},         {72, 461, 466},
        {74, 1475, 1518},    {75, 1432, 1517},    {76, 1427, 1432},       {77, 3300, 4200},
        {78, 3300, 3800},    {79, 4400, 5000},    {85, 728, 746},         {90, 2496, 2690},
        {91, 1427, 1432},    {92, 1432, 1517},    {93, 1427, 1432},       {94, 1432, 1517},
        {96, 5925, 7125},    {100, 919.4, 925},   {101, 1900, 1910},      {102, 5945, 6425},
        {104, 6425, 7125},   {257, 26500, 29500}, {258, 24250.08, 27500}, {259, 39500, 43500},
        {260, 37000, 40000}, {261, 27500, 28350}, {262, 47200, 48200},    {263, 57095.04, 70904.64},
    };
    for (const auto& row : rows) {
        const auto first = static_cast<std::int64_t>(std::ceil(Channel(row.low) - 0.01));
        const auto last = static_cast<std::int64_t>(std::floor(Channel(row.high) - 1));
        EXPECT_EQ(NrBandOf(first, Region::elsewhere, {row.band}), row.band) << row.band;
        EXPECT_EQ(NrBandOf(last, Region::elsewhere, {row.band}), row.band) << row.band;
        // Two channels beyond, because rasters of 15, 30 and 60 kHz round the edges.
        EXPECT_NE(NrBandOf(first - 2, Region::elsewhere, {row.band}), row.band) << row.band;
        EXPECT_NE(NrBandOf(last + 3, Region::elsewhere, {row.band}), row.band) << row.band;
    }
}

TEST(NrBand, IsUnknownOutsideOfAllBands) {
    for (const std::int64_t channel :
         {std::int64_t{-1}, std::int64_t{0}, std::int64_t{100000}, std::int64_t{599999},
          std::int64_t{690000}, std::int64_t{2016666}, std::int64_t{2794244},
          std::int64_t{4294967295}}) {
        EXPECT_EQ(NrBandOf(channel, Region::elsewhere, {}), std::nullopt) << channel;
    }
}

TEST(NrBand, WhichOfSeveralDependsOnTheRegion) {
    const struct {
        double megahertz;
        Region region;
        int band;
    } rows[] = {
        {3500, Region::europe, 78},       {3500, Region::eastAsia, 78},
        {3500, Region::northAmerica, 77}, {3600, Region::northAmerica, 48},
        {3750, Region::northAmerica, 77}, {3900, Region::eastAsia, 77},
        {2140, Region::europe, 1},        {2140, Region::northAmerica, 66},
        {2180, Region::elsewhere, 65},    {2180, Region::northAmerica, 66},
        {1960, Region::northAmerica, 2},  {1992, Region::northAmerica, 25},
        {880, Region::europe, 5},         {862, Region::northAmerica, 26},
        {865, Region::eastAsia, 18},      {763, Region::northAmerica, 14},
        {763, Region::europe, 28},        {795, Region::europe, 20},
        {795, Region::elsewhere, 28},     {2650, Region::europe, 7},
        {2650, Region::northAmerica, 41}, {2600, Region::elsewhere, 38},
        {2600, Region::eastAsia, 41},     {740, Region::northAmerica, 12},
        {740, Region::europe, 67},        {1480, Region::europe, 75},
        {1480, Region::eastAsia, 74},     {6000, Region::northAmerica, 96},
        {6000, Region::europe, 102},      {28000, Region::northAmerica, 261},
        {28000, Region::eastAsia, 257},   {1890, Region::eastAsia, 39},
        {2012, Region::eastAsia, 34},     {2012, Region::northAmerica, 70},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(NrBandOf(std::lround(Channel(row.megahertz)), row.region, {}), row.band)
            << row.megahertz << " MHz in region " << static_cast<int>(row.region);
    }
}

TEST(NrBand, AModemUsesOnlyBandsThatItHas) {
    const auto channel = std::lround(Channel(3500));
    EXPECT_EQ(NrBandOf(channel, Region::europe, {1, 77}), 77);
    EXPECT_EQ(NrBandOf(channel, Region::europe, {77, 78}), 78);
    // A list without any of the bands is of no help.
    EXPECT_EQ(NrBandOf(channel, Region::europe, {1, 3}), 78);
}

TEST(NrBand, RegionsAreThoseOfMobileCountryCodes) {
    EXPECT_EQ(RegionOf("26201"), Region::europe);
    EXPECT_EQ(RegionOf("200"), Region::europe);
    EXPECT_EQ(RegionOf("29999"), Region::europe);
    EXPECT_EQ(RegionOf("310260"), Region::northAmerica);
    EXPECT_EQ(RegionOf("302720"), Region::northAmerica);
    EXPECT_EQ(RegionOf("44010"), Region::eastAsia);
    EXPECT_EQ(RegionOf("46000"), Region::eastAsia);
    EXPECT_EQ(RegionOf("50501"), Region::elsewhere);
    EXPECT_EQ(RegionOf(""), Region::elsewhere);
    EXPECT_EQ(RegionOf("26"), Region::elsewhere);
    EXPECT_EQ(RegionOf("2x201"), Region::elsewhere);
}

TEST(NrBand, MillimetreWavesBeginWithBand257) {
    EXPECT_FALSE(IsMillimetreBand(104));
    EXPECT_TRUE(IsMillimetreBand(257));
    EXPECT_TRUE(IsMillimetreBand(263));
}

}  // namespace
