#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

/// A device with two SIM slots.
class DualSimStatusTest : public StatusGroupTest {
  protected:
    void SetUp() override { Restart(); }

    /// A new component and an empty data set.
    void Restart() {
        Construct({"sys_getMultiSimEnabled"});
        statusData = CTPP::CDT(CTPP::CDT::HASH_VAL);
    }

    /// A slot with a ready SIM and a connection.
    static sys_sim_slot_t ReadySlot(std::string_view network, int active) {
        sys_sim_slot_t slot{};
        SetText(slot.networkName, network);
        slot.active = active;
        slot.simStatus = SYS_SIM_READY;
        slot.dataConnectionStatus = SYS_DATA_CONNECTION_CONNECTED;
        slot.serviceStatus = SYS_SERVICE_AVAILABLE;
        return slot;
    }

    static void GivenSlots(int active, int sims, const std::vector<sys_sim_slot_t>& slots,
                           int count = 2) {
        sys_all_sim_slots_t all{};
        all.count = count;
        std::copy(slots.begin(), slots.end(), all.slots);
        recording::Given("sys_getActiveSimSlot").Writes(active);
        recording::Given("sys_getNumSims").Writes(sims);
        recording::Given("sys_getAllSimSlotsInfo").Writes(all);
    }

    static void GivenLock(int carrierBlocked, int rejectCode) {
        sys_network_sim_lock_t lock{};
        lock.carrierBlocked = carrierBlocked;
        recording::Given("sys_getNetworkSIMLockStatus").Writes(lock);
        recording::Given("sys_getSIMNetworkRejectCode").Writes(rejectCode);
    }

    std::string Json() {
        component->GetDualSimStatus(statusData);
        return ToJson(statusData);
    }
};
