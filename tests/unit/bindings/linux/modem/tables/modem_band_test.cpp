#include "bindings/linux/modem/tables/modem_band.h"

#include <gtest/gtest.h>

namespace {

using binding::LteBandOfNumber;
using binding::NrBandOfNumber;
using binding::UmtsBandOfNumber;

TEST(ModemBand, UmtsBandsHaveOldAndNewNumbers) {
    const struct {
        std::int64_t number;
        std::optional<int> band;
    } rows[] = {
        {4, std::nullopt},
        {5, 1},
        {6, 3},
        {7, 4},
        {8, 6},
        {9, 5},
        {10, 8},
        {11, 9},
        {12, 2},
        {13, 7},
        {14, std::nullopt},
        {209, std::nullopt},
        {210, 10},
        {219, 19},
        {232, 32},
        {233, std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(UmtsBandOfNumber(row.number), row.band) << row.number;
    }
}

TEST(ModemBand, LteBandsBeginAfter30) {
    EXPECT_EQ(LteBandOfNumber(30), std::nullopt);
    EXPECT_EQ(LteBandOfNumber(31), 1);
    EXPECT_EQ(LteBandOfNumber(101), 71);
    EXPECT_EQ(LteBandOfNumber(115), 85);
    EXPECT_EQ(LteBandOfNumber(119), std::nullopt);
    EXPECT_EQ(LteBandOfNumber(256), std::nullopt);  // any
}

TEST(ModemBand, NrBandsBeginAfter300) {
    EXPECT_EQ(NrBandOfNumber(300), std::nullopt);
    EXPECT_EQ(NrBandOfNumber(301), 1);
    EXPECT_EQ(NrBandOfNumber(378), 78);
    EXPECT_EQ(NrBandOfNumber(561), 261);
    EXPECT_EQ(NrBandOfNumber(564), std::nullopt);
    EXPECT_EQ(NrBandOfNumber(256), std::nullopt);
}

}  // namespace
