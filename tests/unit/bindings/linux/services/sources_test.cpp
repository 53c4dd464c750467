// The sources beside the modem, each with its daemon in the test.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <fstream>
#include <memory>

#include "bindings/device/codes.h"
#include "bindings/linux/text.h"
#include "bindings/posix/log/repeated_lines.h"
#include "tests/unit/bindings/linux/services/service_test.h"

namespace {

using binding::Device;
using binding::kSourceLost;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

using Services = ServiceTest;

/// Lets the log hold no line back that comes again.
class LogOfEveryLine {
  public:
    LogOfEveryLine() {
        binding::SetLogClock([] {
            static std::atomic<int> lines = 0;
            return binding::RepeatedLines::TimePoint(std::chrono::hours(++lines));
        });
    }
    ~LogOfEveryLine() { binding::SetLogClock(nullptr); }
    LogOfEveryLine(const LogOfEveryLine&) = delete;
    LogOfEveryLine& operator=(const LogOfEveryLine&) = delete;
};

bool WifiIsOn(const Device& now) {
    return now.getWiFiEnabled.error == 0 && now.getWiFiEnabled.value == 1;
}

bool WifiIsLost(const Device& now) {
    return now.getWiFiEnabled.error == kSourceLost;
}

TEST_F(Services, WithoutAnyDaemonTheHardwareIsAbsentAndNothingIsLogged) {
    Begin();
    const auto first = board->Newest();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->getWiFiEnabled.error, 0);
    EXPECT_EQ(first->getWiFiEnabled.value, 0);
    EXPECT_EQ(first->getEthernetEnabled.value, 0);
    EXPECT_EQ(first->getConnectedDeviceList.error, 0);
    EXPECT_EQ(first->getBatteryStatus.value.detection, SYS_BATTERY_NOT_PRESENT);
    EXPECT_EQ(first->getGPSStatus.value, SYS_GPS_OFF);
    EXPECT_EQ(first->getSDCardInfo.error, SYS_ERROR_NO_SD_CARD);
    EXPECT_EQ(first->getSambaEnabled.error, 0);
    EXPECT_EQ(first->softwareUpdateStatus.error, 0);
    EXPECT_THAT(Log(), ElementsAre());
}

TEST_F(Services, WifiIsWhatHostapdTells) {
    settings["wifiMaxClients"] = 16;
    const auto hostapd = Hostapd();
    hostapd->stations = {0x021122334455, 0x021122334466};
    Begin();
    ASSERT_TRUE(WaitFor(WifiIsOn));
    EXPECT_EQ(board->Newest()->getWiFiMaxClients.value, 16U);
    EXPECT_THAT(Kinds(*board->Newest()), ElementsAre(SYS_CONNECTION_WIFI, SYS_CONNECTION_WIFI));
    EXPECT_EQ(Said("wifi")["wlan0"]["network"], "Kestal");
    hostapd->state = "DISABLED";
    hostapd->Say("AP-DISABLED ");
    EXPECT_TRUE(WaitFor([](const Device& now) { return now.getWiFiEnabled.value == 0; }));
}

TEST_F(Services, StationsComeAndGoByEvents) {
    const auto hostapd = Hostapd();
    Begin();
    ASSERT_TRUE(WaitFor(WifiIsOn));
    hostapd->Say("AP-STA-CONNECTED 02:11:22:33:44:55");
    EXPECT_TRUE(WaitFor([](const Device& now) { return Kinds(now).size() == 1; }));
    hostapd->Say("AP-STA-DISCONNECTED 02:11:22:33:44:55");
    EXPECT_TRUE(WaitFor([](const Device& now) { return Kinds(now).empty(); }));
}

TEST_F(Services, ListOfStationsWithoutAnEndIsCut) {
    const auto hostapd = Hostapd();
    hostapd->endless = true;
    Begin();
    ASSERT_TRUE(WaitFor(WifiIsOn));
    EXPECT_EQ(Kinds(*board->Newest()).size(), binding::kMostClients);
}

TEST_F(Services, ListOfStationsIsBegunAgainWhenTheLastOneToldHasLeft) {
    const auto hostapd = Hostapd();
    hostapd->stations = {0x021122334455, 0x021122334466};
    hostapd->refusals = 1;
    Begin();
    EXPECT_EQ(Kinds(*board->Newest()).size(), 2U);
}

TEST_F(Services, StationsStayWhileTheyAreListedAgain) {
    const auto hostapd = Hostapd();
    hostapd->stations = {0x021122334455, 0x021122334466};
    Begin();
    ASSERT_TRUE(WaitFor([](const Device& now) { return Kinds(now).size() == 2; }));
    std::vector<std::size_t> seen;
    hostapd->asked = [&](std::string_view command) {
        if (command.starts_with("STA-")) {
            seen.push_back(Said("clients").size());
        }
    };
    // Other rights may be what the board needs, so that it connects again.
    const auto socket = directory / "run" / "hostapd" / "wlan0";
    std::filesystem::permissions(socket, std::filesystem::perms::owner_all);
    EXPECT_TRUE(WaitFor([&](const Device&) { return seen.size() >= 3; }));
    EXPECT_THAT(seen, Each(2));
    hostapd->asked = nullptr;
    // It has left while nobody listened.
    hostapd->stations.erase(0x021122334455);
    std::filesystem::permissions(
        socket, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    EXPECT_TRUE(WaitFor([](const Device& now) { return Kinds(now).size() == 1; }));
}

TEST_F(Services, StationThatJoinsBeforeItIsListedDoesNotEndTheList) {
    const auto hostapd = Hostapd();
    hostapd->stations = {0x021122334455, 0x021122334466, 0x021122334477};
    hostapd->asked = [&](std::string_view command) {
        if (command == "STA-NEXT 02:11:22:33:44:55") {
            hostapd->Say("AP-STA-CONNECTED 02:11:22:33:44:66");
            hostapd->Say("AP-STA-CONNECTED 02:11:22:33:44:88");
        }
    };
    Begin();
    ASSERT_TRUE(WaitFor(WifiIsOn));
    EXPECT_EQ(Kinds(*board->Newest()).size(), 4U);
}

TEST_F(Services, HostapdThatNeverGoesOnWithTheListIsNotAskedForEver) {
    const auto hostapd = Hostapd();
    hostapd->stations = {0x021122334455, 0x021122334466};
    hostapd->refusals = 1'000'000;
    Begin();
    ASSERT_TRUE(WaitFor(WifiIsOn));
    EXPECT_GT(hostapd->refusals, 999'900);
    EXPECT_EQ(Kinds(*board->Newest()).size(), 1U);
}

TEST_F(Services, GuestsHaveNetworksOfTheirOwn) {
    settings["guestWifi"] = {"guest24", "guest5"};
    const auto hostapd = Hostapd();
    const auto slow = Hostapd("guest24");
    const auto fast = Hostapd("guest5");
    hostapd->stations = {0x021122334455};
    slow->state = "DISABLED";
    fast->stations = {0x021122334466};
    Begin();
    ASSERT_TRUE(WaitFor([](const Device& now) { return Kinds(now).size() == 2; }));
    EXPECT_THAT(Kinds(*board->Newest()),
                ElementsAre(SYS_CONNECTION_WIFI, SYS_CONNECTION_GUEST_WIFI));
    const auto& profiles = board->Newest()->getWiFiGuestProfileEnabled;
    EXPECT_EQ(profiles.At(SYS_WIFI_GUEST_2_4_GHZ).value, 0);
    EXPECT_EQ(profiles.At(SYS_WIFI_GUEST_5_GHZ).value, 1);
}

TEST_F(Services, HostapdThatStartsLaterIsNoticed) {
    settings["checkSeconds"] = 3600;
    Begin();
    EXPECT_EQ(board->Newest()->getWiFiEnabled.value, 0);
    const auto hostapd = Hostapd();
    EXPECT_TRUE(WaitFor(WifiIsOn));
}

TEST_F(Services, HostapdThatEndsIsLostUntilItIsBack) {
    settings["checkSeconds"] = 3600;
    auto hostapd = Hostapd();
    Begin();
    ASSERT_TRUE(WaitFor(WifiIsOn));
    hostapd->Say("CTRL-EVENT-TERMINATING ");
    ASSERT_TRUE(WaitFor(WifiIsLost));
    daemons.clear();
    hostapd.reset();
    std::filesystem::remove_all(directory / "run");
    hostapd = Hostapd();
    EXPECT_TRUE(WaitFor(WifiIsOn));
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("wifi: lost: "), "[LINUX]:[NOTICE] - wifi: is back"));
}

TEST_F(Services, HostapdThatHangsIsLostUntilItAnswersAgain) {
    settings["silenceSeconds"] = 1;
    const auto hostapd = Hostapd();
    Begin();
    ASSERT_TRUE(WaitFor(WifiIsOn));
    hostapd->silent = true;
    ASSERT_TRUE(WaitFor(WifiIsLost));
    hostapd->stations = {0x021122334455};
    hostapd->silent = false;
    ASSERT_TRUE(WaitFor(WifiIsOn));
    EXPECT_EQ(Kinds(*board->Newest()).size(), 1U) << "who has come meanwhile";
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - wifi: lost: hostapd does not answer",
                                   "[LINUX]:[NOTICE] - wifi: is back"));
}

TEST_F(Services, HostapdThatNeverAnswersIsLost) {
    settings["silenceSeconds"] = 1;
    const auto hostapd = Hostapd();
    hostapd->silent = true;
    Begin();
    EXPECT_TRUE(WaitFor(WifiIsLost));
}

TEST_F(Services, HostapdThatRefusesToTellOfEventsIsLost) {
    const auto hostapd = Hostapd();
    hostapd->attached = "FAIL\n";
    Begin();
    EXPECT_TRUE(WaitFor(WifiIsLost));
}

TEST_F(Services, StatusOfHostapdThatCannotBeReadIsLoggedOnce) {
    const LogOfEveryLine all;
    const auto hostapd = Hostapd();
    hostapd->nonsense = "FAIL\n";
    Begin();
    EXPECT_EQ(board->Newest()->getWiFiEnabled.value, 0);
    hostapd->Say("AP-DISABLED ");
    ASSERT_TRUE(WaitFor([&](const Device&) { return hostapd->statuses == 2; }));
    // It is read after the second answer.
    hostapd->Say("AP-STA-CONNECTED 02:11:22:33:44:55");
    ASSERT_TRUE(WaitFor([](const Device& now) { return Kinds(now).size() == 1; }));
    hostapd->nonsense.clear();
    hostapd->Say("AP-ENABLED ");
    ASSERT_TRUE(WaitFor(WifiIsOn));
    // One that answers so now and then does not fill the log.
    hostapd->nonsense = "FAIL\n";
    hostapd->Say("AP-DISABLED ");
    ASSERT_TRUE(WaitFor([](const Device& now) { return now.getWiFiEnabled.value == 0; }));
    EXPECT_THAT(Log(),
                ElementsAre("[LINUX]:[ERROR] - wlan0: hostapd's answer to STATUS tells no state"));
}

TEST_F(Services, LeaseNamesAClientAsSoonAsItIsWritten) {
    const auto hostapd = Hostapd();
    hostapd->stations = {0x021122334455};
    Begin();
    ASSERT_TRUE(WaitFor([](const Device& now) { return Kinds(now).size() == 1; }));
    EXPECT_EQ(Said("clients")[0]["name"], "");
    // Like dnsmasq, which keeps the file open.
    std::ofstream leases(directory / "leases");
    leases << "0 02:11:22:33:44:55 10.0.0.2 phone *\n" << std::flush;
    EXPECT_TRUE(WaitFor([this](const Device&) { return Said("clients")[0]["name"] == "phone"; }));
    EXPECT_EQ(Said("clients")[0]["address"], "10.0.0.2");
}

TEST_F(Services, WhatIsWrongWithTheLeasesIsLoggedOnceUntilItIsRightAgain) {
    const auto hostapd = Hostapd();
    hostapd->stations = {0x021122334455};
    const auto path = directory / "leases";
    const auto write = [&](const std::string& name, const std::string& rest) {
        WriteFile(path, "0 02:11:22:33:44:55 10.0.0.2 " + name + " *\n" + rest);
    };
    const auto isRead = [this](const std::string& name) {
        return WaitFor([&](const Device&) {
            const auto clients = Said("clients");
            return clients.size() == 1 && clients[0]["name"] == name;
        });
    };
    const auto isLogged = [this](std::size_t lines) {
        return WaitFor([&](const Device&) { return Log().size() == lines; });
    };
    write("first", "nonsense\n");
    Begin();
    ASSERT_TRUE(isLogged(1));
    write("second", "0 02:11:22:33:44 10.0.0.3 other *\n");
    ASSERT_TRUE(isRead("second"));
    write("third", "");
    ASSERT_TRUE(isRead("third"));
    write("fourth", "0 02:11:22");
    ASSERT_TRUE(isLogged(2));
    const std::string begin = "[LINUX]:[ERROR] - clients: " + path.string() + ": line 2: ";
    EXPECT_THAT(Log(), ElementsAre(begin + "the time at which the lease ends is none",
                                   begin + "it is cut"));
}

TEST_F(Services, LeasesThatAreWrittenAllTheTimeAreComplainedOf) {
    Begin();
    EXPECT_TRUE(WaitFor([this](const Device&) {
        WriteFile(directory / "leases", "nonsense\n");
        return Log().size() == 1;
    }));
}

TEST_F(Services, EthernetIsThePortOfTheKernel) {
    settings["ethernet"] = {"lo"};
    Begin();
    // The loopback interface is switched on in any machine, and always has a carrier then.
    EXPECT_TRUE(WaitFor([](const Device& now) { return now.getEthernetEnabled.value == 1; }));
    EXPECT_EQ(board->Newest()->getEthernetLinkStatus.value, 1);
}

TEST_F(Services, BatteryIsTheKernelsWithoutUPower) {
    std::filesystem::create_directories(directory / "power" / "BAT0");
    const auto battery = directory / "power" / "BAT0";
    WriteFile(battery / "type", "Battery\n");
    WriteFile(battery / "capacity", "81\n");
    Begin();
    EXPECT_EQ(board->Newest()->getBatteryStatus.value.detection, SYS_BATTERY_PRESENT);
    EXPECT_EQ(board->Newest()->getBatteryStatus.value.chargePercent, 81);
    // A gauge that does not tell of changes is read again with each check.
    WriteFile(battery / "capacity", "9\n");
    EXPECT_TRUE(
        WaitFor([](const Device& now) { return now.getBatteryStatus.value.chargePercent == 9; }));
}

class Position : public Services {
  protected:
    Position() {
        Use(gpsd);
        settings["gpsdPort"] = std::to_string(gpsd.Port());
        gpsd.greeting = "{\"class\":\"VERSION\"}\r\n";
    }

    bool WaitForStatus(int status) {
        return WaitFor([status](const Device& now) {
            return now.getGPSStatus.error == 0 && now.getGPSStatus.value == status;
        });
    }

    bool WaitForLoss() {
        return WaitFor([](const Device& now) { return now.getGPSStatus.error == kSourceLost; });
    }

    FakeServer gpsd;
};

TEST_F(Position, NeedsANumericAddress) {
    settings["gpsdHost"] = "localhost";
    Begin();
    EXPECT_EQ(board->Newest()->getGPSStatus.value, SYS_GPS_OFF);
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("position: gpsdHost \"localhost\"")));
}

TEST_F(Position, IsWhatGpsdReports) {
    gpsd.greeting += "{\"class\":\"DEVICES\",\"devices\":[{\"path\":\"/dev/gps0\"}]}\r\n";
    Begin();
    ASSERT_TRUE(WaitForStatus(SYS_GPS_SEARCHING));
    EXPECT_THAT(gpsd.heard, HasSubstr("?WATCH={\"enable\":true,\"json\":true};"));
    gpsd.Say("{\"class\":\"TPV\",\"device\":\"/dev/gps0\",");
    gpsd.Say("\"mode\":3}\r\n");
    EXPECT_TRUE(WaitForStatus(SYS_GPS_GOT_FIX));
}

TEST_F(Position, IsLostWithGpsdUntilItIsBack) {
    settings["checkSeconds"] = 3600;
    gpsd.greeting += "{\"class\":\"DEVICES\",\"devices\":[{\"path\":\"/dev/gps0\"}]}\r\n";
    Begin();
    ASSERT_TRUE(WaitForStatus(SYS_GPS_SEARCHING));
    daemons.clear();
    gpsd.Drop();
    ASSERT_TRUE(WaitForLoss());
    Use(gpsd);
    EXPECT_TRUE(WaitForStatus(SYS_GPS_SEARCHING));
    EXPECT_EQ(gpsd.connections, 2);
}

TEST_F(Position, WhatIsWrongWithReportsIsLoggedOnceAConnection) {
    const LogOfEveryLine all;
    const std::string line = "[LINUX]:[ERROR] - position: gpsd sends a line that is no JSON object";
    const std::string mode = "[LINUX]:[ERROR] - position: the mode that gpsd tells is no number";
    for (int again = 0; again < 3; ++again) {
        gpsd.greeting +=
            "nonsense\r\n{\"class\":\"TPV\"\r\n"
            "{\"class\":\"TPV\",\"device\":\"/dev/gps0\",\"mode\":\"3\"}\r\n"
            "{\"class\":\"SKY\"}\r\n"
            "{\"class\":\"TPV\",\"device\":\"/dev/gps0\",\"mode\":null}\r\n"
            "{\"class\":\"TPV\",\"device\":\"/dev/gps0\",\"mode\":1}\r\n";
    }
    Begin();
    ASSERT_TRUE(WaitForStatus(SYS_GPS_SEARCHING));
    EXPECT_THAT(Log(), ElementsAre(line, mode));
    gpsd.Drop();
    ASSERT_TRUE(WaitFor([this](const Device&) { return gpsd.connections == 2; }));
    EXPECT_TRUE(WaitForStatus(SYS_GPS_SEARCHING));
    EXPECT_THAT(Log(), Contains(line).Times(2));
    EXPECT_THAT(Log(), Contains(mode).Times(2));
}

TEST_F(Position, IsLostWhenGpsdHangs) {
    settings["silenceSeconds"] = 1;
    Begin();
    ASSERT_TRUE(WaitFor([this](const Device&) { return gpsd.connections == 1; }));
    // It takes connections and requests, and answers nothing.
    gpsd.greeting.clear();
    EXPECT_TRUE(WaitForLoss());
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - position: lost: gpsd does not answer"));
}

TEST_F(Position, IsLostWhenALineHasNoEnd) {
    Begin();
    ASSERT_TRUE(WaitFor([this](const Device&) { return gpsd.connections == 1; }));
    EXPECT_TRUE(WaitFor([this](const Device& now) {
        gpsd.Say(std::string(4096, 'x'));
        return now.getGPSStatus.error == kSourceLost;
    }));
    EXPECT_THAT(Log(),
                ElementsAre("[LINUX]:[ERROR] - position: lost: gpsd sends a line without an end"));
}

TEST_F(Services, SwupdateThatListensLaterThanItMakesItsSocketIsNoticed) {
    settings["checkSeconds"] = 3600;
    Begin();
    FakeServer swupdate(directory / "run" / "progress", FakeServer::Start::later);
    Use(swupdate);
    // The board sees the socket before somebody listens.
    for (int turns = 0; turns < 100; ++turns) {
        (void)Said("swupdate");
    }
    swupdate.Listen();
    EXPECT_TRUE(WaitFor([&](const Device&) { return swupdate.connections == 1; }));
}

TEST_F(Services, UpdateIsWhatSwupdateReports) {
    settings["checkSeconds"] = 3600;
    Begin();
    EXPECT_EQ(board->Newest()->softwareUpdateStatus.value.status, 0);
    auto swupdate = std::make_unique<FakeServer>(directory / "run" / "progress");
    Use(*swupdate);
    ASSERT_TRUE(WaitFor([&](const Device&) { return swupdate->connections == 1; }));
    const auto messageOf = [](std::uint32_t state) {
        std::string message(2416, '\0');
        std::memcpy(message.data() + 4, &state, sizeof(state));
        return message;
    };
    constexpr std::uint32_t kSuccess = 3;
    constexpr std::uint32_t kFailure = 4;
    constexpr std::uint32_t kUnknown = 42;
    const std::string message = messageOf(kFailure);
    // Something else than the greeting, and after it a message that is not understood either.
    swupdate->Say("12345678" + message);
    ASSERT_TRUE(WaitFor([this](const Device&) { return Log().size() == 1; }));
    EXPECT_THAT(Log()[0], HasSubstr("swupdate: what SWUpdate sends is no message or has an"));
    swupdate->Say(message);
    EXPECT_TRUE(
        WaitFor([](const Device& now) { return now.softwareUpdateStatus.value.status == 9; }));
    EXPECT_EQ(board->Newest()->getFotaInstallStatus.value, 3);
    // What is wrong now and then does not fill the log.
    swupdate->Say(messageOf(kUnknown));
    // It is read before the next one comes.
    for (int turns = 0; turns < 100; ++turns) {
        (void)Said("swupdate");
    }
    swupdate->Say(messageOf(kSuccess));
    EXPECT_TRUE(
        WaitFor([](const Device& now) { return now.softwareUpdateStatus.value.status == 8; }));
    EXPECT_EQ(Log().size(), 1U);
    daemons.clear();
    swupdate.reset();
    EXPECT_TRUE(WaitFor([](const Device& now) {
        return now.softwareUpdateStatus.error == kSourceLost &&
               now.getFotaInstallStatus.error == kSourceLost;
    }));
}

}  // namespace
