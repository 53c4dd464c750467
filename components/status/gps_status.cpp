#include "components/status/status_component.h"
#include "components/status/status_texts.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetGpsStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetGpsStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    int status = 0;
    const int result = sys_getGPSStatus(&status);
    if (result == SYS_SUCCESS) {
        std::string text;
        (void)GetGpsStatusText(status, text);
        statusData["statusBarGpsStatus"] = text;
        KESTAL_DEBUG("gps status : %s", text.c_str());
    } else {
        KESTAL_FAILURE_UNSEPARATED(
            " sys_getGPSStatus failed, returned error code [%d]. Try sysintcli getGPSStatus from "
            "command line.",
            result);
    }
    KESTAL_END();
}
