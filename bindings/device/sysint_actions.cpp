// Actions of the system-interface SDK.
#include "bindings/device/calls.h"
#include "bindings/device/device_owner.h"
#include "platform/sysint.h"

using binding::Device;

int sys_cellularDataConnect(int /*reserved*/) {
    return binding::WithDevice(0, [](const Device& device) {
        const int failure = binding::FailureOf(device.cellularDataConnect, 0);
        return failure == SYS_SUCCESS ? binding::StartDataCall() : failure;
    });
}

int sys_cellularDataDisconnect(int /*reserved*/) {
    return binding::WithDevice(0, [](const Device& device) {
        const int failure = binding::FailureOf(device.cellularDataDisconnect, 0);
        return failure == SYS_SUCCESS ? binding::StopDataCall() : failure;
    });
}
