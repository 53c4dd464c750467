// What the dual-SIM group writes.
#include "tests/unit/components/status/cellular/dual_sim_status_test.h"

#include <limits>

#include "platform/sysint.h"

using recording::CallCount;
using recording::Given;

namespace {

using DualSimStatus = DualSimStatusTest;

TEST_F(DualSimStatus, BothSlotsWithTheFirstInUse) {
    GivenSlots(1, 2, {ReadySlot("Orvane", 1), ReadySlot("Velta Mobil", 0)});
    GivenLock(0, 33);
    EXPECT_EQ(Json(), R"({"statusBarActiveSimSlot":1,)"
                      R"("statusBarConnectionState":"Connected",)"
                      R"("statusBarNetwork":"Orvane","statusBarNumSims":2,)"
                      R"("statusBarSim2ConnectionState":"Ready",)"
                      R"("statusBarSim2Network":"Velta Mobil","statusBarSim2Status":"Ready",)"
                      R"("statusBarSimCarrierBlockedStatus":"","statusBarSimMMCode":"",)"
                      R"("statusBarSimSlotsCount":2,"statusBarSimStatus":"Ready"})");
}

TEST_F(DualSimStatus, WithTheSecondSlotInUseBothSlotsCarryTheSameCodes) {
    GivenSlots(2, 2, {ReadySlot("Orvane", 0), ReadySlot("Velta Mobil", 1)});
    GivenLock(1, 15);
    EXPECT_EQ(Json(), R"({"statusBarActiveSimSlot":2,)"
                      R"("statusBarConnectionState":"Ready",)"
                      R"("statusBarNetwork":"Orvane","statusBarNumSims":2,)"
                      R"("statusBarSim2CarrierBlockedStatus":"1",)"
                      R"("statusBarSim2ConnectionState":"Connected","statusBarSim2MMCode":"15",)"
                      R"("statusBarSim2Network":"Velta Mobil","statusBarSim2Status":"Ready",)"
                      R"("statusBarSimCarrierBlockedStatus":"1","statusBarSimMMCode":"15",)"
                      R"("statusBarSimSlotsCount":2,"statusBarSimStatus":"Ready"})");
}

TEST_F(DualSimStatus, OneSlotWritesTheFirstSlotsKeysOnly) {
    GivenSlots(1, 1, {ReadySlot("Orvane", 1), ReadySlot("Velta Mobil", 0)}, 1);
    GivenLock(0, 33);
    EXPECT_EQ(Json(), R"({"statusBarActiveSimSlot":1,)"
                      R"("statusBarConnectionState":"Connected",)"
                      R"("statusBarNetwork":"Orvane","statusBarNumSims":1,)"
                      R"("statusBarSimCarrierBlockedStatus":"0","statusBarSimMMCode":"33",)"
                      R"("statusBarSimSlotsCount":1,"statusBarSimStatus":"Ready"})");
}

TEST_F(DualSimStatus, NoSlotOrANegativeCountReadsNone) {
    for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
        Restart();
        GivenSlots(1, 2, {ReadySlot("Orvane", 1), ReadySlot("Velta Mobil", 0)}, count);
        GivenLock(0, 33);
        EXPECT_EQ(Json(), R"({"statusBarActiveSimSlot":1,"statusBarNumSims":2,)"
                          R"("statusBarSimSlotsCount":)" +
                              std::to_string(count) + "}");
        EXPECT_EQ(CallCount("sys_getNetworkSIMLockStatus"), 0U);
    }
}

TEST_F(DualSimStatus, CountBeyondTwoIsPublishedAndTwoSlotsAreRead) {
    for (const int count : {2, 3, std::numeric_limits<int>::max()}) {
        Restart();
        GivenSlots(1, 2, {ReadySlot("Orvane", 1), ReadySlot("Velta Mobil", 0)}, count);
        GivenLock(0, 33);
        Json();
        EXPECT_EQ(Value("statusBarSimSlotsCount"), std::to_string(count));
        EXPECT_EQ(Value("statusBarNetwork"), "Orvane");
        EXPECT_EQ(Value("statusBarSim2Network"), "Velta Mobil");
        EXPECT_EQ(CallCount("sys_getNetworkSIMLockStatus"), 2U);
    }
}

TEST_F(DualSimStatus, FailedSlotListPublishesTheCountItHasAndReadsNoSlot) {
    for (const int count : {0, 2}) {
        Restart();
        Given("sys_getActiveSimSlot").Writes(1);
        Given("sys_getNumSims").Writes(2);
        sys_all_sim_slots_t all{count, {ReadySlot("Orvane", 1), ReadySlot("Velta Mobil", 0)}};
        Given("sys_getAllSimSlotsInfo").Returns(9).Writes(all);
        EXPECT_EQ(Json(), R"({"statusBarActiveSimSlot":1,"statusBarNumSims":2,)"
                          R"("statusBarSimSlotsCount":)" +
                              std::to_string(count) + "}");
    }
}

TEST_F(DualSimStatus, FailedSlotListThatWroteNothingCountsNone) {
    EXPECT_EQ(Json(), R"({"statusBarSimSlotsCount":0})");
}

TEST_F(DualSimStatus, NumbersAreSignedAndPublishedAsTheyAre) {
    GivenSlots(-2, std::numeric_limits<int>::max(), {}, 0);
    EXPECT_EQ(Json(), R"({"statusBarActiveSimSlot":-2,"statusBarNumSims":2147483647,)"
                      R"("statusBarSimSlotsCount":0})");
}

TEST_F(DualSimStatus, NumbersThatAreNotWrittenAreZero) {
    Given("sys_getActiveSimSlot").Returns(SYS_SUCCESS);
    Given("sys_getNumSims").Returns(SYS_SUCCESS);
    Given("sys_getAllSimSlotsInfo").Returns(SYS_SUCCESS);
    EXPECT_EQ(Json(), R"({"statusBarActiveSimSlot":0,"statusBarNumSims":0,)"
                      R"("statusBarSimSlotsCount":0})");
}

TEST_F(DualSimStatus, FailedActiveSlotOfANewComponentBlanksTheFirstSlotsCodes) {
    Given("sys_getActiveSimSlot").Returns(9).Writes(2);
    Given("sys_getNumSims").Writes(2);
    Given("sys_getAllSimSlotsInfo")
        .Writes(sys_all_sim_slots_t{2, {ReadySlot("Orvane", 0), ReadySlot("Velta Mobil", 1)}});
    GivenLock(0, 33);
    Json();
    EXPECT_EQ(Value("statusBarActiveSimSlot"), "(absent)");
    EXPECT_EQ(Value("statusBarSimMMCode"), "");
    EXPECT_EQ(Value("statusBarSimCarrierBlockedStatus"), "");
    EXPECT_EQ(Value("statusBarSim2MMCode"), "(absent)");
    EXPECT_EQ(Value("statusBarSim2CarrierBlockedStatus"), "(absent)");
}

TEST_F(DualSimStatus, FailedActiveSlotKeepsTheOneOfTheRequestBefore) {
    GivenSlots(2, 2, {ReadySlot("Orvane", 0), ReadySlot("Velta Mobil", 1)});
    Given("sys_getActiveSimSlot").Returns(9).Writes(1);
    GivenLock(0, 33);
    Json();
    statusData = CTPP::CDT(CTPP::CDT::HASH_VAL);
    Json();
    EXPECT_EQ(CallCount("sys_getActiveSimSlot"), 2U);
    EXPECT_EQ(Value("statusBarActiveSimSlot"), "(absent)");
    EXPECT_EQ(Value("statusBarSim2MMCode"), "33");
    EXPECT_EQ(Value("statusBarSimMMCode"), "33");
}

TEST_F(DualSimStatus, SlotThatIsReadyAndNotInUseShowsTheSimInPlaceOfTheConnection) {
    for (const int active : {0, 2, -1}) {
        Restart();
        GivenSlots(1, 1, {ReadySlot("Orvane", active)}, 1);
        GivenLock(0, 0);
        Json();
        EXPECT_EQ(Value("statusBarConnectionState"), "Ready") << active;
    }
}

TEST_F(DualSimStatus, SlotThatIsInUseAndNotReadyShowsTheSimInPlaceOfTheConnection) {
    const std::map<int, std::string> texts = {
        {0, "Not Found"}, {1, "SIM Locked"}, {2, "SIM Restricted"}, {3, "SIM Error"},
        {4, "SIM Error"}, {5, "PUK Locked"}, {6, "PIN Locked"},     {8, ""}};
    for (const auto& [status, text] : texts) {
        Restart();
        sys_sim_slot_t slot = ReadySlot("Orvane", 1);
        slot.simStatus = status;
        GivenSlots(1, 1, {slot}, 1);
        GivenLock(0, 0);
        Json();
        EXPECT_EQ(Value("statusBarConnectionState"), text) << status;
        EXPECT_EQ(Value("statusBarSimStatus"), text) << status;
    }
}

TEST_F(DualSimStatus, ConnectionFollowsServiceAndDataConnectionOfTheSlot) {
    sys_sim_slot_t slot = ReadySlot("Orvane", 1);
    slot.serviceStatus = SYS_SERVICE_NONE;
    slot.dataConnectionStatus = SYS_DATA_CONNECTION_INITIALIZING;
    GivenSlots(1, 1, {slot}, 1);
    GivenLock(0, 0);
    Json();
    EXPECT_EQ(Value("statusBarConnectionState"), "Initializing");
}

TEST_F(DualSimStatus, NoUsableSimIsNotAskedForItsLockAndHasEmptyCodes) {
    for (const int status : {0, 3, 4}) {
        Restart();
        sys_sim_slot_t slot = ReadySlot("", 0);
        slot.simStatus = status;
        GivenSlots(2, 2, {slot, slot});
        GivenLock(1, 33);
        Json();
        EXPECT_EQ(CallCount("sys_getNetworkSIMLockStatus"), 0U) << status;
        EXPECT_EQ(CallCount("sys_getSIMNetworkRejectCode"), 0U) << status;
        for (const char* key : {"statusBarSimMMCode", "statusBarSimCarrierBlockedStatus",
                                "statusBarSim2MMCode", "statusBarSim2CarrierBlockedStatus"}) {
            EXPECT_EQ(Value(key), "") << status << " " << key;
        }
    }
}

TEST_F(DualSimStatus, EmptySlotBesideTheOneInUseLeavesTheCodesToTheUsableSim) {
    sys_sim_slot_t empty{};
    GivenSlots(2, 1, {empty, ReadySlot("Velta Mobil", 1)});
    GivenLock(0, 33);
    Json();
    EXPECT_EQ(CallCount("sys_getNetworkSIMLockStatus"), 1U);
    EXPECT_EQ(Value("statusBarSimStatus"), "Not Found");
    EXPECT_EQ(Value("statusBarConnectionState"), "Not Found");
    EXPECT_EQ(Value("statusBarNetwork"), "");
    EXPECT_EQ(Value("statusBarSimMMCode"), "");
    EXPECT_EQ(Value("statusBarSim2MMCode"), "33");
    EXPECT_EQ(Value("statusBarSim2CarrierBlockedStatus"), "0");
}

TEST_F(DualSimStatus, EmptySecondSlotTakesNothingOverFromTheFirst) {
    sys_sim_slot_t empty{};
    empty.simStatus = SYS_SIM_NOT_FOUND;
    GivenSlots(2, 1, {ReadySlot("Orvane", 0), empty});
    GivenLock(1, 33);
    Json();
    EXPECT_EQ(Value("statusBarSimMMCode"), "33");
    EXPECT_EQ(Value("statusBarSimCarrierBlockedStatus"), "1");
    EXPECT_EQ(Value("statusBarSim2MMCode"), "");
    EXPECT_EQ(Value("statusBarSim2CarrierBlockedStatus"), "");
}

TEST_F(DualSimStatus, SecondSlotThatCannotBeReadTakesNothingOverFromTheFirst) {
    for (const std::string call : {"sys_getNetworkSIMLockStatus", "sys_getSIMNetworkRejectCode"}) {
        Restart();
        GivenSlots(2, 2, {ReadySlot("Orvane", 0), ReadySlot("Velta Mobil", 1)});
        GivenLock(1, 33);
        Given(call).Returns(5);
        Json();
        EXPECT_EQ(Value("statusBarSimMMCode"), "33") << call;
        EXPECT_EQ(Value("statusBarSim2MMCode"), "") << call;
    }
}

TEST_F(DualSimStatus, SecondSlotOfUnknownStatusShowsEmptyTexts) {
    sys_sim_slot_t unknown = ReadySlot("Velta Mobil", 0);
    unknown.simStatus = 99;
    GivenSlots(1, 2, {ReadySlot("Orvane", 1), unknown});
    GivenLock(0, 0);
    Json();
    EXPECT_EQ(Value("statusBarSimStatus"), "Ready");
    EXPECT_EQ(Value("statusBarSim2Status"), "");
    EXPECT_EQ(Value("statusBarSim2ConnectionState"), "");
}

TEST_F(DualSimStatus, FailedLockLeavesBothCodesEmpty) {
    GivenSlots(1, 1, {ReadySlot("Orvane", 1)}, 1);
    Given("sys_getNetworkSIMLockStatus").Returns(12);
    Given("sys_getSIMNetworkRejectCode").Writes(33);
    Json();
    EXPECT_EQ(Value("statusBarSimMMCode"), "");
    EXPECT_EQ(Value("statusBarSimCarrierBlockedStatus"), "");
}

TEST_F(DualSimStatus, FailedRejectCodeLeavesOnlyItsOwnKeyEmpty) {
    GivenSlots(1, 1, {ReadySlot("Orvane", 1)}, 1);
    sys_network_sim_lock_t lock{};
    lock.carrierBlocked = 1;
    Given("sys_getNetworkSIMLockStatus").Writes(lock);
    Given("sys_getSIMNetworkRejectCode").Returns(13).Writes(33);
    Json();
    EXPECT_EQ(Value("statusBarSimMMCode"), "");
    EXPECT_EQ(Value("statusBarSimCarrierBlockedStatus"), "1");
}

TEST_F(DualSimStatus, NetworkNameMayFillItsField) {
    sys_sim_slot_t slot = ReadySlot(std::string(80, 'n'), -1);
    GivenSlots(1, 2, {slot, slot});
    GivenLock(0, 0);
    Json();
    EXPECT_EQ(Value("statusBarNetwork"), std::string(77, 'n'));
    EXPECT_EQ(Value("statusBarSim2Network"), std::string(77, 'n'));
}

TEST_F(DualSimStatus, KeysOfTheInternetGroupAreReplaced) {
    statusData["statusBarNetwork"] = "other";
    statusData["statusBarConnectionState"] = "other";
    GivenSlots(1, 1, {ReadySlot("Orvane", 1)}, 1);
    GivenLock(0, 0);
    Json();
    EXPECT_EQ(Value("statusBarNetwork"), "Orvane");
    EXPECT_EQ(Value("statusBarConnectionState"), "Connected");
}

TEST_F(DualSimStatus, AccountIsAskedForEachSlotOnlyWhereTheCarrierTellsIt) {
    GivenSlots(1, 2, {ReadySlot("Orvane", 1), ReadySlot("Velta Mobil", 1)});
    GivenLock(0, 0);
    Given("sys_getCellularDataAccountStatus").Writes<int>(SYS_ACCOUNT_OUT_OF_CREDIT);
    Json();
    EXPECT_EQ(CallCount("sys_getCellularDataAccountStatus"), 0U);
    EXPECT_EQ(Value("statusBarConnectionState"), "Connected");

    Construct({"sys_getMultiSimEnabled", "sys_getPCOCarrierEnabled"});
    GivenSlots(1, 2, {ReadySlot("Orvane", 1), ReadySlot("Velta Mobil", 1)});
    GivenLock(0, 0);
    Given("sys_getCellularDataAccountStatus").Writes<int>(SYS_ACCOUNT_OUT_OF_CREDIT);
    Given("sys_getCellularDataAccountStatus").Returns(9);
    Json();
    EXPECT_EQ(CallCount("sys_getCellularDataAccountStatus"), 2U);
    EXPECT_EQ(Value("statusBarConnectionState"), "Account out of credit (PCO 3)");
    EXPECT_EQ(Value("statusBarSim2ConnectionState"), "Connected")
        << "each slot begins with an account that is in order";
}

TEST_F(DualSimStatus, AccountThatFailsButWritesAValueFollowsTheValue) {
    Construct({"sys_getMultiSimEnabled", "sys_getPCOCarrierEnabled"});
    GivenSlots(1, 1, {ReadySlot("Orvane", 1)}, 1);
    GivenLock(0, 0);
    Given("sys_getCellularDataAccountStatus").Returns(9).Writes<int>(SYS_ACCOUNT_NOT_ACTIVE);
    Json();
    EXPECT_EQ(Value("statusBarConnectionState"), "Account not active (PCO 5)");
}

}  // namespace
