#include "components/status/sim_carrier_gid.h"

#include "framework/log.h"
#include "platform/sysint.h"

void GetSIMCarrierGID(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index) {
    KESTAL_SIGNATURE("void GetSIMCarrierGID(uint8_t*, uint8_t*, uint8_t)");
    KESTAL_BEGIN();
    const int result = sys_getSIMCarrierGID(gid, length, index);
    if (result == SYS_SUCCESS) {
        KESTAL_DEBUG("[%s]:[%s] - %s - simGid: %d", gid[0]);
    } else {
        KESTAL_FAILURE(
            "[%s]:[%s] - %s - sys_getSIMCarrierGID failed, returned error code [%d]. Try sysintcli "
            "getSIMCarrierGID from command line.",
            result);
    }
    KESTAL_END();
}
