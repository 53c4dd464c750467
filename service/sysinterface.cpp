#include "framework/log.h"
#include "platform/sysint.h"
#include "service/request_loop.h"

bool InitializeSysinterface() {
    KESTAL_SIGNATURE("bool InitializeSysinterface()");
    KESTAL_BEGIN();
    const int code = sys_sdkInitialize();
    const bool initialized = code == SYS_SUCCESS;
    if (!initialized) {
        KESTAL_FAILURE("system interface api failed returning [%d].", code);
    }
    KESTAL_END_RETURNING(initialized ? 1 : 0);
    return initialized;
}

bool UninitializeSysinterface() {
    KESTAL_SIGNATURE("bool UninitializeSysinterface()");
    KESTAL_BEGIN();
    sys_sdkShutdown();
    KESTAL_END_RETURNING(1);
    return true;
}
