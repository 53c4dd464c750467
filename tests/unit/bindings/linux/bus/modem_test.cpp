// The modem of a board whose ModemManager is the test.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <algorithm>
#include <chrono>
#include <future>

#include "bindings/device/codes.h"
#include "tests/unit/bindings/linux/bus/fake_bus.h"
#include "tests/unit/bindings/linux/services/service_test.h"

namespace {

using binding::Device;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kService = "org.freedesktop.ModemManager1";
constexpr const char* kModem = "/org/freedesktop/ModemManager1/Modem/0";
constexpr const char* kSim = "/org/freedesktop/ModemManager1/SIM/0";
constexpr const char* kModemInterface = "org.freedesktop.ModemManager1.Modem";
constexpr const char* kBearer = "/org/freedesktop/ModemManager1/Bearer/0";
constexpr const char* kBearerInterface = "org.freedesktop.ModemManager1.Bearer";
constexpr int kFailedState = -1;
constexpr int kDisabledState = 3;
constexpr int kRegisteredState = 8;
constexpr int kConnectedState = 11;
constexpr const char* kSimple = "org.freedesktop.ModemManager1.Modem.Simple";

class BoardWithAModem : public ServiceTest {
  protected:
    BoardWithAModem() : bus(directory / "bus") {
        environment.Set("KESTAL_SOURCES", directory / "sources");
        bus.Listen();
        daemons.emplace_back([this] { bus.Serve(); });
        bus.properties[kSim + std::string(" org.freedesktop.ModemManager1.Sim")] = {
            Property("Imsi", "s", "262011234567890")};
        const auto succeeds = [](sd_bus_message* call) {
            return sd_bus_reply_method_return(call, "");
        };
        bus.methods[Method("Disconnect")] = succeeds;
        bus.methods[Method("Connect")] = succeeds;
        bus.methods
            ["/org/freedesktop/ModemManager1 "
             "org.freedesktop.DBus.ObjectManager.GetManagedObjects"] =
            [this](sd_bus_message* call) { return TellObjects(call); };
    }

    /// The modem has a connection.
    void Connected() {
        bus.properties[kBearer + std::string(" ") + kBearerInterface] = {
            Property("Connected", "b", 1)};
        modem.front() = Property("State", "i", kConnectedState);
        modem.push_back(Property("Bearers", "ao", 1, kBearer));
    }

    /// The connection has ended.
    void TellReady() {
        bus.ChangeProperties(kService, kModem, kModemInterface,
                             {Property("State", "i", kRegisteredState)});
        bus.ChangeProperties(kService, kBearer, kBearerInterface, {Property("Connected", "b", 0)});
    }

    /// There is a connection again.
    void TellConnected() {
        bus.ChangeProperties(kService, kModem, kModemInterface,
                             {Property("State", "i", kConnectedState)});
        bus.ChangeProperties(kService, kBearer, kBearerInterface, {Property("Connected", "b", 1)});
    }

    std::filesystem::path Memory() const { return directory / "modem"; }

    static std::string Method(const std::string& name) {
        return std::string(kModem) + " " + kSimple + "." + name;
    }

    /// ModemManager is on the bus, and has the modem.
    void StartModemManager() { bus.owners[kService] = ":1.7"; }

    int TellObjects(sd_bus_message* call) const {
        sd_bus_message* reply = nullptr;
        int result = sd_bus_message_new_method_return(call, &reply);
        const auto then = [&](auto step) { result = result < 0 ? result : step(); };
        then([&] { return sd_bus_message_open_container(reply, 'a', "{oa{sa{sv}}}"); });
        then([&] { return sd_bus_message_open_container(reply, 'e', "oa{sa{sv}}"); });
        then([&] { return sd_bus_message_append(reply, "o", kModem); });
        then([&] { return sd_bus_message_open_container(reply, 'a', "{sa{sv}}"); });
        then([&] { return sd_bus_message_open_container(reply, 'e', "sa{sv}"); });
        then([&] { return sd_bus_message_append(reply, "s", kModemInterface); });
        then([&] { return AppendProperties(reply, modem); });
        for (int level = 0; level < 4; ++level) {
            then([&] { return sd_bus_message_close_container(reply); });
        }
        then([&] { return sd_bus_send(nullptr, reply, nullptr); });
        sd_bus_message_unref(reply);
        return result;
    }

    void End() {
        Await(std::async(std::launch::async, [this] { board.reset(); }));
    }

    bool WaitForStatus(sys_data_connection_status_e status) {
        return WaitFor([status](const Device& now) {
            return now.getSIMStatus.value == SYS_SIM_READY &&
                   now.getCellularDataConnectionStatus.value == status;
        });
    }

    bool WaitForDataEnabled(int enabled) {
        return WaitFor([enabled](const Device& now) {
            return now.getSIMStatus.value == SYS_SIM_READY &&
                   now.getCellularDataEnabled.value == enabled;
        });
    }

    FakeBus bus;
    std::vector<FakeBus::Append> modem = {
        Property("State", "i", 8), Property("UnlockRequired", "u", 1), Property("Sim", "o", kSim),
        Property("SimSlots", "ao", 2, kSim, "/"), Property("PrimarySimSlot", "u", 1)};
};

TEST_F(BoardWithAModem, DataThatTheUserHasSwitchedOffStaysOffUntilTheUserConnects) {
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitForDataEnabled(1));
    ASSERT_EQ(board->StopDataCall(), SYS_SUCCESS);
    ASSERT_TRUE(WaitForDataEnabled(0));
    settings["apn"] = "internet";
    Document(nlohmann::json{{"linux", settings}, {"sys", {{"getSMSUnreadCount", 7}}}}.dump());
    ASSERT_TRUE(WaitFor([](const Device& now) { return now.getSMSUnreadCount.value == 7; }));
    EXPECT_EQ(board->Newest()->getCellularDataEnabled.value, 0);
    End();
    Begin();
    ASSERT_TRUE(WaitForDataEnabled(0));
    ASSERT_EQ(board->StartDataCall(), SYS_SUCCESS);
    ASSERT_TRUE(WaitForDataEnabled(1));
    End();
    Begin();
    EXPECT_TRUE(WaitForDataEnabled(1));
}

TEST_F(BoardWithAModem, DataThatAnotherProgramSwitchesOffStaysOffWhileItDisconnects) {
    settings["checkSeconds"] = 60;
    Connected();
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTED));
    WriteFile(directory / "modem", R"({"dataOff": true})");
    ASSERT_TRUE(WaitForDataEnabled(0));
    bus.ChangeProperties(kService, kModem, kModemInterface, {Property("State", "i", 9)});
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_DISCONNECTING));
    // The bearer tells later than the modem.
    bus.ChangeProperties(kService, kModem, kModemInterface, {Property("State", "i", 8)});
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTED));
    bus.ChangeProperties(kService, kBearer, kBearerInterface, {Property("Connected", "b", 0)});
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_READY));
    EXPECT_EQ(board->Newest()->getCellularDataEnabled.value, 0);
}

TEST_F(BoardWithAModem, DataThatIsConnectedIsOffOnlyUntilTheServiceHasCheckedTwice) {
    Connected();
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTED));
    WriteFile(Memory(), R"({"dataOff": true})");
    EXPECT_TRUE(WaitFor([this](const Device& /*now*/) {
        return ReadFile(Memory()).find("\"dataOff\":false") != std::string::npos;
    }));
    EXPECT_TRUE(WaitForDataEnabled(1));
}

TEST_F(BoardWithAModem, DataThatAnotherProgramConnectsIsNotOffAnyMore) {
    settings["checkSeconds"] = 60;
    WriteFile(Memory(), R"({"dataOff": true})");
    Connected();
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTED));
    EXPECT_EQ(board->Newest()->getCellularDataEnabled.value, 0);
    TellReady();
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_READY));
    EXPECT_EQ(board->Newest()->getCellularDataEnabled.value, 0);
    TellConnected();
    EXPECT_TRUE(WaitForDataEnabled(1));
}

TEST_F(BoardWithAModem, ProgramThatOnlyReadsRemembersNothing) {
    environment.Unset("KESTAL_SOURCES");
    constexpr const char* kWritten = R"({"dataOff": true, "severalSlots": false})";
    WriteFile(Memory(), kWritten);
    Connected();
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTED));
    TellReady();
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_READY));
    TellConnected();
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTED));
    End();
    EXPECT_EQ(ReadFile(Memory()), kWritten);
}

TEST_F(BoardWithAModem, OtherSettingsLeaveTheFiguresOfACallThatGoesOn) {
    settings["checkSeconds"] = 60;
    Connected();
    auto& bearer = bus.properties[kBearer + std::string(" ") + kBearerInterface];
    bearer.push_back(Property("Interface", "s", "lo"));
    const auto lasts = [](std::uint32_t seconds) {
        return Property("Stats", "a{sv}", 1, "duration", "u", seconds);
    };
    bearer.push_back(lasts(90));
    StartModemManager();
    Begin();
    const auto duration = [](const Device& now) {
        return now.getCellularDataConnectionStats.value.duration;
    };
    ASSERT_TRUE(WaitFor([&](const Device& now) { return duration(now) >= 90; }));
    // ModemManager tells this now and then only.
    bearer.back() = lasts(10);
    settings["apn"] = "internet";
    Document(nlohmann::json{{"linux", settings}, {"sys", {{"getSMSUnreadCount", 7}}}}.dump());
    ASSERT_TRUE(WaitFor([](const Device& now) { return now.getSMSUnreadCount.value == 7; }));
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTED));
    EXPECT_GE(duration(*board->Newest()), 90U);
    TellReady();
    EXPECT_TRUE(WaitFor([&](const Device& now) { return duration(now) == 0; }));
}

/// A modem that measures its signal, and tells its cells.
class BoardWithCells : public BoardWithAModem {
  protected:
    static constexpr const char* kSignal = "org.freedesktop.ModemManager1.Modem.Signal";
    static constexpr const char* kPing = "/ org.freedesktop.DBus.Peer.Ping";

    /// Starts with a modem that answers so when it is asked for its cells and its signal.
    void BeginWith(const FakeBus::Answer& answer) {
        bus.methods[kCells] = answer;
        bus.methods[kSetup] = answer;
        StartModemManager();
        Begin();
        bus.Signal(kService, "/org/freedesktop/ModemManager1", "org.freedesktop.DBus.ObjectManager",
                   "InterfacesAdded", [](sd_bus_message* message) {
                       return sd_bus_message_append(message, "oa{sa{sv}}", kModem, 1, kSignal, 1,
                                                    "Rate", "u", 0);
                   });
    }

    std::ptrdiff_t Asked(const std::string& method) const {
        return std::count(bus.calls.begin(), bus.calls.end(), method);
    }

    bool WaitUntilAsked(const std::string& method, int times) {
        return WaitFor([&, times](const Device& /*now*/) { return Asked(method) >= times; });
    }

    const std::string kCells = std::string(kModem) + " " + kModemInterface + ".GetCellInfo";
    const std::string kSetup = std::string(kModem) + " " + kSignal + ".Setup";
};

TEST_F(BoardWithCells, AreToldAgainWhenTheModemHasHungForAWhile) {
    BeginWith(Fails("org.freedesktop.ModemManager1.Error.Core.Failed", "no answer"));
    ASSERT_TRUE(WaitUntilAsked(kCells, 2));
    ASSERT_TRUE(WaitUntilAsked(kSetup, 2));
    // Not at once again and again, but with each sign of life.
    EXPECT_LE(Asked(kCells), Asked(kPing) + 2);
    EXPECT_LE(Asked(kSetup), Asked(kPing) + 2);
    EXPECT_EQ(Said("modem").at("cells"), false);
    bus.methods[kCells] = [](sd_bus_message* call) {
        return sd_bus_reply_method_return(call, "aa{sv}", 1, 1, "serving", "b", 1);
    };
    bus.methods[kSetup] = [](sd_bus_message* call) { return sd_bus_reply_method_return(call, ""); };
    EXPECT_TRUE(
        WaitFor([this](const Device& /*now*/) { return Said("modem").at("cells") == true; }));
    EXPECT_THAT(Log(), Contains(HasSubstr("cells are not told")).Times(1));
    EXPECT_THAT(Log(), Contains(HasSubstr("signal is not measured")).Times(1));
}

TEST_F(BoardWithCells, AreAskedForOnceWhereTheModemHasNone) {
    BeginWith(Fails("org.freedesktop.ModemManager1.Error.Core.Unsupported", "no"));
    ASSERT_TRUE(WaitUntilAsked(kCells, 1));
    ASSERT_TRUE(WaitUntilAsked(kSetup, 1));
    ASSERT_TRUE(WaitUntilAsked(kPing, 2));
    EXPECT_EQ(Asked(kCells), 1);
    EXPECT_EQ(Asked(kSetup), 1);
}

TEST_F(BoardWithAModem, DataIsSwitchedOffAlsoWhileSomebodyLocksTheFolder) {
    Connected();
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitForStatus(SYS_DATA_CONNECTION_CONNECTED));
    const binding::FileDescriptor folder(
        open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(flock(folder.Number(), LOCK_EX), 0);
    ASSERT_EQ(board->StopDataCall(), SYS_SUCCESS);
    EXPECT_TRUE(WaitFor([this](const Device& /*now*/) {
        return std::count(bus.calls.begin(), bus.calls.end(), Method("Disconnect")) == 1;
    }));
    EXPECT_THAT(ReadFile(Memory()), HasSubstr("\"dataOff\":true"));
}

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
    bus.Signal(kManager, "/profile", "org.freedesktop.NetworkManager.Settings.Connection",
               "Updated", [](sd_bus_message*) { return 0; });
    EXPECT_TRUE(WaitFor(isChosen));
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

/// A process that asks for the data call at once, and ends then.
class ShortProcess : public BoardWithAModem {
  protected:
    ShortProcess() { environment.Unset("KESTAL_SOURCES"); }

    int Connect() { return Ask(&binding::Board::StartDataCall); }

    int Ask(int (binding::Board::*request)()) {
        StartModemManager();
        Document(nlohmann::json{{"linux", settings}}.dump());
        return Await(std::async(std::launch::async, [request] {
            binding::Board shortLived(binding::MakeSources, kNoLimit);
            return (shortLived.*request)();
        }));
    }
};

TEST_F(ShortProcess, DoesNotLeaveDataOffWhenItsDisconnectionIsRefused) {
    bus.methods[Method("Disconnect")] = Fails("org.example.Error.Busy", "not now");
    Connected();
    EXPECT_EQ(Ask(&binding::Board::StopDataCall), SYS_SUCCESS);
    EXPECT_THAT(bus.calls, Contains(Method("Disconnect")));
    EXPECT_THAT(ReadFile(Memory()), HasSubstr("\"dataOff\":false"));
}

TEST_F(ShortProcess, EndsWhenItsRequestHasBeenAnswered) {
    EXPECT_EQ(Connect(), SYS_SUCCESS);
    EXPECT_THAT(bus.calls, Contains(Method("Connect")));
}

TEST_F(ShortProcess, WaitsForAModemThatMustBeEnabledFirst) {
    modem.front() = Property("State", "i", kDisabledState);
    // Longer than the service would wait at its end.
    constexpr std::chrono::milliseconds kEnabling{1200};
    sd_bus_message* enable = nullptr;
    std::chrono::steady_clock::time_point enabled;
    bus.methods[std::string(kModem) + " " + kModemInterface + ".Enable"] =
        [&](sd_bus_message* call) {
            enable = sd_bus_message_ref(call);
            enabled = std::chrono::steady_clock::now() + kEnabling;
            return 0;
        };
    daemons.emplace_back([&] {
        if (enable != nullptr && std::chrono::steady_clock::now() > enabled) {
            sd_bus_reply_method_return(enable, "");
            enable = sd_bus_message_unref(enable);
        }
    });
    EXPECT_EQ(Connect(), SYS_SUCCESS);
    EXPECT_THAT(bus.calls, Contains(Method("Connect")));
    sd_bus_message_unref(enable);
}

TEST_F(ShortProcess, ThatIsTheServiceEndsAlsoWhenItsRequestIsNotAnswered) {
    environment.Set("KESTAL_SOURCES", directory / "sources");
    bus.methods[Method("Connect")] = StaysSilent;
    EXPECT_EQ(Connect(), SYS_SUCCESS);
    EXPECT_THAT(bus.calls, Contains(Method("Connect")));
}

TEST_F(BoardWithAModem, SeveralSlotsAreRememberedWhileThereIsNoModemYet) {
    Begin();
    EXPECT_EQ(board->Newest()->getMultiSimEnabled.value, 0);
    End();
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitForDataEnabled(1));
    EXPECT_EQ(board->Newest()->getMultiSimEnabled.value, 1);
    End();
    bus.owners.clear();
    Begin();
    EXPECT_EQ(board->Newest()->getSIMStatus.value, SYS_SIM_NOT_FOUND);
    EXPECT_EQ(board->Newest()->getMultiSimEnabled.value, 1);
}

TEST_F(BoardWithAModem, SeveralSlotsStayRememberedWhileTheModemHasFailed) {
    constexpr const char* kWritten = R"({"dataOff": false, "severalSlots": true})";
    WriteFile(Memory(), kWritten);
    modem = {Property("State", "i", kFailedState), Property("SimSlots", "ao", 1, kSim)};
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitFor([this](const Device& /*now*/) {
        return Said("modem").value("state", nlohmann::json()) == kFailedState;
    }));
    EXPECT_EQ(ReadFile(Memory()), kWritten);
}

TEST_F(BoardWithAModem, WhatCannotBeReadIsNotRemembered) {
    StartModemManager();
    for (const char* const contents : {"", "{", "[true]", R"({"dataOff": "yes"})"}) {
        WriteFile(directory / "modem", contents);
        Begin();
        EXPECT_TRUE(WaitForDataEnabled(1)) << contents;
        End();
    }
}

}  // namespace
