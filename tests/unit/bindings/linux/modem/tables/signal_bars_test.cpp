#include "bindings/linux/modem/tables/signal_bars.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using binding::BarsOfPercent;
using binding::BarsOfPower;

TEST(SignalBars, PowerHasFiveThresholds) {
    const struct {
        double dBm;
        int bars;
    } rows[] = {
        {-31, 5},  {-85, 5},    {-85.1, 4}, {-95, 4},    {-95.1, 3}, {-105, 3}, {-105.1, 2},
        {-115, 2}, {-115.1, 1}, {-125, 1},  {-125.1, 0}, {-140, 0},  {-156, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(BarsOfPower(row.dBm), row.bars) << row.dBm;
    }
}

TEST(SignalBars, PowerThatNoModemCanReportIsNotTold) {
    using Limits = std::numeric_limits<double>;
    for (const double dBm : {-30.9, -156.1, 0.0, 32767.0, -32768.0, Limits::infinity(),
                             -Limits::infinity(), Limits::quiet_NaN()}) {
        EXPECT_EQ(BarsOfPower(dBm), std::nullopt) << dBm;
    }
}

TEST(SignalBars, PercentBeginsANewBarAfterEachTwenty) {
    const struct {
        std::int64_t percent;
        int bars;
    } rows[] = {{0, 0},  {1, 1},  {20, 1}, {21, 2}, {40, 2}, {41, 3},
                {60, 3}, {61, 4}, {80, 4}, {81, 5}, {100, 5}};
    for (const auto& row : rows) {
        EXPECT_EQ(BarsOfPercent(row.percent), row.bars) << row.percent;
    }
}

TEST(SignalBars, PercentBeyondAllIsNotTold) {
    EXPECT_EQ(BarsOfPercent(-1), std::nullopt);
    EXPECT_EQ(BarsOfPercent(101), std::nullopt);
    EXPECT_EQ(BarsOfPercent(4294967295), std::nullopt);
}

}  // namespace
