// What rtnetlink tells about interfaces and neighbours.
#include "bindings/linux/network/network_table.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <net/if.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <string>
#include <variant>
#include <vector>

namespace {

using std::chrono::seconds;

constexpr unsigned int kLowerUp = 1U << 16U;

/// A datagram of the kernel.
class Datagram {
  public:
    template <typename Record>
    Datagram& Begin(int type, const Record& record) {
        start = bytes.size();
        nlmsghdr head{};
        head.nlmsg_type = static_cast<std::uint16_t>(type);
        Append(&head, sizeof(head));
        Append(&record, sizeof(record));
        return Finish();
    }

    Datagram& Attribute(int type, const void* value, std::size_t size) {
        rtattr head{};
        head.rta_type = static_cast<std::uint16_t>(type);
        head.rta_len = static_cast<std::uint16_t>(sizeof(head) + size);
        Append(&head, sizeof(head));
        Append(value, size);
        return Finish();
    }

    Datagram& Link(int type, int index, const std::string& name, unsigned int flags,
                   int family = AF_UNSPEC) {
        ifinfomsg info{};
        info.ifi_family = static_cast<unsigned char>(family);
        info.ifi_index = index;
        info.ifi_flags = flags;
        return Begin(type, info).Attribute(IFLA_IFNAME, name.c_str(), name.size() + 1);
    }

    /// @p quiet are hundredths of a second since the device has last answered.
    Datagram& Entry(int type, int family, int index, int state, binding::MacAddress mac,
                    const std::string& address = "", std::uint32_t quiet = 0) {
        ndmsg info{};
        info.ndm_family = static_cast<std::uint8_t>(family);
        info.ndm_ifindex = index;
        info.ndm_state = static_cast<std::uint16_t>(state);
        Begin(type, info);
        unsigned char raw[sizeof(in6_addr)] = {};
        if (inet_pton(family, address.c_str(), raw) == 1) {
            Attribute(NDA_DST, raw, family == AF_INET ? 4 : 16);
        }
        unsigned char hardware[6] = {};
        for (int byte = 5; byte >= 0; --byte, mac >>= 8U) {
            hardware[byte] = static_cast<unsigned char>(mac);
        }
        Attribute(NDA_LLADDR, hardware, sizeof(hardware));
        // The kernel has sent something to it just now, which tells nothing of the device.
        const nda_cacheinfo cache{
            .ndm_confirmed = quiet + 6000, .ndm_used = 0, .ndm_updated = quiet, .ndm_refcnt = 1};
        return Attribute(NDA_CACHEINFO, &cache, sizeof(cache));
    }

    const std::vector<std::byte>& Bytes() const { return bytes; }

  private:
    void Append(const void* data, std::size_t size) {
        const std::size_t at = bytes.size();
        bytes.resize((at + size + 3) / 4 * 4);
        std::memcpy(bytes.data() + at, data, size);
    }

    Datagram& Finish() {
        const auto length = static_cast<std::uint32_t>(bytes.size() - start);
        std::memcpy(bytes.data() + start, &length, sizeof(length));
        return *this;
    }

    std::vector<std::byte> bytes;
    std::size_t start = 0;
};

class NetworkTableTest : public ::testing::Test {
  protected:
    /// Whether anything changed.
    bool Take(const Datagram& datagram) {
        bool changed = false;
        for (const auto& message : binding::ParseNetworkMessages(datagram.Bytes())) {
            changed = table.Apply(message, now) || changed;
        }
        return changed;
    }

    std::vector<binding::Sighting> Sightings() const { return table.Sightings(now); }

    binding::NetworkTable table;
    binding::NetworkTable::Time now{seconds(1'000'000)};
};

TEST_F(NetworkTableTest, ALinkIsSwitchedOnAndHasACableOrNot) {
    EXPECT_EQ(table.FindLink("eth0"), nullptr);
    EXPECT_TRUE(Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP)));
    ASSERT_NE(table.FindLink("eth0"), nullptr);
    EXPECT_TRUE(table.FindLink("eth0")->up);
    EXPECT_FALSE(table.FindLink("eth0")->carrier);
    EXPECT_TRUE(Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP | kLowerUp)));
    EXPECT_TRUE(table.FindLink("eth0")->carrier);
    EXPECT_FALSE(Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP | kLowerUp | IFF_PROMISC)));
    EXPECT_TRUE(Take(Datagram().Link(RTM_DELLINK, 2, "eth0", 0)));
    EXPECT_EQ(table.FindLink("eth0"), nullptr);
}

TEST_F(NetworkTableTest, ALinkThatLeavesABridgeIsStillThere) {
    Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP));
    EXPECT_FALSE(Take(Datagram().Link(RTM_DELLINK, 2, "eth0", 0, AF_BRIDGE)));
    EXPECT_NE(table.FindLink("eth0"), nullptr);
}

TEST_F(NetworkTableTest, ANeighbourIsSeenUntilItStopsToAnswer) {
    Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP));
    EXPECT_TRUE(
        Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_REACHABLE, 0x0211, "10.0.0.2")));
    EXPECT_TRUE(Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_STALE, 0x0211, "10.0.0.2")));
    ASSERT_EQ(Sightings().size(), 1U);
    EXPECT_EQ(Sightings()[0].interface, "eth0");
    EXPECT_EQ(Sightings()[0].mac, 0x0211U);
    EXPECT_EQ(Sightings()[0].address, "10.0.0.2");
    EXPECT_FALSE(Sightings()[0].forwarding);
    EXPECT_TRUE(Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_FAILED, 0x0211, "10.0.0.2")));
    EXPECT_TRUE(Sightings().empty());
}

TEST_F(NetworkTableTest, ANeighbourIsQuietFromWhenItHasLastAnswered) {
    Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP));
    Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_STALE, 0x0211, "10.0.0.2", 4000));
    EXPECT_EQ(Sightings().at(0).quiet, seconds(40));
    now += seconds(100);
    EXPECT_EQ(Sightings().at(0).quiet, seconds(140));
    EXPECT_TRUE(
        Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_REACHABLE, 0x0211, "10.0.0.2")));
    now += seconds(100);
    EXPECT_EQ(Sightings().at(0).quiet, std::nullopt);
    EXPECT_FALSE(
        Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_PROBE, 0x0211, "10.0.0.2", 9000)));
    EXPECT_EQ(Sightings().at(0).quiet, std::nullopt) << "it is being asked";
}

TEST_F(NetworkTableTest, AQuietNeighbourThatIsAskedIsQuietUntilItAnswers) {
    Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP));
    Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_STALE, 0x0211, "10.0.0.2", 40'000));
    for (const int state : {NUD_DELAY, NUD_PROBE}) {
        // The kernel has changed the entry just now.
        EXPECT_FALSE(
            Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, state, 0x0211, "10.0.0.2", 0)));
        EXPECT_EQ(Sightings().at(0).quiet, seconds(400));
    }
    EXPECT_TRUE(
        Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_REACHABLE, 0x0211, "10.0.0.2")));
    EXPECT_EQ(Sightings().at(0).quiet, std::nullopt);
    // One that is not known yet is as quiet as its last answer tells.
    Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_PROBE, 0x0222, "10.0.0.3", 40'000));
    EXPECT_EQ(Sightings().at(1).quiet, seconds(460));
}

TEST_F(NetworkTableTest, AQuietNeighbourThatIsHeardOfIsAChange) {
    Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP));
    const auto stale = [](std::uint32_t quiet) {
        return Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_STALE, 0x0211, "10.0.0.2", quiet);
    };
    Take(stale(40'000));
    EXPECT_FALSE(Take(stale(40'000)));
    EXPECT_TRUE(Take(stale(0)));
    EXPECT_EQ(Sightings().at(0).quiet, seconds(0));
}

TEST_F(NetworkTableTest, AnAddressThatNobodyHasAnsweredForIsNoNeighbour) {
    Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP));
    Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_INCOMPLETE, 0, "10.0.0.2"));
    Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET6, 2, NUD_PERMANENT, 0x0211, "ff02::1"));
    Take(Datagram().Entry(RTM_NEWNEIGH, AF_INET6, 2, NUD_NOARP, 0x0211, "ff02::2"));
    EXPECT_TRUE(Sightings().empty());
}

TEST_F(NetworkTableTest, ABridgeTellsBehindWhichPortADeviceIs) {
    Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP));
    Take(Datagram().Entry(RTM_NEWNEIGH, AF_BRIDGE, 2, NUD_PERMANENT, 0x0299));
    EXPECT_TRUE(Sightings().empty()) << "the port's own address";
    Take(Datagram().Entry(RTM_NEWNEIGH, AF_BRIDGE, 2, NUD_REACHABLE, 0x0211));
    Take(Datagram().Entry(RTM_NEWNEIGH, AF_BRIDGE, 2, NUD_STALE, 0x0222));
    ASSERT_EQ(Sightings().size(), 2U);
    EXPECT_TRUE(Sightings()[0].forwarding);
    EXPECT_EQ(Sightings()[0].address, "");
    EXPECT_TRUE(Take(Datagram().Entry(RTM_DELNEIGH, AF_BRIDGE, 2, NUD_STALE, 0x0222)));
    EXPECT_EQ(Sightings().size(), 1U);
}

TEST_F(NetworkTableTest, NeighboursGoWithTheirInterface) {
    Take(Datagram()
             .Link(RTM_NEWLINK, 2, "eth0", IFF_UP)
             .Link(RTM_NEWLINK, 3, "eth1", IFF_UP)
             .Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_STALE, 0x0211, "10.0.0.2")
             .Entry(RTM_NEWNEIGH, AF_INET, 3, NUD_STALE, 0x0222, "10.0.1.2"));
    EXPECT_EQ(Sightings().size(), 2U);
    Take(Datagram().Link(RTM_DELLINK, 2, "eth0", 0));
    ASSERT_EQ(Sightings().size(), 1U);
    EXPECT_EQ(Sightings()[0].mac, 0x0222U);
}

TEST_F(NetworkTableTest, NeighboursAreKeptUpToALimit) {
    Take(Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP));
    for (binding::MacAddress mac = 1; mac < 40'100; ++mac) {
        Take(Datagram().Entry(RTM_NEWNEIGH, AF_BRIDGE, 2, NUD_REACHABLE, mac));
    }
    EXPECT_EQ(Sightings().size(), binding::kMostNeighbours);
    EXPECT_TRUE(table.LeavesOut());
    EXPECT_FALSE(table.HasRoomAgain());
    for (binding::MacAddress mac = 1; mac < 5'000; ++mac) {
        Take(Datagram().Entry(RTM_DELNEIGH, AF_BRIDGE, 2, NUD_REACHABLE, mac));
    }
    EXPECT_TRUE(table.HasRoomAgain()) << "for those that were left out";
}

TEST_F(NetworkTableTest, ATableThatIsJustFullLeavesNobodyOut) {
    for (binding::MacAddress mac = 1; mac <= binding::kMostNeighbours; ++mac) {
        Take(Datagram().Entry(RTM_NEWNEIGH, AF_BRIDGE, 2, NUD_REACHABLE, mac));
    }
    EXPECT_FALSE(table.LeavesOut());
}

TEST(NetworkMessages, AListThatTheKernelRefusesOrBreaksOffIsNotComplete) {
    const auto error = [](int type, int number) {
        const auto messages = binding::ParseNetworkMessages(Datagram().Begin(type, number).Bytes());
        return messages.size() == 1 ? std::get<binding::ListEnd>(messages[0]).error : -1;
    };
    EXPECT_EQ(error(NLMSG_ERROR, -ENOBUFS), ENOBUFS);
    EXPECT_EQ(error(NLMSG_DONE, -EMSGSIZE), EMSGSIZE);
    EXPECT_EQ(error(NLMSG_DONE, 0), 0);
}

TEST_F(NetworkTableTest, ADatagramThatIsCutAnywhereIsReadAsFarAsItGoes) {
    Datagram whole;
    whole.Link(RTM_NEWLINK, 2, "eth0", IFF_UP)
        .Entry(RTM_NEWNEIGH, AF_INET, 2, NUD_STALE, 0x0211, "10.0.0.2");
    for (std::size_t size = 0; size < whole.Bytes().size(); ++size) {
        const std::vector<std::byte> cut(whole.Bytes().begin(),
                                         whole.Bytes().begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_LT(binding::ParseNetworkMessages(cut).size(), 2U) << size;
    }
    EXPECT_EQ(binding::ParseNetworkMessages(whole.Bytes()).size(), 2U);
}

TEST_F(NetworkTableTest, AttributesThatClaimAnotherLengthAreLeftOut) {
    std::vector<std::byte> bytes = Datagram().Link(RTM_NEWLINK, 2, "eth0", IFF_UP).Bytes();
    for (const std::uint16_t length : std::initializer_list<std::uint16_t>{0, 3, 0xffff}) {
        std::memcpy(bytes.data() + sizeof(nlmsghdr) + sizeof(ifinfomsg), &length, sizeof(length));
        const auto messages = binding::ParseNetworkMessages(bytes);
        ASSERT_EQ(messages.size(), 1U);
        EXPECT_EQ(std::get<binding::Link>(messages[0]).name, "");
    }
}

}  // namespace
