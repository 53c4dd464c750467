// The connection to the system bus, and the copy of what a daemon on it tells.
#include "bindings/linux/bus/bus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>

#include "bindings/linux/bus/bus_objects.h"
#include "tests/support/scratch.h"
#include "tests/unit/bindings/linux/bus/fake_bus.h"

namespace {

using binding::Bus;
using binding::BusObjects;
using nlohmann::json;
using Presence = binding::BusObjects::Presence;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr std::uint64_t kSecond = 1'000'000;
constexpr const char* kService = "org.example.Daemon";
constexpr const char* kLamp = "/lamp";
constexpr const char* kFan = "/fan";
constexpr const char* kInterface = "org.example.Thing";
constexpr const char* kGetAll = "org.freedesktop.DBus.Properties.GetAll";

class OnABus : public SimulatedDevice {
  protected:
    OnABus() {
        environment.Set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + path);
        sd_event* made = nullptr;
        EXPECT_GE(sd_event_new(&made), 0);
        event.reset(made);
    }

    /// Serves the bus and turns the loop until @p condition holds; fails after ten seconds.
    template <typename Condition>
    void Await(Condition condition) {
        constexpr std::uint64_t kTurn = 1000;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "nothing has come";
            if (daemons) {
                daemons->Serve();
            }
            ASSERT_GE(sd_event_run(event.get(), kTurn), 0);
        }
    }

    void Connect() {
        daemons.emplace(path);
        daemons->Listen();
        daemons->owners[kService] = ":1.7";
        bus.emplace(event.get(), limit);
        Await([this] { return bus->IsConnected(); });
    }

    const std::string path = directory / "bus";
    std::uint64_t limit = 10 * kSecond;
    binding::EventPointer event;
    std::optional<FakeBus> daemons;
    std::optional<Bus> bus;
};

TEST_F(OnABus, CallThatFailsTellsNameAndText) {
    Connect();
    daemons->methods["/lamp org.example.Thing.Light"] =
        Fails("org.example.Error.Dark", "the bulb is\nbroken");
    std::optional<binding::BusError> told;
    const auto call = bus->Call(
        ":1.7", kLamp, kInterface, "Light", nullptr,
        [&](const json& /*arguments*/, const binding::BusError& error) { told = error; }, kSecond);
    Await([&] { return told.has_value(); });
    EXPECT_EQ(told->name, "org.example.Error.Dark");
    EXPECT_EQ(told->Text(), "org.example.Error.Dark: the bulb is?broken");
}

class BusThatDoesNotAnswer : public OnABus {
  protected:
    BusThatDoesNotAnswer() { limit = kSecond / 100; }

    /// The bus has a socket, at which nobody listens, or answers.
    void Begin() {
        daemons.emplace(path);
        bus.emplace(event.get(), limit);
        listening = bus->OnConnection([this](bool connected) { told.push_back(connected); });
        Await([this] { return !told.empty(); });
    }

    /// A bus that has not answered between two checks is tried again.
    void CheckTwice() {
        bus->Check();
        bus->Check();
    }

    /// What listeners have been told.
    std::vector<bool> told;
    std::shared_ptr<void> listening;
};

TEST_F(BusThatDoesNotAnswer, IsToldToBeAbsentAndLoggedOnce) {
    Begin();
    for (int again = 0; again < 3; ++again) {
        CheckTwice();
        Await([this, count = told.size()] { return told.size() > count; });
    }
    EXPECT_THAT(told, Each(false));
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - system bus: does not answer"));
}

TEST_F(BusThatDoesNotAnswer, IsConnectedToWhenSomebodyListensAtLast) {
    Begin();
    daemons->Listen();
    CheckTwice();
    Await([this] { return told.back(); });
}

}  // namespace
