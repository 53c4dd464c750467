#include "components/status/status_component.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetEthernetPortEnabled(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetEthernetPortEnabled(CTPP::CDT&)");
    KESTAL_BEGIN();
    std::string port = "disabled";
    int enabled = 0;
    const int result = sys_getEthernetEnabled(&enabled);
    if (result != SYS_SUCCESS) {
        KESTAL_FAILURE(
            "sys_getEthernetEnabled failed, returned error code [%d]. Try sysintcli "
            "getEthernetEnabled from command line.",
            result);
    } else {
        KESTAL_DEBUG("ethernet enabled status [%d]", enabled);
        if (enabled != 0) {
            port = "enabled";
            int link = 0;
            const int linkResult = sys_getEthernetLinkStatus(&link);
            if (linkResult != SYS_SUCCESS) {
                KESTAL_FAILURE_UNSEPARATED(
                    ": sys_getEthernetLinkStatus failed to get link status by returning[%d]. "
                    "sysintcli getEthernetLinkStatus on command line",
                    linkResult);
            } else if (link != 0) {
                port = "connected";
            }
        }
    }
    statusData["statusBarEthernetPortEnabled"] = port;
    KESTAL_END();
}
