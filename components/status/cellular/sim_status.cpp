#include "components/status/cellular/sim_lock.h"
#include "components/status/status_component.h"
#include "components/status/status_texts.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetSimStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetSimStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    int status = SYS_SIM_READY;
    const int result = sys_getSIMStatus(&status);
    if (result == SYS_SUCCESS) {
        if (IsUsableSim(status)) {
            const SimLockTexts lock = ReadSimLock(signature);
            if (lock.networkRejectCode) {
                statusData["statusBarSimMMCode"] = *lock.networkRejectCode;
            }
            if (lock.carrierBlocked) {
                statusData["statusBarSimCarrierBlockedStatus"] = *lock.carrierBlocked;
            }
        }
        std::string text;
        (void)GetSimStatusText(status, text);
        statusData["statusBarSimStatus"] = text;
    } else {
        KESTAL_FAILURE_UNSEPARATED(
            " sys_getSIMStatus failed, returned error code [%d]. Try sysintcli getSIMStatus from "
            "command line.",
            result);
    }
    KESTAL_END();
}
