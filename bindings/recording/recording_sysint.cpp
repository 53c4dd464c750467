#include <string>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"
#include "platform/sysint_queries.h"

using recording::InsidePlatform;
using recording::Output;
using recording::Play;

// NOLINTBEGIN(bugprone-macro-parentheses): a type takes no parentheses here
#define RECORDING_QUERY(Type, name, Meaning, field, description) \
    int sys_##name(Type* value) {                                \
        const InsidePlatform inside;                             \
        return Play("sys_" #name, "", {Output(value)});          \
    }
// NOLINTEND(bugprone-macro-parentheses)
SYSINT_QUERIES(RECORDING_QUERY)
#undef RECORDING_QUERY

#define RECORDING_NAMED_QUERY(call, Subject, field, description)                        \
    int sys_##call(const char* name, int* value) {                                      \
        const InsidePlatform inside;                                                    \
        return Play("sys_" #call, name == nullptr ? "no name" : name, {Output(value)}); \
    }
SYSINT_NAMED_QUERIES(RECORDING_NAMED_QUERY)
#undef RECORDING_NAMED_QUERY

int sys_sdkInitialize() {
    const InsidePlatform inside;
    return Play("sys_sdkInitialize", "", {}, 0);
}

int sys_sdkShutdown() {
    const InsidePlatform inside;
    return Play("sys_sdkShutdown", "", {}, 0);
}

int sys_cellularDataConnect(int reserved) {
    const InsidePlatform inside;
    return Play("sys_cellularDataConnect", std::to_string(reserved), {});
}

int sys_cellularDataDisconnect(int reserved) {
    const InsidePlatform inside;
    return Play("sys_cellularDataDisconnect", std::to_string(reserved), {});
}

int sys_getModemMnsInfo(int* allowed, int* selected, int* scanStatus) {
    const InsidePlatform inside;
    return Play("sys_getModemMnsInfo", "", {Output(allowed), Output(selected), Output(scanStatus)});
}

int sys_getSIMCarrierGID(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index) {
    const InsidePlatform inside;
    return Play("sys_getSIMCarrierGID", "index " + std::to_string(index),
                {Output(gid, SYS_SIM_CARRIER_GID_SIZE), Output(length)});
}

int sys_getCellular5GBand(int* band, int* second) {
    const InsidePlatform inside;
    return Play("sys_getCellular5GBand", "", {Output(band), Output(second)});
}

int sys_getConnectedDeviceList(sys_connected_device_t* devices, unsigned int* count) {
    const InsidePlatform inside;
    return Play("sys_getConnectedDeviceList",
                devices == nullptr ? "no buffer" : "room for " + std::to_string(*count),
                {Output(devices, *count), Output(count)});
}

int sys_getWiFiGuestProfileEnabled(int profile, int* enabled) {
    const InsidePlatform inside;
    return Play("sys_getWiFiGuestProfileEnabled", "profile " + std::to_string(profile),
                {Output(enabled)});
}
