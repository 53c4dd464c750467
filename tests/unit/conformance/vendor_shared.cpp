// A shared library of a device's maker. It has one query, and every call of the system-interface
// SDK that is no query.
#include <cstdint>

#include "platform/sysint.h"

namespace {
constexpr int kNoSuchPart = 4711;
}

int sys_getWiFiMaxClients(unsigned int* count) {
    *count = 31;
    return SYS_SUCCESS;
}

int sys_sdkInitialize() {
    return SYS_SUCCESS;
}

int sys_sdkShutdown() {
    return SYS_SUCCESS;
}

int sys_cellularDataConnect(int /*reserved*/) {
    return kNoSuchPart;
}

int sys_cellularDataDisconnect(int /*reserved*/) {
    return kNoSuchPart;
}

int sys_getModemMnsInfo(int* /*allowed*/, int* /*selected*/, int* /*scanStatus*/) {
    return kNoSuchPart;
}

int sys_getSIMCarrierGID(std::uint8_t* /*gid*/, std::uint8_t* /*length*/, std::uint8_t /*index*/) {
    return kNoSuchPart;
}

int sys_getCellular5GBand(int* /*band*/, int* /*second*/) {
    return kNoSuchPart;
}

int sys_getConnectedDeviceList(sys_connected_device_t* /*devices*/, unsigned int* /*count*/) {
    return kNoSuchPart;
}

int sys_getWiFiGuestProfileEnabled(int /*profile*/, int* /*enabled*/) {
    return kNoSuchPart;
}
