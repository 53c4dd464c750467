// A static library of a device's maker.
#include "platform/sysint.h"

int sys_getSMSUnreadCount(int* count) {
    *count = 7;
    return SYS_SUCCESS;
}
