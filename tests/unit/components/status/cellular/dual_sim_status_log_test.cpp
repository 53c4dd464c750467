// Which calls the dual-SIM group makes, in which order, and what is logged.
#include "platform/sysint.h"
#include "tests/unit/components/status/cellular/dual_sim_status_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kDual = " - void StatusComponent::GetDualSimStatus(CTPP::CDT&)";

class DualSimStatusLog : public DualSimStatusTest {
  protected:
    std::string Transcript() {
        component->GetDualSimStatus(statusData);
        return TranscriptText();
    }

    static Step Active(int slot) {
        return Log(
            5, kDual + " - sys_getActiveSimSlot success, Active Sim Slot: " + std::to_string(slot));
    }
    static Step Sims(int count) {
        return Log(5,
                   kDual + " - sys_getNumSims success, Number of Sims: " + std::to_string(count));
    }
    static Step RejectCode(int code) {
        return Log(7, kDual + " - sim network reject code: " + std::to_string(code));
    }
};

TEST_F(DualSimStatusLog, BothSlots) {
    GivenSlots(2, 2, {ReadySlot("Orvane", 0), ReadySlot("Velta Mobil", 1)});
    GivenLock(0, 33);
    EXPECT_EQ(
        Transcript(),
        Steps({Log(7, kDual + " - BEGIN"), "sys_getActiveSimSlot()", Active(2), "sys_getNumSims()",
               Sims(2), "sys_getAllSimSlotsInfo()", "sys_getNetworkSIMLockStatus()",
               "sys_getSIMNetworkRejectCode()", RejectCode(33), "sys_getNetworkSIMLockStatus()",
               "sys_getSIMNetworkRejectCode()", RejectCode(33), Log(7, kDual + " - END")}));
}

TEST_F(DualSimStatusLog, AccountIsReadBeforeTheLockOfEachSlot) {
    Construct({"sys_getMultiSimEnabled", "sys_getPCOCarrierEnabled"});
    GivenSlots(1, 1, {ReadySlot("Orvane", 1), sys_sim_slot_t{}});
    GivenLock(0, 0);
    Given("sys_getCellularDataAccountStatus").Writes(0);
    EXPECT_EQ(
        Transcript(),
        Steps({Log(7, kDual + " - BEGIN"), "sys_getActiveSimSlot()", Active(1), "sys_getNumSims()",
               Sims(1), "sys_getAllSimSlotsInfo()", "sys_getCellularDataAccountStatus()",
               "sys_getNetworkSIMLockStatus()", "sys_getSIMNetworkRejectCode()", RejectCode(0),
               "sys_getCellularDataAccountStatus()", Log(7, kDual + " - END")}));
}

TEST_F(DualSimStatusLog, FailedAccountIsSilent) {
    Construct({"sys_getMultiSimEnabled", "sys_getPCOCarrierEnabled"});
    GivenSlots(1, 1, {sys_sim_slot_t{}}, 1);
    Given("sys_getCellularDataAccountStatus").Returns(9);
    EXPECT_EQ(Transcript(),
              Steps({Log(7, kDual + " - BEGIN"), "sys_getActiveSimSlot()", Active(1),
                     "sys_getNumSims()", Sims(1), "sys_getAllSimSlotsInfo()",
                     "sys_getCellularDataAccountStatus()", Log(7, kDual + " - END")}));
}

TEST_F(DualSimStatusLog, FailedActiveSlot) {
    Given("sys_getActiveSimSlot").Returns(21);
    Given("sys_getNumSims").Writes(2);
    Given("sys_getAllSimSlotsInfo").Writes(sys_all_sim_slots_t{});
    EXPECT_EQ(
        Transcript(),
        Steps({Log(7, kDual + " - BEGIN"), "sys_getActiveSimSlot()",
               Failure(kDual + " - sys_getActiveSimSlot failed with error code: 21, try "
                               "sysintcli getActiveSimSlot from command line"),
               "sys_getNumSims()", Sims(2), "sys_getAllSimSlotsInfo()", Log(7, kDual + " - END")}));
}

TEST_F(DualSimStatusLog, FailedNumberOfSims) {
    Given("sys_getActiveSimSlot").Writes(1);
    Given("sys_getNumSims").Returns(22);
    Given("sys_getAllSimSlotsInfo").Writes(sys_all_sim_slots_t{});
    EXPECT_EQ(Transcript(), Steps({Log(7, kDual + " - BEGIN"), "sys_getActiveSimSlot()", Active(1),
                                   "sys_getNumSims()",
                                   Failure(kDual + " - sys_getNumSims failed with error code: 22, "
                                                   "try sysintcli getNumSims from command line"),
                                   "sys_getAllSimSlotsInfo()", Log(7, kDual + " - END")}));
}

TEST_F(DualSimStatusLog, FailedSlotListIsSilent) {
    Given("sys_getActiveSimSlot").Writes(1);
    Given("sys_getNumSims").Writes(2);
    Given("sys_getAllSimSlotsInfo").Returns(23);
    EXPECT_EQ(Transcript(), Steps({Log(7, kDual + " - BEGIN"), "sys_getActiveSimSlot()", Active(1),
                                   "sys_getNumSims()", Sims(2), "sys_getAllSimSlotsInfo()",
                                   Log(7, kDual + " - END")}));
}

TEST_F(DualSimStatusLog, FailedLock) {
    GivenSlots(1, 1, {ReadySlot("Orvane", 1)}, 1);
    Given("sys_getNetworkSIMLockStatus").Returns(24);
    Given("sys_getSIMNetworkRejectCode").Returns(25);
    EXPECT_EQ(
        Transcript(),
        Steps({Log(7, kDual + " - BEGIN"), "sys_getActiveSimSlot()", Active(1), "sys_getNumSims()",
               Sims(1), "sys_getAllSimSlotsInfo()", "sys_getNetworkSIMLockStatus()",
               "sys_getSIMNetworkRejectCode()",
               Failure(kDual + " - sys_getNetworkSIMLockStatus failed, returned error code [24]. "
                               "Try sysintcli getNetworkSIMLockStatus from command line."),
               Log(7, kDual + " - END")}));
}

TEST_F(DualSimStatusLog, FailedRejectCode) {
    GivenSlots(1, 1, {ReadySlot("Orvane", 1)}, 1);
    Given("sys_getNetworkSIMLockStatus").Writes(sys_network_sim_lock_t{});
    Given("sys_getSIMNetworkRejectCode").Returns(25);
    EXPECT_EQ(
        Transcript(),
        Steps({Log(7, kDual + " - BEGIN"), "sys_getActiveSimSlot()", Active(1), "sys_getNumSims()",
               Sims(1), "sys_getAllSimSlotsInfo()", "sys_getNetworkSIMLockStatus()",
               "sys_getSIMNetworkRejectCode()",
               Failure(kDual + " sys_getSIMNetworkRejectCode failed, returned error code [25]. Try "
                               "sysintcli getSIMNetworkRejectCode from command line."),
               Log(7, kDual + " - END")}));
}

}  // namespace
