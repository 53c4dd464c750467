// Traffic of a data call from the counters of its interface.
#include "bindings/linux/traffic.h"

#include "tests/support/scratch.h"

namespace {

using binding::TrafficCounters;
using binding::TrafficMeter;

class Counters : public SimulatedDevice {
  protected:
    void Write(const std::string& received, const std::string& transmitted) {
        const auto folder = directory / "wwan0" / "statistics";
        std::filesystem::create_directories(folder);
        WriteFile(folder / "rx_bytes", received);
        WriteFile(folder / "tx_bytes", transmitted);
    }

    bool Read(const std::string& interface) {
        return binding::ReadTrafficCounters(directory, interface, counters);
    }

    TrafficCounters counters;
};

TEST_F(Counters, AreReadAsNumbers) {
    Write("123\n", "18446744073709551615\n");
    ASSERT_TRUE(Read("wwan0"));
    EXPECT_EQ(counters.received, 123U);
    EXPECT_EQ(counters.transmitted, UINT64_MAX);
}

TEST_F(Counters, AreNotToldWithoutANumber) {
    Write("", "1\n");
    EXPECT_FALSE(Read("wwan0"));
    Write("-1\n", "1\n");
    EXPECT_FALSE(Read("wwan0"));
}

TEST_F(Counters, AreNotToldByAnInterfaceThatDoesNotExist) {
    EXPECT_FALSE(Read("wwan1"));
    EXPECT_FALSE(Read(""));
}

TEST_F(Counters, AreNotLookedForInOtherFolders) {
    Write("1", "1");
    EXPECT_FALSE(binding::ReadTrafficCounters(directory / "wwan0", "../wwan0", counters));
}

TEST(TrafficMeter, ReadsNotMoreOftenThanOnceASecond) {
    TrafficMeter meter;
    const std::chrono::steady_clock::time_point start{std::chrono::hours(1)};
    EXPECT_FALSE(meter.Update(start));
    meter.Begin({.interface = "lo", .since = start - std::chrono::seconds(5), .atBegin = {}});
    EXPECT_TRUE(meter.Update(start));
    EXPECT_EQ(meter.Stats().duration, 5U);
    EXPECT_FALSE(meter.Update(start + std::chrono::milliseconds(999)));
    EXPECT_TRUE(meter.Update(start + std::chrono::seconds(1)));
    EXPECT_EQ(meter.Stats().duration, 6U);
    meter.End();
    EXPECT_FALSE(meter.Update(start + std::chrono::seconds(9)));
}

TEST(TrafficMeter, TheSameConnectionGoesOn) {
    TrafficMeter meter;
    const std::chrono::steady_clock::time_point start{std::chrono::hours(1)};
    const TrafficMeter::Connection connection{.interface = "lo", .since = start, .atBegin = {}};
    meter.Begin(connection);
    (void)meter.Update(start + std::chrono::seconds(7));
    meter.Begin(connection);
    EXPECT_EQ(meter.Stats().duration, 7U);
    meter.Begin({.interface = "lo", .since = start + std::chrono::seconds(8), .atBegin = {}});
    EXPECT_EQ(meter.Stats().duration, 0U);
}

}  // namespace
