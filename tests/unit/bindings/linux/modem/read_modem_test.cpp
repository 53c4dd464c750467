#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "bindings/linux/modem/modem.h"
#include "tests/unit/bindings/linux/modem/modem_tree.h"

namespace {

using binding::BearerStats;
using binding::Modem;
using binding::ModemPath;
using binding::ReadModem;
using nlohmann::json;

Modem Read(const json& tree, const json& cells = nullptr) {
    return ReadModem(tree, kTestModem, cells);
}

TEST(ReadModem, ReadsAModemThatIsConnected) {
    const Modem modem = Read(TestTree(), json::parse(R"([
        {"cell-type": 5, "serving": true, "earfcn": 1300, "physical-ci": "D3", "bandwidth": 100}])"));
    EXPECT_EQ(modem.path, kTestModem);
    EXPECT_EQ(modem.serviceStatus, SYS_SERVICE_AVAILABLE);
    EXPECT_EQ(modem.roaming, SYS_ROAMING_NONE);
    EXPECT_EQ(modem.networkName, "Orvane");
    EXPECT_EQ(modem.networkId, "26201");
    EXPECT_EQ(modem.rejectCode, std::nullopt);
    EXPECT_EQ(modem.radioEnabled, 1);
    EXPECT_EQ(modem.enabledTechnologies, 19);
    EXPECT_EQ(modem.technology, SYS_TECHNOLOGY_LTE);
    EXPECT_EQ(modem.fiveGMode, SYS_WAN_5G_NONE);
    EXPECT_EQ(modem.signalBars, 3);
    EXPECT_EQ(modem.signalToNoise, 13);
    EXPECT_EQ(modem.physicalCell, 211);
    EXPECT_EQ(modem.lteBand, 3);
    EXPECT_EQ(modem.lteBandwidth, 20);
    EXPECT_EQ(modem.simStatus, SYS_SIM_READY);
    EXPECT_EQ(modem.carrierBlocked, false);
    EXPECT_EQ(modem.imsi, "262011234567890");
    ASSERT_TRUE(modem.firstGroupId.has_value());
    EXPECT_EQ(modem.firstGroupId->length, 2);
    EXPECT_EQ(modem.firstGroupId->bytes.front(), 186);
    EXPECT_FALSE(modem.secondGroupId.has_value());
    EXPECT_EQ(modem.dataConnectionStatus, SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(modem.interface, "wwan0");
    EXPECT_EQ(modem.bearerStats, (BearerStats{17, 4000, 300}));
}

// Network.

TEST(ReadModem, ANetworkWithoutNameHasThatOfTheSimAtHome) {
    json tree = TestTree();
    NetworkProperties(tree)["OperatorName"] = "";
    EXPECT_EQ(Read(tree).networkName, "Orvane SIM");
    SimProperties(tree).erase("OperatorName");
    EXPECT_EQ(Read(tree).networkName, "26201");
}

TEST(ReadModem, ANetworkWithoutNameHasItsCodeAbroad) {
    json tree = TestTree();
    NetworkProperties(tree) = {{"RegistrationState", 5}, {"OperatorCode", "20801"}};
    EXPECT_EQ(Read(tree).networkName, "20801");
    EXPECT_EQ(Read(tree).roaming, SYS_ROAMING_INTERNATIONAL);
}

TEST(ReadModem, WithoutServiceThereIsNoNetwork) {
    json tree = TestTree();
    ModemProperties(tree)["State"] = 7;
    NetworkProperties(tree)["RegistrationState"] = 2;
    const Modem modem = Read(tree);
    EXPECT_EQ(modem.serviceStatus, SYS_SERVICE_SEARCHING);
    EXPECT_EQ(modem.networkName, std::nullopt);
    EXPECT_EQ(modem.networkId, std::nullopt);
    EXPECT_EQ(modem.technology, std::nullopt);
    EXPECT_EQ(modem.signalBars, std::nullopt);
}

TEST(ReadModem, ARejectIsThatOfTheNetworkOrElseThatOfTheBearer) {
    json tree = TestTree();
    BearerProperties(tree)["Connected"] = false;
    BearerProperties(tree)["ConnectionError"] = {
        "org.freedesktop.ModemManager1.Error.MobileEquipment.ServiceOptionNotSubscribed", "no"};
    EXPECT_EQ(Read(tree).rejectCode, 33);
    NetworkProperties(tree)["NetworkRejection"] = {{"error", 11}};
    EXPECT_EQ(Read(tree).rejectCode, 11);
    for (const std::int64_t absurd :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{4294967295}}) {
        NetworkProperties(tree)["NetworkRejection"] = {{"error", absurd}};
        EXPECT_EQ(Read(tree).rejectCode, 33) << absurd;
    }
}

TEST(ReadModem, AccountIsWhatTheOperatorOfTheSimSays) {
    json tree = TestTree();
    EXPECT_EQ(Read(tree).accountStatus, SYS_ACCOUNT_OUT_OF_CREDIT);
    SimProperties(tree)["Imsi"] = "262021234567890";
    EXPECT_EQ(Read(tree).accountStatus, std::nullopt);
}

TEST(ReadModem, AConnectedBearerHasNotBeenRejected) {
    json tree = TestTree();
    BearerProperties(tree)["ConnectionError"] = {
        "org.freedesktop.ModemManager1.Error.MobileEquipment.ServiceOptionNotSubscribed", ""};
    EXPECT_EQ(Read(tree).rejectCode, std::nullopt);
}

// Radio.

TEST(ReadModem, WithoutMeasuredPowerTheBarsAreThoseOfThePercentage) {
    json tree = TestTree();
    SignalProperties(tree)["Lte"].erase("rsrp");
    EXPECT_EQ(Read(tree).signalBars, 4);
    SignalProperties(tree)["Lte"]["rsrp"] = 0.0;
    EXPECT_EQ(Read(tree).signalBars, 4);
    tree[kTestModem].erase("org.freedesktop.ModemManager1.Modem.Signal");
    EXPECT_EQ(Read(tree).signalBars, 4);
    EXPECT_EQ(Read(tree).signalToNoise, std::nullopt);
    ModemProperties(tree)["SignalQuality"] = json::array();
    EXPECT_EQ(Read(tree).signalBars, std::nullopt);
}

TEST(ReadModem, ARatioThatIsNotMeasuredIsNotTold) {
    json tree = TestTree();
    for (const double absurd : {-32768.0, 1e300, 60.5}) {
        SignalProperties(tree)["Lte"]["snr"] = absurd;
        EXPECT_EQ(Read(tree).signalToNoise, std::nullopt) << absurd;
    }
    SignalProperties(tree)["Lte"]["snr"] = -3.4;
    EXPECT_EQ(Read(tree).signalToNoise, -3);
}

TEST(ReadModem, FiveGBesideLteIsMeasuredByItsOwnSignalOrElseByThatOfLte) {
    json tree = TestTree();
    ModemProperties(tree)["AccessTechnologies"] = 49152;
    EXPECT_EQ(Read(tree).technology, SYS_TECHNOLOGY_5G);
    EXPECT_EQ(Read(tree).fiveGMode, SYS_WAN_5G_NON_STANDALONE);
    EXPECT_EQ(Read(tree).fiveGType, SYS_5G_OTHER);
    EXPECT_EQ(Read(tree).signalBars, 3);
    SignalProperties(tree)["Nr5g"] = {{"rsrp", -84.0}, {"snr", 21.0}};
    EXPECT_EQ(Read(tree).signalBars, 5);
    EXPECT_EQ(Read(tree).signalToNoise, 21);
}

TEST(ReadModem, FiveGAloneIsNotMeasuredByLte) {
    json tree = TestTree();
    ModemProperties(tree)["AccessTechnologies"] = 32768;
    EXPECT_EQ(Read(tree).fiveGMode, SYS_WAN_5G_STANDALONE);
    EXPECT_EQ(Read(tree).signalBars, 4);  // of 62 percent
}

TEST(ReadModem, MillimetreWavesAreUltraWideband) {
    json tree = TestTree();
    ModemProperties(tree)["AccessTechnologies"] = 49152;
    const Modem modem = Read(tree, json::parse(R"([
        {"cell-type": 5, "serving": true, "physical-ci": "1"},
        {"cell-type": 6, "serving": true, "nrarfcn": 2254166, "physical-ci": "2"}])"));
    EXPECT_EQ(modem.nrBand, 260);
    EXPECT_EQ(modem.fiveGType, SYS_5G_ULTRA_WIDEBAND);
    EXPECT_EQ(modem.physicalCell, 2);
}

TEST(ReadModem, SeveralLteCarriersAreLtePlus) {
    const Modem modem = Read(TestTree(), json::parse(R"([
        {"cell-type": 5, "serving": true, "bandwidth": 100},
        {"cell-type": 5, "serving": true, "bandwidth": 50}])"));
    EXPECT_EQ(modem.technology, SYS_TECHNOLOGY_LTE_PLUS);
    EXPECT_EQ(modem.lteBandwidth, 30);
}

TEST(ReadModem, WithoutCellsTheOnlyBandThatMayBeUsedIsInUse) {
    json tree = TestTree();
    EXPECT_EQ(Read(tree).lteBand, std::nullopt);  // three may be used
    ModemProperties(tree)["CurrentBands"] = {50, 5, 378};
    EXPECT_EQ(Read(tree).lteBand, 20);
    EXPECT_EQ(Read(tree).umtsBand, 1);
    EXPECT_EQ(Read(tree).nrBand, 78);
    ModemProperties(tree)["CurrentBands"] = {256};
    EXPECT_EQ(Read(tree).lteBand, std::nullopt);
}

TEST(ReadModem, TheModemsBandsDecideBetweenNrBandsThatOverlap) {
    json tree = TestTree();
    const json cells = json::parse(R"([{"cell-type": 6, "serving": true, "nrarfcn": 640000}])");
    EXPECT_EQ(Read(tree, cells).nrBand, 78);
    ModemProperties(tree)["SupportedBands"] = {377};
    EXPECT_EQ(Read(tree, cells).nrBand, 77);
    ModemProperties(tree)["CurrentBands"] = {378, 301};
    EXPECT_EQ(Read(tree, cells).nrBand, 78);
}

// SIM.

TEST(ReadModem, AModemWithoutSimHasAnEmptySlot) {
    json tree = TestTree();
    ModemProperties(tree)["Sim"] = "/";
    ModemProperties(tree)["State"] = -1;
    ModemProperties(tree)["StateFailedReason"] = 2;
    const Modem modem = Read(tree);
    EXPECT_EQ(modem.simStatus, SYS_SIM_NOT_FOUND);
    EXPECT_EQ(modem.imsi, std::nullopt);
    ASSERT_EQ(modem.slots.size(), 1U);
    EXPECT_FALSE(modem.slots[0].hasSim);
}

TEST(ReadModem, ReadsBothSlots) {
    json tree = TestTree();
    ModemProperties(tree)["SimSlots"] = {"/org/freedesktop/ModemManager1/SIM/1", kTestSim};
    ModemProperties(tree)["PrimarySimSlot"] = 2;
    tree["/org/freedesktop/ModemManager1/SIM/1"]["org.freedesktop.ModemManager1.Sim"] = {
        {"Active", false}, {"OperatorName", "Other"}};
    const Modem modem = Read(tree);
    EXPECT_EQ(modem.activeSlot, 2);
    ASSERT_EQ(modem.slots.size(), 2U);
    EXPECT_EQ(modem.slots[0], (binding::SimSlot{true, "Other"}));
    EXPECT_EQ(modem.slots[1], (binding::SimSlot{true, "Orvane SIM"}));
    ModemProperties(tree)["SimSlots"] = {"/", kTestSim};
    EXPECT_FALSE(Read(tree).slots[0].hasSim);
}

TEST(ReadModem, ASlotWhoseEsimHasNoProfileIsEmpty) {
    json tree = TestTree();
    const std::string other = "/org/freedesktop/ModemManager1/SIM/1";
    ModemProperties(tree)["SimSlots"] = {kTestSim, other};
    for (const auto& [status, hasSim] : {std::pair(0, true), {1, false}, {2, true}}) {
        tree[other]["org.freedesktop.ModemManager1.Sim"] = {{"EsimStatus", status}};
        EXPECT_EQ(Read(tree).slots[1].hasSim, hasSim) << status;
    }
}

TEST(ReadModem, ASlotThatIsNoneIsTheFirst) {
    json tree = TestTree();
    for (const std::int64_t absurd :
         {std::int64_t{0}, std::int64_t{2}, std::int64_t{-1}, std::int64_t{4294967295}}) {
        ModemProperties(tree)["PrimarySimSlot"] = absurd;
        EXPECT_EQ(Read(tree).activeSlot, 1) << absurd;
    }
}

TEST(ReadModem, AnIdentityThatIsNoneIsNotTold) {
    json tree = TestTree();
    for (const char* imsi : {"", "26201123456789x", "2620112345678901", "\"><script>"}) {
        SimProperties(tree)["Imsi"] = imsi;
        EXPECT_EQ(Read(tree).imsi, std::nullopt) << imsi;
    }
}

TEST(ReadModem, AGroupThatIsNoneIsNotTold) {
    json tree = TestTree();
    for (const json& group : {json::array(), json{256}, json{-1}, json{1, "2"}, json("AB"),
                              json(std::vector<int>(256, 1))}) {
        SimProperties(tree)["Gid1"] = group;
        EXPECT_FALSE(Read(tree).firstGroupId.has_value()) << group;
    }
}

TEST(ReadModem, ALockToANetworkBlocksTheSim) {
    json tree = TestTree();
    ModemProperties(tree)["State"] = 2;
    ModemProperties(tree)["UnlockRequired"] = 8;
    EXPECT_EQ(Read(tree).simStatus, SYS_SIM_RESTRICTED);
    EXPECT_EQ(Read(tree).carrierBlocked, true);
}

// Data connection.

TEST(ReadModem, OfSeveralBearersTheConnectedOneCounts) {
    json tree = TestTree();
    const std::string other = "/org/freedesktop/ModemManager1/Bearer/1";
    ModemProperties(tree)["Bearers"] = {other, kTestBearer};
    tree[other]["org.freedesktop.ModemManager1.Bearer"] = {{"Connected", false},
                                                           {"Interface", "wwan1"}};
    EXPECT_EQ(Read(tree).interface, "wwan0");
    EXPECT_EQ(Read(tree).dataConnectionStatus, SYS_DATA_CONNECTION_CONNECTED);
    BearerProperties(tree)["Connected"] = false;
    EXPECT_EQ(Read(tree).interface, std::nullopt);
    EXPECT_EQ(Read(tree).bearerStats, std::nullopt);
    EXPECT_EQ(Read(tree).dataConnectionStatus, SYS_DATA_CONNECTION_READY);
}

TEST(ReadModem, ABearerThatHasNotBeenReadYetLeavesTheModemsState) {
    json tree = TestTree();
    tree.erase(kTestBearer);
    EXPECT_EQ(Read(tree).dataConnectionStatus, SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(Read(tree).interface, std::nullopt);
}

TEST(ReadModem, ABearerMayCountNothing) {
    json tree = TestTree();
    BearerProperties(tree)["Stats"] = json::object();
    EXPECT_EQ(Read(tree).bearerStats, std::nullopt);
    BearerProperties(tree)["Stats"] = {{"duration", 5}, {"rx-bytes", -1}};
    EXPECT_EQ(Read(tree).bearerStats, (BearerStats{5, 0, 0}));
}

// Which modem.

json ModemIn(std::int64_t state) {
    return {{"org.freedesktop.ModemManager1.Modem", {{"State", state}}}};
}

TEST(ModemPath, IsThatOfTheModemFoundFirst) {
    EXPECT_EQ(ModemPath(json{{"/m/10", ModemIn(8)}, {"/m/9", ModemIn(3)}}), "/m/9");
}

TEST(ModemPath, IsThatOfAModemThatWorks) {
    EXPECT_EQ(ModemPath(json{{"/m/0", ModemIn(-1)}, {"/m/1", ModemIn(3)}}), "/m/1");
    EXPECT_EQ(ModemPath(json{{"/m/1", ModemIn(3)}, {"/m/2", ModemIn(-1)}}), "/m/1");
    EXPECT_EQ(ModemPath(json{{"/m/1", ModemIn(-1)}, {"/m/2", ModemIn(-1)}}), "/m/1");
}

TEST(ModemPath, IsEmptyWithoutModem) {
    EXPECT_EQ(ModemPath(nullptr), "");
    EXPECT_EQ(ModemPath(json::object()), "");
    EXPECT_EQ(ModemPath(json{{"/m/0", {{"other", json::object()}}}}), "");
    EXPECT_EQ(ModemPath(json{{"/m/0", 5}}), "");
}

TEST(ModemPath, MayHaveAnyEnd) {
    EXPECT_EQ(ModemPath(json{
                  {"/m/x", ModemIn(8)}, {"/m/99999999999999", ModemIn(8)}, {"/m/7", ModemIn(8)}}),
              "/m/7");
}

}  // namespace
