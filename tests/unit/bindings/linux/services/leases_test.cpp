// The lease file of dnsmasq.
#include "bindings/linux/network/leases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

TEST(Leases, TellAddressAndNameOfAClient) {
    const auto leases = binding::ParseLeases(
        "1795356060 02:11:22:33:44:55 192.168.1.15 phone 01:02:11:22:33:44:55\n"
        "0 02:11:22:33:44:66 192.168.1.16 * *\n");
    ASSERT_EQ(leases.size(), 2U);
    EXPECT_EQ(leases[0].expiry, 1795356060);
    EXPECT_EQ(leases[0].mac, 0x021122334455U);
    EXPECT_EQ(leases[0].address, "192.168.1.15");
    EXPECT_EQ(leases[0].name, "phone");
    EXPECT_EQ(leases[1].expiry, 0);
    EXPECT_EQ(leases[1].name, "");
}

TEST(Leases, LeaveOutALineThatDnsmasqIsStillWriting) {
    // The whole line would say 192.168.1.15.
    EXPECT_TRUE(binding::ParseLeases("1795356060 02:11:22:33:44:55 192.168.1.1").empty());
    EXPECT_TRUE(binding::ParseLeases("1795356060 02:11:22:33:44:55 192.168.1.15 pho").empty());
}

TEST(Leases, LeaveOutWhatIsNoLease) {
    EXPECT_TRUE(binding::ParseLeases("").empty());
    EXPECT_TRUE(binding::ParseLeases("\n\n").empty());
    EXPECT_TRUE(binding::ParseLeases("duid 00:01:00:01:2c\n"
                                     "1795356060 1234 fd00::15 phone 00:01:00:01:2c\n"
                                     "-1 02:11:22:33:44:55 192.168.1.15 phone *\n"
                                     "1795356060 02:11:22:33:44:55 192.168.1.256 phone *\n"
                                     "99999999999999999999 02:11:22:33:44:55 10.0.0.1 phone *\n"
                                     "1795356060 02:11:22:33:44:55 192.168.1.15\n")
                    .empty());
}

TEST(Leases, HaveNamesThatArePrintable) {
    const auto leases =
        binding::ParseLeases("1 02:11:22:33:44:55 10.0.0.1 \"><script>\xff\x1b *\n");
    ASSERT_EQ(leases.size(), 1U);
    EXPECT_EQ(leases[0].name, "\"><script>??");
}

TEST(Leases, AreKeptUpToALimit) {
    std::string text;
    for (int client = 0; client < 10'100; ++client) {
        text += "0 02:11:22:33:44:55 10.0.0.1 phone *\n";
    }
    EXPECT_EQ(binding::ParseLeases(text).size(), binding::kMostClients);
}

}  // namespace
