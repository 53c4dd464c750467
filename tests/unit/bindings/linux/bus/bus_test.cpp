// The connection to the system bus, and the copy of what a daemon on it tells.
#include "bindings/linux/bus/bus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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
        environment.Set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + socketPath);
        sd_event* made = nullptr;
        EXPECT_GE(sd_event_new(&made), 0);
        event.reset(made);
    }

    /// Serves the bus and turns the loop until @p condition holds; fails after a minute.
    template <typename Condition>
    void Await(Condition condition) {
        constexpr std::uint64_t kTurn = 1000;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "nothing has come";
            if (daemons) {
                daemons->Serve();
            }
            ASSERT_GE(sd_event_run(event.get(), kTurn), 0);
        }
    }

    void Connect() {
        daemons.emplace(socketPath);
        daemons->Listen();
        daemons->owners[kService] = ":1.7";
        bus.emplace(event.get(), limit);
        Await([this] { return bus->IsConnected(); });
    }

    const std::string socketPath = directory / "bus";
    std::uint64_t limit = 60 * kSecond;
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
        [&](const json& /*arguments*/, const binding::BusError& error) { told = error; }, limit);
    Await([&] { return told.has_value(); });
    EXPECT_EQ(told->name, "org.example.Error.Dark");
    EXPECT_EQ(told->Text(), "org.example.Error.Dark: the bulb is?broken");
}

class BusThatDoesNotAnswer : public OnABus {
  protected:
    BusThatDoesNotAnswer() { limit = kSecond / 100; }

    /// The bus has a socket, at which nobody listens, or answers.
    void Begin() {
        daemons.emplace(socketPath);
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

/// A daemon with the objects /lamp and /fan.
class Daemon : public OnABus {
  protected:
    static constexpr std::array<binding::ExpectedKind, 2> kKinds = {{
        {kInterface, "On", binding::ValueKind::boolean},
        {kInterface, "Times.last", binding::ValueKind::integer},
    }};

    Daemon() {
        Connect();
        daemons->properties["/lamp org.example.Thing"] = {Property("On", "b", 1)};
        daemons->properties["/fan org.example.Thing"] = {Property("On", "b", 0)};
    }

    void Begin(std::uint64_t silenceLimit = 60 * kSecond) {
        objects.emplace(*bus,
                        BusObjects::Daemon{.service = kService,
                                           .manager = "",
                                           .objects = {{kLamp, {kInterface}}, {kFan, {kInterface}}},
                                           .kinds = kKinds,
                                           .limit = silenceLimit},
                        [this] {
                            ++changes;
                            seen.push_back(objects->GetPresence());
                        });
    }

    void BeginAs(Presence presence, std::uint64_t silenceLimit = 60 * kSecond) {
        Begin(silenceLimit);
        AwaitPresence(presence);
    }

    void AwaitPresence(Presence presence) {
        Await([&] { return objects->GetPresence() == presence; });
    }

    /// The same, with checks while it is @p other.
    void AwaitPresenceOrCheck(Presence presence, Presence other) {
        Await([&] {
            if (objects->GetPresence() == other) {
                objects->Check();
            }
            return objects->GetPresence() == presence;
        });
    }

    /// Changes a property, and waits until that has been heard.
    void Change(const char* path, const FakeBus::Append& property) {
        daemons->ChangeProperties(kService, path, kInterface, {property});
        Await([this, before = changes] { return changes > before; });
    }

    const json& On(const char* path) { return objects->Tree().at(path).at(kInterface).at("On"); }

    /// Ends the bus when @p call, which is not answered, has come.
    void EndBusDuring(const std::string& call) {
        Await([&] { return std::count(daemons->calls.begin(), daemons->calls.end(), call) == 1; });
        daemons.reset();
        AwaitPresence(Presence::absent);
    }

    std::optional<BusObjects> objects;
    int changes = 0;
    /// What it has been, in turn.
    std::vector<Presence> seen;
};

constexpr const char* kOnIsAText =
    "[LINUX]:[ERROR] - org.example.Daemon: /lamp: org.example.Thing.On is a text, not a boolean";

TEST_F(Daemon, ValueOfAWrongKindIsSaidOnceUntilItIsRightAgain) {
    daemons->properties["/lamp org.example.Thing"] = {Property("On", "s", "yes")};
    BeginAs(Presence::present);
    Change(kLamp, Property("On", "s", "no"));
    EXPECT_THAT(Log(), ElementsAre(kOnIsAText));
    Change(kLamp, Property("On", "b", 1));
    EXPECT_THAT(Log(), ElementsAre(kOnIsAText));
    Change(kLamp, Property("On", "u", 1));
    EXPECT_THAT(Log(), ElementsAre(kOnIsAText, HasSubstr(".On is an integer, not a boolean")));
}

TEST_F(Daemon, WrongValueIsSaidForOneObjectAndRemainsUntilThatOneIsRight) {
    daemons->properties["/lamp org.example.Thing"] = {Property("On", "s", "yes")};
    BeginAs(Presence::present);
    Change(kFan, Property("On", "s", "yes"));
    Change(kFan, Property("On", "b", 1));
    Change(kLamp, Property("On", "s", "no"));
    EXPECT_THAT(Log(), ElementsAre(kOnIsAText));
}

TEST_F(Daemon, EntryOfADictionaryCanBeWrongToo) {
    BeginAs(Presence::present);
    Change(kFan, Property("Times", "a{sv}", 1, "last", "t", UINT64_MAX));
    Change(kLamp, Property("Times", "a{sv}", 1, "last", "u", 7));
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("/fan: org.example.Thing.Times.last is a number that "
                                             "is too large, not an integer of 64 bits")));
}

TEST_F(Daemon, WhatIsRefusedMakesTheDaemonSilentUntilItIsTold) {
    daemons->methods[std::string("/fan ") + kGetAll] =
        Fails("org.freedesktop.DBus.Error.AccessDenied", "not for you");
    BeginAs(Presence::silent);
    EXPECT_EQ(objects->Problem(), "does not tell what it is asked for");
    daemons->ChangeProperties(kService, kLamp, kInterface, {Property("On", "b", 0)});
    Await([this] { return On(kLamp) == false; });
    EXPECT_EQ(objects->GetPresence(), Presence::silent);
    daemons->methods.clear();
    objects->Check();
    AwaitPresence(Presence::present);
    EXPECT_EQ(On(kFan), false);
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - org.example.Daemon: /fan: GetAll of "
                                   "org.example.Thing: org.freedesktop.DBus.Error.AccessDenied: "
                                   "not for you"));
}

TEST_F(Daemon, WhatIsRefusedAtFirstIsTakenFromASignal) {
    daemons->methods[std::string("/fan ") + kGetAll] = Fails("org.example.Error.Busy", "later");
    BeginAs(Presence::silent);
    daemons->Signal(kService, "/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded",
                    [](sd_bus_message* message) {
                        return sd_bus_message_append(message, "oa{sa{sv}}", kFan, 1, kInterface, 1,
                                                     "On", "b", 1);
                    });
    AwaitPresence(Presence::present);
    EXPECT_EQ(On(kFan), true);
}

TEST_F(Daemon, AnswerThatIsNoDictionaryIsRefused) {
    daemons->methods[std::string("/fan ") + kGetAll] = [](sd_bus_message* call) {
        return sd_bus_reply_method_return(call, "s", "off");
    };
    BeginAs(Presence::silent);
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("GetAll of org.example.Thing: the answer is no")));
}

TEST_F(Daemon, ObjectThatIsMissingIsLookedForAgain) {
    daemons->properties.erase("/fan org.example.Thing");
    BeginAs(Presence::present);
    daemons->properties["/fan org.example.Thing"] = {Property("On", "b", 1)};
    objects->Check();
    Await([this] { return objects->Tree().contains(kFan); });
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(Daemon, HalfOfWhichDoesNotAnswerIsSilentUntilItIsWhole) {
    daemons->methods[std::string("/fan ") + kGetAll] = StaysSilent;
    Begin(kSecond / 20);
    // On a machine that does much else, this limit may pass also while something is answered.
    AwaitPresenceOrCheck(Presence::silent, Presence::absent);
    EXPECT_EQ(objects->Problem(), "does not answer");
    // A sign of life of the other half.
    Change(kLamp, Property("On", "b", 0));
    EXPECT_EQ(objects->GetPresence(), Presence::reading);
    AwaitPresence(Presence::silent);
    daemons->methods.clear();
    Change(kLamp, Property("On", "b", 1));
    AwaitPresenceOrCheck(Presence::present, Presence::silent);
    EXPECT_EQ(On(kFan), false);
}

TEST_F(Daemon, IsAbsentAndNeverSilentWhenTheBusEndsBeforeItHasGivenASignOfLife) {
    constexpr const char* kPing = "/ org.freedesktop.DBus.Peer.Ping";
    daemons->methods[kPing] = StaysSilent;
    BeginAs(Presence::present);
    objects->Check();
    EndBusDuring(kPing);
    EXPECT_THAT(seen, ElementsAre(Presence::reading, Presence::present, Presence::absent));
}

TEST_F(Daemon, IsAbsentAndNeverSilentWhenTheBusEndsBeforeItIsWhole) {
    const std::string asked = std::string("/fan ") + kGetAll;
    daemons->methods[asked] = StaysSilent;
    Begin();
    EndBusDuring(asked);
    EXPECT_THAT(seen, ElementsAre(Presence::reading, Presence::absent));
}

TEST_F(Daemon, IsPresentAlsoWhenItSaysItselfThatThereIsNoConnection) {
    daemons->methods[std::string("/fan ") + kGetAll] = Fails(binding::kDisconnected, "to the fan");
    BeginAs(Presence::present);
    EXPECT_EQ(On(kLamp), true);
}

TEST_F(Daemon, OneObjectThatIsRefusedIsMissingUntilItIsTold) {
    BeginAs(Presence::present);
    constexpr const char* kClock = "/clock";
    daemons->methods[std::string("/clock ") + kGetAll] = Fails("org.example.Error.Busy", "later");
    daemons->properties["/clock org.example.Thing"] = {Property("On", "b", 1)};
    objects->Watch(kClock, {kInterface});
    for (int again = 0; again < 2; ++again) {
        Await([this, before = changes] { return changes > before; });
        EXPECT_EQ(objects->GetPresence(), Presence::present);
        objects->Check();
    }
    daemons->methods.clear();
    Await([this] { return objects->Tree().at("/clock").contains(kInterface); });
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("/clock: GetAll of org.example.Thing: "
                                             "org.example.Error.Busy: later")));
}

TEST_F(Daemon, ObjectThatIsForgottenBeforeItIsRefusedIsNotAskedForAgain) {
    BeginAs(Presence::present);
    const std::string asked = std::string("/clock ") + kGetAll;
    daemons->methods[asked] = Fails("org.example.Error.Busy", "later");
    objects->Watch("/clock", {kInterface});
    objects->Forget("/clock");
    Await([this, before = changes] { return changes > before; });
    objects->Check();
    // The answer to what is asked for next comes after that to the check.
    constexpr const char* kPing = "/ org.freedesktop.DBus.Peer.Ping";
    Await([&] { return std::count(daemons->calls.begin(), daemons->calls.end(), kPing) == 1; });
    objects->Watch("/bell", {kInterface});
    Await([this, before = changes] { return changes > before; });
    EXPECT_EQ(std::count(daemons->calls.begin(), daemons->calls.end(), asked), 1);
    EXPECT_THAT(Log(), IsEmpty());
}

}  // namespace
