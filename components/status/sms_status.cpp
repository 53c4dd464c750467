#include "components/status/status_component.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetSmsStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetSmsStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    int count = 0;
    const int result = sys_getSMSUnreadCount(&count);
    if (result == SYS_SUCCESS) {
        statusData["statusBarSmsUnreadCount"] = std::to_string(count);
        KESTAL_DEBUG("sms unread count %d", count);
    } else {
        KESTAL_FAILURE_UNSEPARATED(
            " sys_getSMSUnreadCount failed, returned error code [%d]. Try sysintcli "
            "getSMSUnreadCount from command line.",
            result);
    }
    KESTAL_END();
}
