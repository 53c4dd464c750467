#include "components/status/cellular/sim_lock.h"

#include "components/status/status_texts.h"
#include "framework/log.h"
#include "platform/sysint.h"

bool IsUsableSim(int simStatus) {
    return simStatus != SYS_SIM_NOT_FOUND && simStatus != SYS_SIM_ERROR &&
           simStatus != SYS_SIM_FAILURE;
}

SimLockTexts ReadSimLock(const char* signature) {
    sys_network_sim_lock_t lock{};
    int rejectCode = 0;
    const int lockResult = sys_getNetworkSIMLockStatus(&lock);
    const int rejectResult = sys_getSIMNetworkRejectCode(&rejectCode);
    SimLockTexts texts;
    if (lockResult != SYS_SUCCESS) {
        KESTAL_FAILURE(
            "sys_getNetworkSIMLockStatus failed, returned error code [%d]. Try sysintcli "
            "getNetworkSIMLockStatus from command line.",
            lockResult);
        return texts;
    }
    if (rejectResult == SYS_SUCCESS) {
        texts.networkRejectCode = std::to_string(rejectCode);
        KESTAL_DEBUG("sim network reject code: %s", texts.networkRejectCode->c_str());
    } else {
        KESTAL_FAILURE_UNSEPARATED(
            " sys_getSIMNetworkRejectCode failed, returned error code [%d]. Try sysintcli "
            "getSIMNetworkRejectCode from command line.",
            rejectResult);
    }
    texts.carrierBlocked.emplace();
    (void)GetFemtoCellText(lock.carrierBlocked, *texts.carrierBlocked);
    return texts;
}
