// What hostapd says on its control socket.
#include "bindings/linux/network/hostapd_reply.h"

#include <gtest/gtest.h>

namespace {

using Kind = binding::AccessPointEvent::Kind;

constexpr const char* kTwoNetworks =
    "state=ENABLED\nphy=phy0\nfreq=2437\nnum_sta_non_erp=0\n"
    "bss[0]=wlan0\nbssid[0]=02:00:00:00:00:00\nssid[0]=Kestal\nnum_sta[0]=2\n"
    "bss[1]=wlan0_guest\nbssid[1]=02:00:00:00:00:01\nssid[1]=Visitors\nnum_sta[1]=1\n";

TEST(AccessPoint, TellsItsStateAndTheNameOfItsNetwork) {
    const auto status = binding::ParseStatus(kTwoNetworks, "wlan0");
    ASSERT_TRUE(status);
    EXPECT_TRUE(status->enabled);
    EXPECT_EQ(status->state, "ENABLED");
    EXPECT_EQ(status->ssid, "Kestal");
    EXPECT_EQ(status->frequency, 2437);
    EXPECT_EQ(binding::ParseStatus(kTwoNetworks, "wlan0_guest")->ssid, "Visitors");
    EXPECT_EQ(binding::ParseStatus(kTwoNetworks, "wlan7")->ssid, "Kestal");
}

TEST(AccessPoint, DoesNotServeWhileItIsDisabledOrLooksForRadar) {
    EXPECT_FALSE(binding::ParseStatus("state=DISABLED\nfreq=0\n", "wlan0")->enabled);
    EXPECT_FALSE(binding::ParseStatus("state=DFS\n", "wlan0")->enabled);
}

TEST(AccessPoint, WhoseReplyIsNoStatusTellsNothing) {
    EXPECT_FALSE(binding::ParseStatus("", "wlan0"));
    EXPECT_FALSE(binding::ParseStatus("FAIL\n", "wlan0"));
    EXPECT_FALSE(binding::ParseStatus("UNKNOWN COMMAND\n", "wlan0"));
    const auto wrong =
        binding::ParseStatus("state=EN\x80\nfreq=99999999999\nssid[0]=\xff", "wlan0");
    ASSERT_TRUE(wrong);
    EXPECT_EQ(wrong->frequency, 0);
    EXPECT_EQ(wrong->ssid, "?");
}

TEST(Stations, AreThoseThatMayUseTheNetwork) {
    const auto stations = binding::ParseStations(
        "02:11:22:33:44:55\nflags=[AUTH][ASSOC][AUTHORIZED]\naid=1\nsignal=-48\n"
        "02:11:22:33:44:66\nflags=[AUTH][ASSOC]\naid=2\nsignal=x\n"
        "02:11:22:33:44:77\n");
    ASSERT_EQ(stations.size(), 3U);
    EXPECT_EQ(stations[0].mac, 0x021122334455U);
    EXPECT_TRUE(stations[0].authorized);
    EXPECT_EQ(stations[0].signal, -48);
    EXPECT_FALSE(stations[1].authorized);
    EXPECT_EQ(stations[1].signal, std::nullopt);
    EXPECT_TRUE(stations[2].authorized);
}

TEST(Stations, AreNoneInOtherReplies) {
    EXPECT_TRUE(binding::ParseStations("").empty());
    EXPECT_TRUE(binding::ParseStations("FAIL\n").empty());
    EXPECT_TRUE(binding::ParseStations("flags=[AUTHORIZED]\nsignal=-48\n").empty());
}

TEST(AccessPointEvents, TellWhoJoinsAndLeaves) {
    const auto joined = binding::ParseEvent("<3>AP-STA-CONNECTED 02:11:22:33:44:55 keyid=guest");
    ASSERT_TRUE(joined);
    EXPECT_EQ(joined->kind, Kind::stationJoined);
    EXPECT_EQ(joined->mac, 0x021122334455U);
    EXPECT_EQ(binding::ParseEvent("<3>AP-STA-DISCONNECTED 02:11:22:33:44:55")->kind,
              Kind::stationLeft);
    EXPECT_EQ(binding::ParseEvent("<3>AP-STA-CONNECTED 02:11")->kind, Kind::other);
    EXPECT_EQ(binding::ParseEvent("<3>AP-STA-CONNECTED")->kind, Kind::other);
}

TEST(AccessPointEvents, TellWhenTheNetworkChangesAndWhenHostapdEnds) {
    EXPECT_EQ(binding::ParseEvent("<3>AP-DISABLED ")->kind, Kind::statusChanged);
    EXPECT_EQ(binding::ParseEvent("<3>AP-ENABLED ")->kind, Kind::statusChanged);
    EXPECT_EQ(binding::ParseEvent("<3>CTRL-EVENT-TERMINATING ")->kind, Kind::ends);
    EXPECT_EQ(binding::ParseEvent("<3>WPS-PBC-ACTIVE")->kind, Kind::other);
}

TEST(AccessPointEvents, AreNoReplies) {
    for (const char* reply : {"OK\n", "PONG\n", "FAIL\n", "", "<", "<3", "state=ENABLED\n"}) {
        EXPECT_FALSE(binding::ParseEvent(reply)) << reply;
    }
}

}  // namespace
