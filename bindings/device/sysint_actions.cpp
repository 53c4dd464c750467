// Actions of the system-interface SDK.
#include "bindings/device/calls.h"
#include "bindings/device/device_owner.h"
#include "bindings/device/seen_call.h"
#include "platform/sysint.h"

using binding::Device;

int sys_cellularDataConnect(int /*reserved*/) {
    const auto call = [](const Device& device) {
        const int failure = binding::FailureOf(device.cellularDataConnect, 0);
        return failure == SYS_SUCCESS ? binding::StartDataCall() : failure;
    };
    return binding::Watched(
        "sys_cellularDataConnect", {}, SYS_SUCCESS, [&] { return binding::WithDevice(0, call); },
        binding::NoAnswer);
}

int sys_cellularDataDisconnect(int /*reserved*/) {
    const auto call = [](const Device& device) {
        const int failure = binding::FailureOf(device.cellularDataDisconnect, 0);
        return failure == SYS_SUCCESS ? binding::StopDataCall() : failure;
    };
    return binding::Watched(
        "sys_cellularDataDisconnect", {}, SYS_SUCCESS, [&] { return binding::WithDevice(0, call); },
        binding::NoAnswer);
}
