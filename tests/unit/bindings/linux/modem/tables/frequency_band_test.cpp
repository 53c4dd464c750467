#include "bindings/linux/modem/tables/frequency_band.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace {

using binding::LteBandOf;
using binding::UmtsBandOf;

/// Channels of a table by band, found by asking for every number.
std::map<int, int> Counted(std::optional<int> (*bandOf)(std::int64_t), std::int64_t end) {
    std::map<int, int> channels;
    for (std::int64_t channel = 0; channel < end; ++channel) {
        if (const auto band = bandOf(channel)) {
            ++channels[*band];
        }
    }
    return channels;
}

// An LTE channel is every 100 kHz, so that a band has ten for each megahertz of its downlink.
TEST(LteBand, HasTenChannelsForEachMegahertz) {
    const std::map<int, double> megahertz = {
        {1, 60},   {2, 60},   {3, 75},    {4, 45},   {5, 25},  {6, 10},   {7, 70},   {8, 35},
        {9, 35},   {10, 60},  {11, 20},   {12, 17},  {13, 10}, {14, 10},  {17, 12},  {18, 15},
        {19, 15},  {20, 30},  {21, 15},   {22, 80},  {23, 20}, {24, 34},  {25, 65},  {26, 35},
        {27, 17},  {28, 45},  {29, 11},   {30, 10},  {31, 5},  {32, 44},  {33, 20},  {34, 15},
        {35, 60},  {36, 60},  {37, 20},   {38, 50},  {39, 40}, {40, 100}, {41, 194}, {42, 200},
        {43, 200}, {44, 100}, {45, 20},   {46, 775}, {47, 70}, {48, 150}, {49, 150}, {50, 85},
        {51, 5},   {52, 100}, {53, 11.5}, {65, 90},  {66, 90}, {67, 20},  {68, 30},  {69, 50},
        {70, 25},  {71, 35},  {72, 5},    {73, 5},   {74, 43}, {75, 85},  {76, 5},   {85, 18},
        {87, 5},   {88, 5},
    };
    const std::map<int, int> counted = Counted(LteBandOf, 100'000);
    ASSERT_EQ(counted.size(), megahertz.size());
    for (const auto& [band, width] : megahertz) {
        ASSERT_EQ(counted.count(band), 1U) << band;
        EXPECT_EQ(counted.at(band), static_cast<int>(width * 10)) << band;
    }
}

TEST(LteBand, BeginsAndEndsWhereTheStandardSaysSo) {
    const struct {
        std::int64_t channel;
        std::optional<int> band;
    } rows[] = {
        {-1, std::nullopt},
        {0, 1},
        {599, 1},
        {600, 2},
        {1199, 2},
        {1300, 3},
        {1949, 3},
        {1950, 4},
        {2399, 4},
        {2400, 5},
        {3449, 7},
        {3450, 8},
        {3799, 8},
        {4949, 11},
        {4950, std::nullopt},
        {5009, std::nullopt},
        {5010, 12},
        {5379, 14},
        {5380, std::nullopt},
        {5730, 17},
        {6150, 20},
        {6449, 20},
        {7400, std::nullopt},
        {9210, 28},
        {9659, 28},
        {10359, 32},
        {10360, std::nullopt},
        {35999, std::nullopt},
        {36000, 33},
        {38650, 40},
        {39650, 41},
        {41589, 41},
        {41590, 42},
        {60254, 53},
        {60255, std::nullopt},
        {65535, std::nullopt},
        {65536, 65},
        {66436, 66},
        {67335, 66},
        {68586, 71},
        {70365, 76},
        {70366, 85},
        {70645, 88},
        {70646, std::nullopt},
        {4'294'967'295, std::nullopt},
        {std::numeric_limits<std::int64_t>::min(), std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(LteBandOf(row.channel), row.band) << row.channel;
    }
}

// UTRA channels are numbers of 200 kHz, and the first and last are 2.4 MHz from the edge or more.
TEST(UmtsBand, BeginsAndEndsWhereTheStandardSaysSo) {
    const struct {
        int band;
        std::int64_t first;
        std::int64_t last;
    } rows[] = {
        {1, 10562, 10838}, {2, 9662, 9938},  {3, 1162, 1513},  {4, 1537, 1738},  {5, 4357, 4458},
        {7, 2237, 2563},   {8, 2937, 3088},  {9, 9237, 9387},  {10, 3112, 3388}, {11, 3712, 3787},
        {12, 3842, 3903},  {13, 4017, 4043}, {14, 4117, 4143}, {19, 712, 763},   {20, 4512, 4638},
        {21, 862, 912},    {22, 4662, 5038}, {25, 5112, 5413}, {26, 5762, 5913}, {32, 6617, 6813},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(UmtsBandOf(row.first), row.band);
        EXPECT_EQ(UmtsBandOf(row.last), row.band);
        EXPECT_NE(UmtsBandOf(row.first - 1), row.band) << row.band;
        EXPECT_NE(UmtsBandOf(row.last + 1), row.band) << row.band;
    }
}

TEST(UmtsBand, HasChannelsBesideItsRaster) {
    EXPECT_EQ(UmtsBandOf(412), 2);
    EXPECT_EQ(UmtsBandOf(687), 2);
    EXPECT_EQ(UmtsBandOf(413), std::nullopt);
    EXPECT_EQ(UmtsBandOf(1887), 4);
    EXPECT_EQ(UmtsBandOf(2087), 4);
    EXPECT_EQ(UmtsBandOf(1007), 5);
    EXPECT_EQ(UmtsBandOf(1012), 5);
    EXPECT_EQ(UmtsBandOf(1017), std::nullopt);
    EXPECT_EQ(UmtsBandOf(1087), 5);
    EXPECT_EQ(UmtsBandOf(2587), 7);
}

TEST(UmtsBand, IsFifthWhereTheSixthIsPartOfIt) {
    EXPECT_EQ(UmtsBandOf(4387), 5);
    EXPECT_EQ(UmtsBandOf(4413), 5);
}

TEST(UmtsBand, IsUnknownOutsideOfAllBands) {
    EXPECT_EQ(UmtsBandOf(-1), std::nullopt);
    EXPECT_EQ(UmtsBandOf(0), std::nullopt);
    EXPECT_EQ(UmtsBandOf(16384), std::nullopt);
}

}  // namespace
