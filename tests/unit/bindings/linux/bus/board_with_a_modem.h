// A board whose ModemManager is the test.
#pragma once

#include <algorithm>
#include <filesystem>
#include <future>
#include <string>
#include <vector>

#include "tests/unit/bindings/linux/bus/fake_bus.h"
#include "tests/unit/bindings/linux/services/service_test.h"

inline constexpr const char* kService = "org.freedesktop.ModemManager1";
inline constexpr const char* kModem = "/org/freedesktop/ModemManager1/Modem/0";
inline constexpr const char* kSim = "/org/freedesktop/ModemManager1/SIM/0";
inline constexpr const char* kModemInterface = "org.freedesktop.ModemManager1.Modem";
inline constexpr const char* kBearer = "/org/freedesktop/ModemManager1/Bearer/0";
inline constexpr const char* kBearerInterface = "org.freedesktop.ModemManager1.Bearer";
inline constexpr int kFailedState = -1;
inline constexpr int kDisabledState = 3;
inline constexpr int kRegisteredState = 8;
inline constexpr int kConnectedState = 11;
inline constexpr const char* kSimple = "org.freedesktop.ModemManager1.Modem.Simple";

class BoardWithAModem : public ServiceTest {
  protected:
    BoardWithAModem() : bus(directory / "bus") {
        limits.isService = true;
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
        return WaitFor([status](const binding::Device& now) {
            return now.getSIMStatus.value == SYS_SIM_READY &&
                   now.getCellularDataConnectionStatus.value == status;
        });
    }

    bool WaitForDataEnabled(int enabled) {
        return WaitFor([enabled](const binding::Device& now) {
            return now.getSIMStatus.value == SYS_SIM_READY &&
                   now.getCellularDataEnabled.value == enabled;
        });
    }

    bool WaitForMemory(const std::string& text) {
        return WaitFor([this, &text](const binding::Device& /*now*/) {
            return std::filesystem::exists(Memory()) &&
                   ReadFile(Memory()).find(text) != std::string::npos;
        });
    }

    FakeBus bus;
    std::vector<FakeBus::Append> modem = {
        Property("State", "i", 8), Property("UnlockRequired", "u", 1), Property("Sim", "o", kSim),
        Property("SimSlots", "ao", 2, kSim, "/"), Property("PrimarySimSlot", "u", 1)};
};
