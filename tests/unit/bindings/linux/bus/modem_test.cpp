// The modem of a board, as ModemManager tells it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <future>

#include "bindings/device/codes.h"
#include "tests/unit/bindings/linux/bus/board_with_a_modem.h"

namespace {

using binding::Device;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

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
    ASSERT_TRUE(WaitForMemory(R"("severalSlots":true)"));
    WriteFile(Memory(), R"({"dataOff": true})");
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
    ASSERT_TRUE(WaitForMemory(R"("severalSlots":true)"));
    WriteFile(Memory(), R"({"dataOff": true})");
    EXPECT_TRUE(WaitForMemory(R"("dataOff":false)"));
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
    limits.isService = false;
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

TEST_F(BoardWithCells, AreNoneWhenTheAnswerHasAnotherType) {
    BeginWith([](sd_bus_message* call) {
        return sd_bus_reply_method_return(call, "as", 1, "cell-type");
    });
    EXPECT_TRUE(WaitFor([this](const Device& /*now*/) {
        return testing::Value(Log(), Contains(HasSubstr("cells are not told: the answer is no")));
    }));
    EXPECT_EQ(Said("modem").at("cells"), false);
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
    EXPECT_TRUE(WaitFor([this](const Device& /*now*/) {
        return std::filesystem::exists(Memory()) &&
               ReadFile(Memory()).find("\"dataOff\":true") != std::string::npos;
    }));
}

/// A process that asks for the data call at once, and ends then.
class ShortProcess : public BoardWithAModem {
  protected:
    ShortProcess() {
        limits.isService = false;
        // Only the answer ends it.
        limits.finish = std::chrono::hours(1);
    }

    int Connect() { return Ask(&binding::Board::StartDataCall); }

    int Ask(int (binding::Board::*request)()) {
        StartModemManager();
        Document(nlohmann::json{{"linux", settings}}.dump());
        return Await(std::async(std::launch::async, [this, request] {
            binding::Board shortLived(binding::MakeSources, limits);
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
    bus.methods[std::string(kModem) + " " + kModemInterface + ".Enable"] =
        [](sd_bus_message* call) { return sd_bus_reply_method_return(call, ""); };
    EXPECT_EQ(Connect(), SYS_SUCCESS);
    EXPECT_THAT(bus.calls, Contains(Method("Connect")));
}

TEST_F(BoardWithAModem, EndsAlsoWhenARequestIsNotAnswered) {
    limits.finish = std::chrono::milliseconds(1);
    bus.methods[Method("Connect")] = StaysSilent;
    StartModemManager();
    Begin();
    ASSERT_EQ(board->StartDataCall(), SYS_SUCCESS);
    ASSERT_TRUE(WaitFor([this](const Device& /*now*/) {
        return std::count(bus.calls.begin(), bus.calls.end(), Method("Connect")) == 1;
    }));
    // It would not end otherwise before the call has its own limit.
    End();
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
