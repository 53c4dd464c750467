// The scenarios that come with the project, on the devices that come with it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "bindings/simulator/edit/device_edit.h"
#include "bindings/simulator/play/scenario.h"

namespace {

using json = nlohmann::ordered_json;
using binding::Scenario;

std::string TextOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

Scenario Shipped(const std::string& name) {
    const std::filesystem::path path =
        std::filesystem::path(KESTAL_SHIPPED_SCENARIOS) / (name + ".json");
    return binding::ReadScenario(path, TextOf(path));
}

json Device() {
    return json::parse(TextOf(KESTAL_SHIPPED_DEVICES "/default.json"));
}

/// The device after a scenario. Checks that the reader accepts every state in between.
json Played(const std::string& name, json document) {
    const Scenario scenario = Shipped(name);
    for (const auto& [time, instant] : scenario.instants) {
        EXPECT_NO_THROW({
            instant.Apply(document);
            binding::MustBeGood(document);
        }) << name
           << " at " << time.count();
    }
    return document;
}

TEST(ShippedScenarios, AreTheseAndHaveTitles) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(KESTAL_SHIPPED_SCENARIOS)) {
        names.insert(entry.path().stem());
        EXPECT_NE(Shipped(entry.path().stem()).title, "") << entry.path();
    }
    EXPECT_EQ(names, (std::set<std::string>{"battery", "commute", "gentle", "sim-swap", "update"}));
}

TEST(ShippedScenarios, CanBePlayedAgainAndAgain) {
    for (const std::string name : {"battery", "commute", "gentle", "sim-swap", "update"}) {
        const json once = Played(name, Device());
        const json twice = Played(name, once);
        if (name == "battery" || name == "sim-swap" || name == "update") {
            EXPECT_EQ(twice, once) << name;
        }
        EXPECT_EQ(twice.flatten().size(), once.flatten().size()) << name;
    }
}

TEST(ShippedScenarios, HealAllCallsBeforeTheirEnd) {
    for (const std::string name : {"battery", "commute", "gentle", "sim-swap", "update"}) {
        EXPECT_EQ(Played(name, Device()).dump().find("\"error\""), std::string::npos) << name;
    }
}

TEST(ShippedScenarios, CountTrafficOnlyWhileDataCanFlow) {
    for (const char* const name : {"commute", "gentle"}) {
        for (const char* const stopped :
             {"getCellularDataConnectionStatus", "getCellularDataEnabled",
              "getCellularServiceStatus", "getRadioEnabled", "getSIMStatus"}) {
            json document = Device();
            json& sys = document["sys"];
            const json before = sys["getCellularDataConnectionStats"];
            for (const auto& [time, instant] : Shipped(name).instants) {
                // Keeps the value at 0, whatever the scenario sets.
                sys[stopped] = 0;
                instant.Apply(document);
            }
            json& after = sys["getCellularDataConnectionStats"];
            after["trafficStatus"] = before["trafficStatus"];
            EXPECT_EQ(after, before) << name << " with " << stopped << " 0";
        }
    }
}

TEST(ShippedScenarios, GentleRestoresTheDeviceExceptItsTraffic) {
    json before = Device();
    json after = Played("gentle", before);
    json& stats = after["sys"]["getCellularDataConnectionStats"];
    EXPECT_EQ(stats["duration"].get<int>() - 600,
              before["sys"]["getCellularDataConnectionStats"]["duration"].get<int>());
    stats = before["sys"]["getCellularDataConnectionStats"];
    after["sys"]["getBatteryStatus"]["chargingState"] = 1;
    after["sys"]["getBatteryStatus"]["chargingSource"] = "usb";
    EXPECT_EQ(after, before);
}

TEST(ShippedScenarios, GentleDoesNotChangeExtremeValues) {
    json before = Device();
    before["sys"]["getBatteryStatus"]["chargePercent"] = 9;
    before["sys"]["getCellularServiceStats"]["signalBars"] = 0;
    const json after = Played("gentle", before);
    EXPECT_EQ(after["sys"]["getBatteryStatus"]["chargePercent"], 9);
    EXPECT_EQ(after["sys"]["getCellularServiceStats"]["signalBars"], 0);
}

}  // namespace
