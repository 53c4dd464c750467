// The modem of a board whose ModemManager is the test.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "bindings/device/codes.h"
#include "tests/unit/bindings/linux/bus/fake_bus.h"
#include "tests/unit/bindings/linux/services/service_test.h"

namespace {

using binding::Device;

constexpr const char* kService = "org.freedesktop.ModemManager1";
constexpr const char* kModem = "/org/freedesktop/ModemManager1/Modem/0";
constexpr const char* kSim = "/org/freedesktop/ModemManager1/SIM/0";
constexpr const char* kModemInterface = "org.freedesktop.ModemManager1.Modem";
constexpr const char* kSimple = "org.freedesktop.ModemManager1.Modem.Simple";

class BoardWithAModem : public ServiceTest {
  protected:
    BoardWithAModem() : bus(directory / "bus") {
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
    board.reset();
    Begin();
    ASSERT_TRUE(WaitForDataEnabled(0));
    ASSERT_EQ(board->StartDataCall(), SYS_SUCCESS);
    ASSERT_TRUE(WaitForDataEnabled(1));
    board.reset();
    Begin();
    EXPECT_TRUE(WaitForDataEnabled(1));
}

TEST_F(BoardWithAModem, DataThatAnotherProgramSwitchesOffIsOff) {
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitForDataEnabled(1));
    WriteFile(directory / "modem", R"({"dataOff": true})");
    EXPECT_TRUE(WaitForDataEnabled(0));
}

TEST_F(BoardWithAModem, SeveralSlotsAreRememberedWhileThereIsNoModemYet) {
    Begin();
    EXPECT_EQ(board->Newest()->getMultiSimEnabled.value, 0);
    board.reset();
    StartModemManager();
    Begin();
    ASSERT_TRUE(WaitForDataEnabled(1));
    EXPECT_EQ(board->Newest()->getMultiSimEnabled.value, 1);
    board.reset();
    bus.owners.clear();
    Begin();
    EXPECT_EQ(board->Newest()->getSIMStatus.value, SYS_SIM_NOT_FOUND);
    EXPECT_EQ(board->Newest()->getMultiSimEnabled.value, 1);
}

TEST_F(BoardWithAModem, WhatCannotBeReadIsNotRemembered) {
    StartModemManager();
    for (const char* const contents : {"", "{", "[true]", R"({"dataOff": "yes"})"}) {
        WriteFile(directory / "modem", contents);
        Begin();
        EXPECT_TRUE(WaitForDataEnabled(1)) << contents;
        board.reset();
    }
}

}  // namespace
