#include "components/status/status_component.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetMobileDataEnabled(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetMobileDataEnabled(CTPP::CDT&)");
    KESTAL_BEGIN();
    int enabled = 0;
    const int result = sys_getCellularDataEnabled(&enabled);
    if (result == SYS_SUCCESS) {
        KESTAL_DEBUG("cellular data enabled status [%d]", enabled);
        statusData["statusBarMobileDataEnabled"] = enabled != 0 ? 1 : 0;
    } else {
        KESTAL_FAILURE(
            "sys_getCellularDataEnabled failed, returned error code [%d]. Try sysintcli "
            "getCellularDataEnabled from command line.",
            result);
    }
    KESTAL_END();
}
