#include <algorithm>
#include <iterator>

#include "components/status/cellular/sim_lock.h"
#include "components/status/status_component.h"
#include "components/status/status_texts.h"
#include "framework/log.h"
#include "platform/fixed_text.h"
#include "platform/sysint.h"

namespace {

/// The texts of one slot.
struct SlotTexts {
    std::string status;
    std::string network;
    /// The state of the connection if the SIM is ready and in use, otherwise that of the SIM.
    std::string connectionState;
    std::string rejectCode;
    std::string carrierBlocked;
};

SlotTexts ReadSlot(const char* signature, const sys_sim_slot_t& slot, bool isPCOSupported) {
    SlotTexts texts;
    (void)GetSimStatusText(slot.simStatus, texts.status);
    texts.network = FixedText(slot.networkName);
    int accountStatus = 0;
    if (isPCOSupported) {
        (void)sys_getCellularDataAccountStatus(&accountStatus);
    }
    std::string connection;
    (void)GetConnectionStateText(slot.serviceStatus, slot.dataConnectionStatus, accountStatus,
                                 connection);
    if (IsUsableSim(slot.simStatus)) {
        const SimLockTexts lock = ReadSimLock(signature);
        texts.rejectCode = lock.networkRejectCode.value_or("");
        texts.carrierBlocked = lock.carrierBlocked.value_or("");
    }
    const bool inUse = slot.simStatus == SYS_SIM_READY && slot.active == 1;
    texts.connectionState = inUse ? connection : texts.status;
    return texts;
}

}  // namespace

void StatusComponent::GetDualSimStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetDualSimStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    int active = 0;
    const int activeResult = sys_getActiveSimSlot(&active);
    if (activeResult == SYS_SUCCESS) {
        KESTAL_LOG(TORU_DBG_NOTICE, "sys_getActiveSimSlot success, Active Sim Slot: %d", active);
        activeSimSlot = static_cast<std::uint32_t>(active);
        statusData["statusBarActiveSimSlot"] = active;
    } else {
        KESTAL_FAILURE(
            "sys_getActiveSimSlot failed with error code: %d, try sysintcli getActiveSimSlot from "
            "command line",
            activeResult);
    }
    int sims = 0;
    const int simsResult = sys_getNumSims(&sims);
    if (simsResult == SYS_SUCCESS) {
        KESTAL_LOG(TORU_DBG_NOTICE, "sys_getNumSims success, Number of Sims: %d", sims);
        statusData["statusBarNumSims"] = sims;
    } else {
        KESTAL_FAILURE(
            "sys_getNumSims failed with error code: %d, try sysintcli getNumSims from command line",
            simsResult);
    }
    sys_all_sim_slots_t all{};
    const int slotsResult = sys_getAllSimSlotsInfo(&all);
    statusData["statusBarSimSlotsCount"] = all.count;
    if (slotsResult == SYS_SUCCESS) {
        const int count = std::min<int>(all.count, std::size(all.slots));
        for (int i = 0; i < count; ++i) {
            const SlotTexts texts = ReadSlot(signature, all.slots[i], isPCOSupported);
            if (i == 1) {
                statusData["statusBarSim2Status"] = texts.status;
                statusData["statusBarSim2Network"] = texts.network;
                statusData["statusBarSim2ConnectionState"] = texts.connectionState;
                if (IsSecondSimActive()) {
                    statusData["statusBarSim2MMCode"] = texts.rejectCode;
                    statusData["statusBarSim2CarrierBlockedStatus"] = texts.carrierBlocked;
                } else {
                    // On a device with two slots, the codes of the first slot are emptied unless
                    // the second slot is in use.
                    statusData["statusBarSimMMCode"] = "";
                    statusData["statusBarSimCarrierBlockedStatus"] = "";
                }
            } else {
                statusData["statusBarSimStatus"] = texts.status;
                statusData["statusBarNetwork"] = texts.network;
                statusData["statusBarConnectionState"] = texts.connectionState;
                statusData["statusBarSimMMCode"] = texts.rejectCode;
                statusData["statusBarSimCarrierBlockedStatus"] = texts.carrierBlocked;
            }
        }
    }
    KESTAL_END();
}
