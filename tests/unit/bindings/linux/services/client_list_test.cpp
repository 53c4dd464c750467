// Who is connected, and how.
#include "bindings/linux/network/client_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace {

using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr binding::MacAddress kPhone = 0x021122334455;
constexpr binding::MacAddress kLaptop = 0x021122334466;
constexpr std::int64_t kNow = 1'795'356'060;

class ClientList : public ::testing::Test {
  protected:
    std::vector<binding::Client> Join() const {
        return binding::JoinClients(seen, interfaces, kNow).clients;
    }

    std::vector<int> Kinds() const {
        std::vector<int> kinds;
        for (const auto& record : binding::ClientRecords(Join())) {
            kinds.push_back(record.connectionKind);
        }
        return kinds;
    }

    binding::ClientSightings seen;
    binding::ClientInterfaces interfaces{.bridge = "br0",
                                         .ethernet = {"eth0"},
                                         .usb = {"usb0"},
                                         .wifi = {"wlan0"},
                                         .guestWifi = {"wlan0_guest"}};
};

TEST_F(ClientList, AStationHasTheNameAndTheAddressOfItsLease) {
    seen.stations = {{.mac = kPhone}};
    seen.leases = {{kNow + 60, kPhone, "10.0.0.2", "phone"}};
    const auto clients = Join();
    ASSERT_EQ(clients.size(), 1U);
    EXPECT_EQ(clients[0].mac, kPhone);
    EXPECT_EQ(clients[0].kind, SYS_CONNECTION_WIFI);
    EXPECT_EQ(clients[0].address, "10.0.0.2");
    EXPECT_EQ(clients[0].name, "phone");
}

TEST_F(ClientList, ALeaseThatIsOverTellsNothingAndOneWithoutEndStays) {
    seen.stations = {{.mac = kPhone}, {.mac = kLaptop}};
    seen.leases = {{kNow, kPhone, "10.0.0.2", "phone"}, {0, kLaptop, "10.0.0.3", "laptop"}};
    const auto clients = Join();
    ASSERT_EQ(clients.size(), 2U);
    EXPECT_EQ(clients[0].name, "");
    EXPECT_EQ(clients[1].name, "laptop");
}

TEST_F(ClientList, ALeaseAloneIsNoClient) {
    seen.leases = {{kNow + 60, kPhone, "10.0.0.2", "phone"}};
    EXPECT_THAT(Join(), IsEmpty());
}

TEST_F(ClientList, AStationThatMayNotUseTheNetworkIsNoClient) {
    seen.stations = {{.mac = kPhone, .authorized = false}};
    EXPECT_THAT(Join(), IsEmpty());
}

TEST_F(ClientList, GuestsAreTheStationsOfTheirOwnNetwork) {
    seen.told = {"wlan0", "wlan0_guest"};
    seen.stations = {{.mac = kPhone}};
    seen.guestStations = {{.mac = kLaptop}};
    EXPECT_THAT(Kinds(), ElementsAre(SYS_CONNECTION_WIFI, SYS_CONNECTION_GUEST_WIFI));
}

TEST_F(ClientList, ADeviceAtAnEthernetPortOfTheBridgeIsWired) {
    seen.told = {"wlan0", "wlan0_guest"};
    seen.neighbours = {{"br0", kLaptop, "10.0.0.3", false}, {"eth0", kLaptop, "", true}};
    const auto clients = Join();
    ASSERT_EQ(clients.size(), 1U);
    EXPECT_EQ(clients[0].kind, SYS_CONNECTION_WIRED_A);
    EXPECT_EQ(clients[0].address, "10.0.0.3") << "a static address: there is no lease";
}

TEST_F(ClientList, ADeviceAtAnEthernetPortWithoutABridgeIsWired) {
    seen.neighbours = {{"eth0", kLaptop, "10.0.0.3", false}, {"usb0", kPhone, "10.0.1.3", false}};
    EXPECT_THAT(Kinds(), ElementsAre(SYS_CONNECTION_WIRED_B, SYS_CONNECTION_WIRED_A));
}

TEST_F(ClientList, ADeviceOnlyTheBridgeRemembersIsGone) {
    seen.told = {"wlan0", "wlan0_guest"};
    seen.neighbours = {{"br0", kPhone, "10.0.0.2", false}, {"wlan0", kPhone, "", true}};
    EXPECT_THAT(Join(), IsEmpty());
}

TEST_F(ClientList, WithoutTheHostapdOfOneNetworkOnlyThatOneIsTakenFromWhatTheKernelSees) {
    seen.neighbours = {{"wlan0", kPhone, "", true}, {"wlan0_guest", kLaptop, "", true}};
    seen.told = {"wlan0"};
    EXPECT_THAT(Kinds(), ElementsAre(SYS_CONNECTION_GUEST_WIFI));
    seen.told = {"wlan0_guest"};
    EXPECT_THAT(Kinds(), ElementsAre(SYS_CONNECTION_WIFI));
}

TEST_F(ClientList, ANeighbourThatIsQuietStaysForAWhile) {
    seen.neighbours = {{"eth0", kLaptop, "10.0.0.3", false, seen.quietLimit - seconds(1)},
                       {"usb0", kPhone, "10.0.1.3", false, seconds(20)},
                       {"wwan0", 0x0299, "10.9.9.9", false, seen.quietLimit - seconds(5)}};
    EXPECT_THAT(Kinds(), ElementsAre(SYS_CONNECTION_WIRED_B, SYS_CONNECTION_WIRED_A));
    EXPECT_EQ(binding::NextDeparture(seen, interfaces), seconds(1));
    seen.neighbours[0].quiet = seen.quietLimit;
    EXPECT_THAT(Kinds(), ElementsAre(SYS_CONNECTION_WIRED_B));
    EXPECT_EQ(binding::NextDeparture(seen, interfaces), seen.quietLimit - seconds(20));
    seen.neighbours[1].quiet.reset();
    EXPECT_EQ(binding::NextDeparture(seen, interfaces), std::nullopt);
}

TEST_F(ClientList, AStationThatIsQuietKeepsItsAddress) {
    seen.stations = {{.mac = kPhone}};
    seen.neighbours = {{"br0", kPhone, "10.0.0.2", false, seen.quietLimit}};
    ASSERT_EQ(Join().size(), 1U);
    EXPECT_EQ(Join()[0].address, "10.0.0.2");
}

TEST_F(ClientList, WithoutHostapdWhoIsSeenAtAWifiInterfaceIsAClient) {
    seen.neighbours = {{"wlan0", kPhone, "", true},
                       {"wlan0_guest", kLaptop, "10.0.2.2", false},
                       {"wwan0", 0x0299, "10.9.9.9", false}};
    EXPECT_THAT(Kinds(), ElementsAre(SYS_CONNECTION_WIFI, SYS_CONNECTION_GUEST_WIFI));
}

TEST_F(ClientList, AClientIsListedOnceWithItsIpv4Address) {
    seen.stations = {{.mac = kPhone}};
    seen.neighbours = {{"br0", kPhone, "fe80::2", false},
                       {"br0", kPhone, "10.0.0.2", false},
                       {"br0", kPhone, "fe80::3", false},
                       {"wwan0", kPhone, "10.9.9.9", false}};
    const auto clients = Join();
    ASSERT_EQ(clients.size(), 1U);
    EXPECT_EQ(clients[0].address, "10.0.0.2");
}

TEST_F(ClientList, IsLimited) {
    for (binding::MacAddress mac = 1; mac <= 10'000; ++mac) {
        seen.stations.push_back({.mac = mac});
        seen.guestStations.push_back({.mac = 20'000 + mac});
    }
    EXPECT_EQ(Join().size(), binding::kMostClients);
}

TEST_F(ClientList, TheListIsCutOnlyWhenSomebodyIsLeftOut) {
    for (binding::MacAddress mac = 1; mac <= binding::kMostClients; ++mac) {
        seen.stations.push_back({.mac = mac});
    }
    seen.neighbours = {{"eth0", 1, "10.0.0.3", false}};
    EXPECT_FALSE(binding::JoinClients(seen, interfaces, kNow).isCut);
    seen.neighbours.push_back({"eth0", kLaptop, "10.0.0.4", false});
    EXPECT_TRUE(binding::JoinClients(seen, interfaces, kNow).isCut);
    EXPECT_EQ(Join().size(), binding::kMostClients);
}

}  // namespace
