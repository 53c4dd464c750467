// What the real kernel tells, in a network of the test's own. That needs the rights of root.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "bindings/linux/event.h"
#include "bindings/linux/network/client_list.h"
#include "bindings/linux/network/route_socket.h"
#include "bindings/posix/files/file_io.h"
#include "tests/unit/bindings/linux/services/service_test.h"

// In sanitized programs only.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): its name there
extern "C" [[gnu::weak]] void __asan_init();

namespace {

using binding::Device;
using ::testing::ElementsAre;

class Kernel : public ServiceTest {
  protected:
    Kernel() {
        settings["checkSeconds"] = 3600;
        settings["ethernet"] = {"port"};
        settings["bridge"] = "bridge";
    }

    /// Runs @p body in a network namespace of its own, which the board then is in, too.
    void InOwnNetwork(const std::function<void()>& body) {
        bool isAllowed = false;
        std::thread([&] {
            isAllowed = unshare(CLONE_NEWNET) == 0;
            if (isAllowed) {
                body();
                board.reset();
            }
        }).join();
        if (!isAllowed) {
            GTEST_SKIP() << "a network namespace needs root";
        }
    }

    static void Ip(const std::string& arguments) {
        ASSERT_EQ(std::system(("ip " + arguments).c_str()), 0) << arguments;
    }

    bool WaitForClients(const std::vector<int>& kinds) {
        return WaitFor([&](const Device& now) { return Kinds(now) == kinds; });
    }

    /// Address of the client @p mac in the list of clients; "none" when it is not there.
    std::string AddressOf(const std::string& mac) {
        for (const auto& client : Said("clients")) {
            if (client["mac"] == mac) {
                return client["address"];
            }
        }
        return "none";
    }

    /// Has the kernel tell all listeners of this network of a device of @p subsystem.
    static void SendUevent(const std::string& subsystem) {
        const std::string path = "/devices/virtual/" + subsystem + "/test";
        const std::string text = "change@" + path + '\0' + "ACTION=change" + '\0' +
                                 "DEVPATH=" + path + '\0' + "SUBSYSTEM=" + subsystem + '\0';
        nlmsghdr head{};
        head.nlmsg_len = static_cast<std::uint32_t>(sizeof(head) + text.size());
        head.nlmsg_type = NLMSG_MIN_TYPE;
        head.nlmsg_flags = NLM_F_REQUEST;
        std::string message(sizeof(head), '\0');
        std::memcpy(message.data(), &head, sizeof(head));
        message += text;
        const binding::FileDescriptor sender(
            socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_KOBJECT_UEVENT));
        sockaddr_nl kernel{};
        kernel.nl_family = AF_NETLINK;
        ASSERT_EQ(sendto(sender.Number(), message.data(), message.size(), 0,
                         reinterpret_cast<const sockaddr*>(&kernel), sizeof(kernel)),
                  static_cast<ssize_t>(message.size()));
    }
};

TEST_F(Kernel, TellsWhenACableIsPluggedInAndThePortTakenOut) {
    InOwnNetwork([this] {
        Begin();
        EXPECT_EQ(board->Newest()->getEthernetEnabled.value, 0);
        Ip("link add port type veth peer name other");
        Ip("link set port up");
        EXPECT_TRUE(WaitFor([](const Device& now) {
            return now.getEthernetEnabled.value == 1 && now.getEthernetLinkStatus.value == 0;
        }));
        Ip("link set other up");
        EXPECT_TRUE(
            WaitFor([](const Device& now) { return now.getEthernetLinkStatus.value == 1; }));
        Ip("link del port");
        EXPECT_TRUE(WaitFor([](const Device& now) {
            return now.getEthernetEnabled.value == 0 && now.getEthernetLinkStatus.value == 0;
        }));
    });
}

TEST_F(Kernel, TellsWhoIsSeenAtAPort) {
    InOwnNetwork([this] {
        Ip("link add port type veth peer name other");
        Ip("link set port up");
        Ip("link set other up");
        Ip("neigh add 10.0.0.2 lladdr 02:11:22:33:44:55 dev port nud reachable");
        Begin();
        EXPECT_THAT(Kinds(*board->Newest()), ElementsAre(SYS_CONNECTION_WIRED_A));
        Ip("neigh add 10.0.0.3 lladdr 02:11:22:33:44:66 dev port nud stale");
        EXPECT_TRUE(WaitForClients({SYS_CONNECTION_WIRED_A, SYS_CONNECTION_WIRED_A}));
        Ip("neigh del 10.0.0.2 dev port");
        EXPECT_TRUE(WaitForClients({SYS_CONNECTION_WIRED_A}));
        Ip("link set other down");
        EXPECT_TRUE(WaitForClients({})) << "the kernel forgets who was seen through the cable";
    });
}

TEST_F(Kernel, KeepsAQuietNeighbourForEverAndTheServiceForAWhile) {
    settings["clientQuietSeconds"] = 1;
    InOwnNetwork([this] {
        Ip("link add port type veth peer name other");
        Ip("link set port up");
        Ip("link set other up");
        Ip("neigh add 10.0.0.2 lladdr 02:11:22:33:44:55 dev port nud reachable");
        Ip("neigh add 10.0.0.3 lladdr 02:11:22:33:44:66 dev port nud stale");
        Begin();
        EXPECT_TRUE(WaitForClients({SYS_CONNECTION_WIRED_A}));
        EXPECT_EQ(AddressOf("02:11:22:33:44:66"), "none");
    });
}

TEST_F(Kernel, TellsBehindWhichPortOfTheBridgeAClientIs) {
    InOwnNetwork([this] {
        Ip("link add bridge type bridge");
        Ip("link add port type veth peer name other");
        Ip("link set port master bridge");
        for (const char* interface : {"bridge", "port", "other"}) {
            Ip(std::string("link set up ") + interface);
        }
        // A port learns once the kernel has noticed its carrier, which it does on its own time.
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (std::system("bridge fdb add 02:11:22:33:44:55 dev port master dynamic") != 0) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "the port does not learn";
        }
        Ip("neigh add 10.0.0.2 lladdr 02:11:22:33:44:55 dev bridge nud reachable");
        Ip("neigh add 10.0.0.3 lladdr 02:11:22:33:44:66 dev bridge nud stale");
        Begin();
        // The bridge also sees the other end of the cable, once that sends something.
        EXPECT_EQ(AddressOf("02:11:22:33:44:55"), "10.0.0.2");
        EXPECT_EQ(AddressOf("02:11:22:33:44:66"), "none") << "at no port";
        ASSERT_EQ(std::system("bridge fdb del 02:11:22:33:44:55 dev port master"), 0);
        EXPECT_TRUE(
            WaitFor([this](const Device&) { return AddressOf("02:11:22:33:44:55") == "none"; }));
    });
}

TEST(RouteSocket, TellsWhyItCannotListAndListsLater) {
    if (__asan_init != nullptr) {
        GTEST_SKIP()
            << "the sanitizer takes an exception for a wrong object if it can open no file";
    }
    sd_event* made = nullptr;
    ASSERT_GE(sd_event_new(&made), 0);
    const binding::EventPointer event(made);
    std::string problem;
    bool isListed = false;
    const binding::RouteSocket routes(
        event.get(), binding::RouteSocket::Scope::links, [&] { isListed = true; },
        [&](const std::string& why) { problem = why; });
    const auto run = [&](const auto& until) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!until() && std::chrono::steady_clock::now() < end) {
            ASSERT_GE(sd_event_run(event.get(), 100'000), 0);
        }
    };
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    run([&] { return !problem.empty(); });
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(problem, "netlink: socket: Too many open files");
    EXPECT_FALSE(isListed);
    run([&] { return isListed; });
    EXPECT_NE(routes.Table().FindLink("lo"), nullptr);
}

TEST_F(Kernel, TellsOfABatteryAtOnce) {
    InOwnNetwork([this] {
        const auto battery = directory / "power" / "BAT0";
        std::filesystem::create_directories(battery);
        WriteFile(battery / "type", "Battery\n");
        WriteFile(battery / "capacity", "81\n");
        Begin();
        EXPECT_EQ(board->Newest()->getBatteryStatus.value.chargePercent, 81);
        WriteFile(battery / "capacity", "9\n");
        SendUevent("power_supply");
        EXPECT_TRUE(WaitFor(
            [](const Device& now) { return now.getBatteryStatus.value.chargePercent == 9; }));
    });
}

}  // namespace
