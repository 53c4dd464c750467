// The data connection of a board on which NetworkManager makes it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/unit/bindings/linux/bus/board_with_a_modem.h"

namespace {

using binding::Device;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

/// NetworkManager has a profile for the modem.
class BoardWithAProfile : public BoardWithAModem {
  protected:
    static constexpr const char* kManager = "org.freedesktop.NetworkManager";
    static constexpr const char* kManagerPath = "/org/freedesktop/NetworkManager";
    static constexpr const char* kActive = "/active";
    static constexpr const char* kActiveInterface =
        "org.freedesktop.NetworkManager.Connection.Active";
    static constexpr const char* kGetSettings =
        "/profile org.freedesktop.NetworkManager.Settings.Connection.GetSettings";
    static constexpr const char* kGetOtherSettings =
        "/another org.freedesktop.NetworkManager.Settings.Connection.GetSettings";
    static constexpr const char* kActivate =
        "/org/freedesktop/NetworkManager org.freedesktop.NetworkManager.ActivateConnection";

    BoardWithAProfile() {
        bus.owners[kManager] = ":1.8";
        const std::string path = kManagerPath;
        bus.properties[path + " " + kManager] = {Property("ActiveConnections", "ao", 0)};
        bus.properties[path + "/Settings " + kManager + ".Settings"] = {
            Property("Connections", "ao", 1, "/profile")};
        StartModemManager();
    }

    /// The settings of the profile, which may be for one network only.
    static FakeBus::Answer Profile(const std::string& network) {
        return [network](sd_bus_message* call) {
            return sd_bus_reply_method_return(call, "a{sa{sv}}", 2, "connection", 1, "type", "s",
                                              "gsm", "gsm", 1, "network-id", "s", network.c_str());
        };
    }

    static std::string GetAll(const std::string& path) {
        return path + " org.freedesktop.DBus.Properties.GetAll";
    }

    /// The profile has been changed.
    void TellUpdate() {
        bus.Signal(kManager, "/profile", "org.freedesktop.NetworkManager.Settings.Connection",
                   "Updated", [](sd_bus_message*) { return 0; });
    }

    /// There are other profiles.
    void TellProfiles(const FakeBus::Append& connections) {
        bus.ChangeProperties(kManager, kManagerPath + std::string("/Settings"),
                             kManager + std::string(".Settings"), {connections});
    }

    bool WaitForProfile() {
        return WaitFor([this](const Device& /*now*/) {
            return Said("modem").value("networkManager", nlohmann::json()) == true;
        });
    }
};

TEST_F(BoardWithAProfile, AsksAgainForAProfileThatItWasNotTold) {
    bus.methods[kGetSettings] = Fails("org.freedesktop.DBus.Error.AccessDenied", "not for you");
    Begin();
    ASSERT_TRUE(WaitFor([this](const Device& /*now*/) {
        return std::count(bus.calls.begin(), bus.calls.end(), kGetSettings) >= 3;
    }));
    EXPECT_THAT(
        Log(),
        Contains(HasSubstr("GetSettings: org.freedesktop.DBus.Error.AccessDenied")).Times(1));
    EXPECT_EQ(Said("modem").at("networkManager"), false);
    bus.methods[kGetSettings] = [](sd_bus_message* call) {
        return sd_bus_reply_method_return(call, "a{sa{sv}}", 1, "connection", 1, "type", "s",
                                          "gsm");
    };
    EXPECT_TRUE(WaitFor(
        [this](const Device& /*now*/) { return Said("modem").at("networkManager") == true; }));
}

TEST_F(BoardWithAProfile, NoticesWhenTheProfileIsChanged) {
    settings["checkSeconds"] = 60;
    const auto isChosen = [](const Device& now) { return now.getModemMnsInfo.value.selected == 1; };
    bus.methods[kGetSettings] = Profile("");
    Begin();
    ASSERT_TRUE(WaitForProfile());
    EXPECT_FALSE(isChosen(*board->Newest()));
    bus.methods[kGetSettings] = Profile("26201");
    TellUpdate();
    EXPECT_TRUE(WaitFor(isChosen));
}

TEST_F(BoardWithAProfile, KeepsAProfileThatItIsNotToldAgainUntilThatHasGone) {
    settings["checkSeconds"] = 60;
    bus.methods[kGetSettings] = Profile("");
    Begin();
    ASSERT_TRUE(WaitForProfile());
    bus.methods[kGetSettings] = Fails("org.freedesktop.DBus.Error.NoReply", "busy");
    TellUpdate();
    ASSERT_TRUE(WaitFor([this](const Device& /*now*/) {
        return testing::Value(Log(), Contains(HasSubstr("GetSettings: org.freedesktop.DBus")));
    }));
    EXPECT_EQ(Said("modem").at("networkManager"), true);
    bus.methods[kGetSettings] = Fails("org.freedesktop.DBus.Error.UnknownObject", "gone");
    TellUpdate();
    EXPECT_TRUE(WaitFor(
        [this](const Device& /*now*/) { return Said("modem").at("networkManager") == false; }));
}

TEST_F(BoardWithAProfile, SaysAgainThatAProfileIsNotToldWhenTheOneBeforeHasGone) {
    settings["checkSeconds"] = 60;
    const auto fails = Fails("org.freedesktop.DBus.Error.AccessDenied", "not for you");
    bus.methods[kGetSettings] = fails;
    bus.methods[kGetOtherSettings] = fails;
    Begin();
    const auto isSaid = [this](const std::string& path) {
        return WaitFor([&](const Device& /*now*/) {
            return testing::Value(Log(), Contains(HasSubstr(path + ": GetSettings:")).Times(1));
        });
    };
    ASSERT_TRUE(isSaid("/profile"));
    TellProfiles(Property("Connections", "ao", 0));
    TellProfiles(Property("Connections", "ao", 1, "/another"));
    EXPECT_TRUE(isSaid("/another"));
}

TEST_F(BoardWithAProfile, LeavesTheConnectionToANetworkManagerThatHangs) {
    settings["silenceSeconds"] = 1;
    bus.methods[kGetSettings] = Profile("");
    int unanswered = 0;
    bus.methods["/ org.freedesktop.DBus.Peer.Ping"] = [&](sd_bus_message* call) {
        if (sd_bus_message_get_destination(call) != bus.owners.at(kManager)) {
            return sd_bus_reply_method_return(call, "");
        }
        ++unanswered;
        return 0;
    };
    bus.methods[kActivate] = StaysSilent;
    Begin();
    ASSERT_TRUE(WaitForProfile());
    // It is not asked again before the first time has been too long.
    ASSERT_TRUE(WaitFor([&](const Device& /*now*/) { return unanswered >= 2; }));
    EXPECT_EQ(Said("modem").at("networkManager"), true);
    ASSERT_EQ(board->StartDataCall(), SYS_SUCCESS);
    EXPECT_TRUE(WaitFor([this](const Device& /*now*/) {
        return std::count(bus.calls.begin(), bus.calls.end(), kActivate) == 1;
    }));
    EXPECT_THAT(bus.calls, Not(Contains(Method("Connect"))));
}

TEST_F(BoardWithAProfile, FollowsTheDeviceOfTheConnectionOfAProfileThatItWasToldLate) {
    bus.methods[kGetSettings] = Fails("org.freedesktop.DBus.Error.AccessDenied", "not for you");
    bus.properties[std::string(kManagerPath) + " " + kManager] = {
        Property("ActiveConnections", "ao", 1, kActive)};
    bus.properties[kActive + std::string(" ") + kActiveInterface] = {
        Property("Connection", "o", "/profile"), Property("State", "u", 2),
        Property("Devices", "ao", 1, "/device")};
    Begin();
    ASSERT_TRUE(WaitFor([this](const Device& /*now*/) {
        return std::count(bus.calls.begin(), bus.calls.end(), GetAll(kActive)) == 1;
    }));
    bus.methods[kGetSettings] = Profile("");
    ASSERT_TRUE(WaitForProfile());
    EXPECT_TRUE(WaitFor([this](const Device& /*now*/) {
        return std::count(bus.calls.begin(), bus.calls.end(), GetAll("/device")) == 1;
    }));
}

TEST_F(BoardWithAProfile, SaysThatAConnectionHasBeenGivenUpAlsoBeforeTheAnswer) {
    bus.methods[kGetSettings] = Profile("");
    bus.properties[kActive + std::string(" ") + kActiveInterface] = {
        Property("Connection", "o", "/profile"), Property("State", "u", 1),
        Property("Devices", "ao", 1, "/device")};
    sd_bus_message* request = nullptr;
    bus.methods[kActivate] = [&](sd_bus_message* call) {
        request = sd_bus_message_ref(call);
        return 0;
    };
    Begin();
    ASSERT_TRUE(WaitForProfile());
    ASSERT_EQ(board->StartDataCall(), SYS_SUCCESS);
    ASSERT_TRUE(WaitFor([&](const Device& /*now*/) { return request != nullptr; }));
    bus.ChangeProperties(kManager, kManagerPath, kManager,
                         {Property("ActiveConnections", "ao", 1, kActive)});
    // The device is asked for when the connection has been read.
    ASSERT_TRUE(WaitFor([this](const Device& /*now*/) {
        return std::count(bus.calls.begin(), bus.calls.end(), GetAll("/device")) == 1;
    }));
    bus.ChangeProperties(kManager, kManagerPath, kManager,
                         {Property("ActiveConnections", "ao", 0)});
    EXPECT_GE(sd_bus_reply_method_return(request, "o", kActive), 0);
    sd_bus_message_unref(request);
    EXPECT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_READY));
    EXPECT_THAT(Log(), Contains(HasSubstr("not connected: NetworkManager has given up")).Times(1));
}

/// NetworkManager has answered that it begins a connection.
class BoardWithABegunConnection : public BoardWithAProfile {
  protected:
    BoardWithABegunConnection() {
        bus.methods[kGetSettings] = Profile("");
        bus.methods[kActivate] = [](sd_bus_message* call) {
            return sd_bus_reply_method_return(call, "o", kActive);
        };
        // The properties of the connection come when the test says so.
        bus.methods[GetAll(kActive)] = [this](sd_bus_message* call) {
            question = sd_bus_message_ref(call);
            return 0;
        };
    }
    ~BoardWithABegunConnection() override { sd_bus_message_unref(question); }
    BoardWithABegunConnection(const BoardWithABegunConnection&) = delete;
    BoardWithABegunConnection& operator=(const BoardWithABegunConnection&) = delete;

    /// Connects, until the service asks what NetworkManager has listed.
    void Connect() {
        settings["silenceSeconds"] = 10;
        settings["checkSeconds"] = 60;
        Begin();
        ASSERT_TRUE(WaitForProfile());
        ASSERT_EQ(board->StartDataCall(), SYS_SUCCESS);
        ASSERT_TRUE(WaitFor([this](const Device& /*now*/) {
            return std::count(bus.calls.begin(), bus.calls.end(), kActivate) == 1;
        }));
        bus.ChangeProperties(kManager, kManagerPath, kManager,
                             {Property("ActiveConnections", "ao", 1, kActive)});
        ASSERT_TRUE(WaitFor([this](const Device& /*now*/) { return question != nullptr; }));
        // A part of the properties says nothing of the profile.
        bus.ChangeProperties(kManager, kActive, kActiveInterface, {Property("State", "u", 1)});
        for (int turn = 0; turn < 10; ++turn) {
            Serve();
            (void)Said("modem");
        }
        EXPECT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTING));
    }

    sd_bus_message* question = nullptr;
};

TEST_F(BoardWithABegunConnection, ShowsAtOnceThatItHasBeenGivenUp) {
    Connect();
    bus.ChangeProperties(kManager, kManagerPath, kManager,
                         {Property("ActiveConnections", "ao", 0)});
    EXPECT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_READY));
    EXPECT_THAT(Log(), Contains(HasSubstr("not connected: NetworkManager has given up")).Times(1));
}

TEST_F(BoardWithABegunConnection, GoesOnWhenItIsToldLate) {
    Connected();
    modem.front() = Property("State", "i", kRegisteredState);
    bus.properties[kBearer + std::string(" ") + kBearerInterface] = {Property("Connected", "b", 0)};
    Connect();
    EXPECT_GE(sd_bus_reply_method_return(question, "a{sv}", 2, "Connection", "o", "/profile",
                                         "State", "u", 1),
              0);
    TellConnected();
    EXPECT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTED));
    EXPECT_THAT(Log(), Not(Contains(HasSubstr("not connected"))));
}

}  // namespace
