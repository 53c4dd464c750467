// The lease file of dnsmasq.
#include "bindings/linux/network/leases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

TEST(Leases, TellAddressAndNameOfAClient) {
    const auto [leases, problem] = binding::ParseLeases(
        "1795356060 02:11:22:33:44:55 192.168.1.15 phone 01:02:11:22:33:44:55\n"
        "0 02:11:22:33:44:66 192.168.1.16 * *\n");
    EXPECT_EQ(problem, "");
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
    for (const char* line : {"1795356060 02:11:22:33:44:55 192.168.1.1",
                             "1795356060 02:11:22:33:44:55 192.168.1.15 pho"}) {
        const auto file = binding::ParseLeases(line);
        EXPECT_TRUE(file.leases.empty());
        EXPECT_EQ(file.problem, "line 1: it is cut");
    }
}

TEST(Leases, LeaveOutWhatIsNoLeaseAndSayWhy) {
    for (const auto& [line, problem] : std::map<std::string, std::string>{
             {"-1 02:11:22:33:44:55 192.168.1.15 phone *",
              "the time at which the lease ends is none"},
             {"99999999999999999999 02:11:22:33:44:55 10.0.0.1 phone *",
              "the time at which the lease ends is none"},
             {"1795356060 02:11:22:33:44 192.168.1.15 phone *", "the hardware address is none"},
             {"1795356060 02:11:22:33:44:55 192.168.1.256 phone *", "the address is none"},
             {"1795356060 02:11:22:33:44:55 192.168.1.15", "the name is missing"}}) {
        const auto file = binding::ParseLeases(line + "\n");
        EXPECT_TRUE(file.leases.empty()) << line;
        EXPECT_EQ(file.problem, "line 1: " + problem) << line;
    }
}

TEST(Leases, LeaveOutThoseOfDhcpv6WhichAreNotWrong) {
    for (const char* text : {"", "\n\n",
                             "duid 00:01:00:01:2c\n"
                             "1795356060 1234 fd00::15 phone 00:01:00:01:2c\n"}) {
        const auto file = binding::ParseLeases(text);
        EXPECT_TRUE(file.leases.empty()) << text;
        EXPECT_EQ(file.problem, "") << text;
    }
}

TEST(Leases, TellTheFirstWrongLineAndHowManyThereAre) {
    const auto file = binding::ParseLeases(
        "0 02:11:22:33:44:55 10.0.0.1 phone *\n"
        "0 02:11:22:33:44 10.0.0.2 phone *\n"
        "0 02:11:22:33:44:66 10.0.0.3 phone *\n"
        "0 02:11:22");
    EXPECT_EQ(file.leases.size(), 2U);
    EXPECT_EQ(file.problem, "line 2: the hardware address is none (2 lines are wrong)");
}

TEST(Leases, HaveNamesThatArePrintable) {
    const auto [leases, problem] =
        binding::ParseLeases("1 02:11:22:33:44:55 10.0.0.1 \"><script>\xff\x1b *\n");
    EXPECT_EQ(problem, "line 1: the name is not plain UTF-8");
    ASSERT_EQ(leases.size(), 1U);
    EXPECT_EQ(leases[0].name, "\"><script>??");
}

TEST(Leases, AreKeptUpToALimit) {
    std::string text;
    for (int client = 0; client < 10'100; ++client) {
        text += "0 02:11:22:33:44:55 10.0.0.1 phone *\n";
    }
    const auto file = binding::ParseLeases(text);
    EXPECT_EQ(file.leases.size(), binding::kMostClients);
    EXPECT_EQ(file.problem, "line 10001: it and those after it are too many");
}

}  // namespace
