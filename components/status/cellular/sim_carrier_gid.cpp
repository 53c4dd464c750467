#include "components/status/cellular/sim_carrier_gid.h"

#include <algorithm>
#include <array>

#include "framework/log.h"
#include "platform/sysint.h"

void GetSIMCarrierGID(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index) {
    KESTAL_SIGNATURE("void GetSIMCarrierGID(uint8_t*, uint8_t*, uint8_t)");
    KESTAL_BEGIN();
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> knownGid{};
    std::copy_n(gid, knownGid.size(), knownGid.begin());
    const std::uint8_t knownLength = *length;
    const int result = sys_getSIMCarrierGID(gid, length, index);
    if (result == SYS_SUCCESS) {
        KESTAL_DEBUG("simGid: %d", gid[0]);
    } else {
        // Undoes what the failed call may have written: the caller keeps what it knew of the SIM.
        std::copy(knownGid.begin(), knownGid.end(), gid);
        *length = knownLength;
        KESTAL_FAILURE(
            "sys_getSIMCarrierGID failed, returned error code [%d]. Try sysintcli getSIMCarrierGID "
            "from command line.",
            result);
    }
    KESTAL_END();
}
