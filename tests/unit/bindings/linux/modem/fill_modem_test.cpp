#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "bindings/linux/modem/modem.h"
#include "platform/fixed_text.h"
#include "tests/unit/bindings/linux/modem/modem_tree.h"

namespace {

using binding::Device;
using binding::FailModem;
using binding::FillModem;
using binding::Modem;
using binding::ReadModem;
using nlohmann::json;

Device Filled(const json& tree, const json& cells = nullptr) {
    Device device;
    FillModem(ReadModem(tree, kTestModem, cells), device);
    return device;
}

TEST(FillModem, FillsTheRecordsOfTheSdk) {
    const Device device = Filled(TestTree(), json::parse(R"([
        {"cell-type": 5, "serving": true, "earfcn": 1300, "physical-ci": "D3", "bandwidth": 100}])"));
    const auto& service = device.getCellularServiceStats.value;
    EXPECT_EQ(service.technology, SYS_TECHNOLOGY_LTE);
    EXPECT_EQ(service.roaming, SYS_ROAMING_NONE);
    EXPECT_EQ(service.signalBars, 3);
    EXPECT_EQ(service.snr, 13);
    EXPECT_EQ(service.pci, 211);
    EXPECT_EQ(FixedText(service.networkName), "Orvane");
    EXPECT_EQ(FixedText(service.networkId), "26201");
    EXPECT_EQ(service.femtoCell, 0);
    EXPECT_EQ(device.getCellularServiceStatus.value, SYS_SERVICE_AVAILABLE);
    EXPECT_EQ(device.getRadioEnabled.value, 1);
    EXPECT_EQ(device.getEnabledRadioTechnologies.value, 19);
    EXPECT_EQ(device.getCellularBand.value, 3);
    EXPECT_EQ(device.getCABandWidth.value, 20);
    EXPECT_EQ(device.getCellular5GMode.value, SYS_WAN_5G_NONE);
    EXPECT_EQ(device.getSIMStatus.value, SYS_SIM_READY);
    EXPECT_EQ(FixedText(device.getSubscriberInfo.value.identity), "262011234567890");
    EXPECT_EQ(device.getSIMCarrierGID.At(1).value.length, 2);
    EXPECT_EQ(device.getSIMCarrierGID.At(1).value.bytes.front(), 186);
    EXPECT_EQ(device.getCellularDataConnectionStatus.value, SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(device.getCellularDataAccountStatus.value, SYS_ACCOUNT_OUT_OF_CREDIT);
    EXPECT_EQ(device.getCellularDataConnectionStats.value.duration, 17U);
    EXPECT_EQ(device.getCellularDataConnectionStats.value.bytesReceived1, 4000U);
    EXPECT_EQ(device.getCellularDataConnectionStats.value.bytesTransmitted1, 300U);
}

TEST(FillModem, AModemWithoutSlotsHasOne) {
    const Device device = Filled(TestTree());
    EXPECT_EQ(device.getMultiSimEnabled.value, 0);
    EXPECT_EQ(device.getActiveSimSlot.value, 1);
    EXPECT_EQ(device.getNumSims.value, 1);
    const auto& slots = device.getAllSimSlotsInfo.value;
    EXPECT_EQ(slots.count, 1);
    EXPECT_EQ(FixedText(slots.slots[0].networkName), "Orvane");
    EXPECT_EQ(slots.slots[0].active, 1);
    EXPECT_EQ(slots.slots[0].simStatus, SYS_SIM_READY);
    EXPECT_EQ(slots.slots[0].dataConnectionStatus, SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(slots.slots[0].serviceStatus, SYS_SERVICE_AVAILABLE);
}

TEST(FillModem, OnlyTheSlotInUseHasAConnection) {
    json tree = TestTree();
    ModemProperties(tree)["SimSlots"] = {"/org/freedesktop/ModemManager1/SIM/1", kTestSim, "/"};
    ModemProperties(tree)["PrimarySimSlot"] = 2;
    tree["/org/freedesktop/ModemManager1/SIM/1"]["org.freedesktop.ModemManager1.Sim"] = {
        {"OperatorName", "Other"}};
    const Device device = Filled(tree);
    EXPECT_EQ(device.getMultiSimEnabled.value, 1);
    EXPECT_EQ(device.getActiveSimSlot.value, 2);
    EXPECT_EQ(device.getNumSims.value, 2);
    const auto& slots = device.getAllSimSlotsInfo.value;
    EXPECT_EQ(slots.count, 2);  // the record has no room for the third
    EXPECT_EQ(FixedText(slots.slots[0].networkName), "Other");
    EXPECT_EQ(slots.slots[0].active, 0);
    EXPECT_EQ(slots.slots[0].simStatus, SYS_SIM_READY);
    EXPECT_EQ(slots.slots[0].serviceStatus, SYS_SERVICE_NONE);
    EXPECT_EQ(slots.slots[0].dataConnectionStatus, SYS_DATA_CONNECTION_READY);
    EXPECT_EQ(FixedText(slots.slots[1].networkName), "Orvane");
    EXPECT_EQ(slots.slots[1].active, 1);
    EXPECT_EQ(slots.slots[1].serviceStatus, SYS_SERVICE_AVAILABLE);
}

TEST(FillModem, ASimWithoutGroupDoesNotKeepThatOfTheOneBefore) {
    json tree = TestTree();
    SimProperties(tree).erase("Gid1");
    const auto answer = Filled(tree).getSIMCarrierGID.At(1);
    EXPECT_EQ(answer.value.length, 1);
    EXPECT_EQ(answer.value.bytes.front(), 0xFF);
}

TEST(FillModem, NamesAreCutAndCleanedButNotEscaped) {
    json tree = TestTree();
    NetworkProperties(tree)["OperatorName"] = "\"><script>";
    EXPECT_EQ(FixedText(Filled(tree).getCellularServiceStats.value.networkName), "\"><script>");
    std::string longName(63, 'x');
    NetworkProperties(tree)["OperatorName"] = longName + "\u00e4";
    EXPECT_EQ(FixedText(Filled(tree).getCellularServiceStats.value.networkName), longName);
    NetworkProperties(tree)["OperatorName"] = "T\xFCrk";
    EXPECT_EQ(FixedText(Filled(tree).getCellularServiceStats.value.networkName), "T\uFFFDrk");
}

TEST(FillModem, WhatIsNotToldStaysAsItWas) {
    Device device;
    device.getSIMStatus = {true, 0, SYS_SIM_ERROR};
    device.getRadioEnabled = {true, 0, 1};
    FillModem(Modem{}, device);
    EXPECT_EQ(device.getSIMStatus.value, SYS_SIM_ERROR);
    EXPECT_EQ(device.getRadioEnabled.value, 1);
    EXPECT_EQ(device.getCellularServiceStats.value.technology, SYS_TECHNOLOGY_NONE);
    EXPECT_TRUE(device.getAllSimSlotsInfo.named);
}

TEST(FailModem, FailsWhatFillModemAnswers) {
    Device device;
    FailModem(device, 9006);
    EXPECT_EQ(device.getCellularServiceStats.error, 9006);
    EXPECT_EQ(device.getSIMStatus.error, 9006);
    EXPECT_EQ(device.getSIMCarrierGID.At(1).error, 9006);
    EXPECT_EQ(device.getCellular5GBand.error, 9006);
    EXPECT_EQ(device.getCellularDataAccountStatus.error, 9006);
    EXPECT_FALSE(device.getBatteryStatus.named);
}

/// Calls @p visit with @p tree as it is with each of its values replaced by @p replacement.
void ReplaceEach(json& tree, json& value, const json& replacement,
                 const std::function<void(const json&)>& visit) {
    const json original = value;
    value = replacement;
    visit(tree);
    value = original;
    if (value.is_structured()) {
        for (json& member : value) {
            ReplaceEach(tree, member, replacement, visit);
        }
    }
}

TEST(FillModem, LivesWithAnythingInPlaceOfAnyValue) {
    const std::vector<json> replacements = {
        nullptr,
        true,
        -1,
        0,
        4294967295,
        std::numeric_limits<std::int64_t>::min(),
        std::numeric_limits<std::uint64_t>::max(),
        std::numeric_limits<double>::quiet_NaN(),
        -1e308,
        "",
        "/",
        "\xFF\xFE",
        std::string(100000, 'x'),
        json::array(),
        json::array({nullptr, -1, "x", json::array()}),
        json::object(),
        json{{"error", -1}},
    };
    const json cells = json::parse(R"([
        {"cell-type": 5, "serving": true, "earfcn": 1300, "physical-ci": "D3", "bandwidth": 100}])");
    std::size_t visits = 0;
    for (const json& replacement : replacements) {
        json tree = TestTree();
        ReplaceEach(tree, tree, replacement, [&](const json& changed) {
            ++visits;
            EXPECT_NO_THROW({
                (void)binding::ModemPath(changed);
                const Device device = Filled(changed, cells);
                const auto& service = device.getCellularServiceStats.value;
                EXPECT_LT(FixedText(service.networkName).size(), sizeof(service.networkName));
                EXPECT_LE(service.signalBars, 5);
                EXPECT_GE(service.signalBars, 0);
            }) << replacement.type_name();
        });
    }
    EXPECT_GT(visits, replacements.size() * 50);
}

}  // namespace
