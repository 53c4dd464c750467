#include "components/status/status_component.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetFotaInstallStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetFotaInstallStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    int status = -1;
    // Firmware is installed in the background only on devices with a second partition for it.
    if (ConfigurationNumber("IsABPartitionEnabled").value_or(0) != 0) {
        KESTAL_DEBUG("Found AB partition and calling install status from fota");
        const int result = sys_getFotaInstallStatus(&status);
        if (result != SYS_SUCCESS) {
            KESTAL_FAILURE(
                "sys_getFotaInstallStatus API failed with error code %d. Try sysintcli "
                "getFotaInstallStatus from command line.",
                result);
        }
    }
    statusData["statusBarFotaInstallStatus"] = status;
    KESTAL_DEBUG("Final statusBarFotaInstallStatus is %d", status);
    KESTAL_END();
}
