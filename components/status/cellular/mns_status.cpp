#include "components/status/status_component.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetMnsStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetMnsStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    int allowed = 0;
    int selected = 0;
    int scanStatus = 0;
    const int result = sys_getModemMnsInfo(&allowed, &selected, &scanStatus);
    if (result == SYS_SUCCESS) {
        statusData["statusBarMnsAvailable"] = allowed;
        statusData["statusBarMnsInUse"] = selected;
        statusData["statusBarMnsScan"] = scanStatus;
        KESTAL_DEBUG_UNSEPARATED(" mns allowed: %d mns selected %d mns scan status %d", allowed,
                                 selected, scanStatus);
    } else {
        KESTAL_FAILURE_UNSEPARATED(
            " sys_getModemMnsInfo failed, returned error code [%d]. Try sysintcli getMnsInfo from "
            "command line.",
            result);
    }
    KESTAL_END();
}
