// System-interface SDK: what the carrier enables and allows.
#include "not_supported.h"
#include "platform/sysint.h"

// Open what the calls of one request share, such as the connection to your modem service.
int sys_sdkInitialize() {
    return SYS_SUCCESS;
}

// Close it; the request is over.
int sys_sdkShutdown() {
    return SYS_SUCCESS;
}

// Whether the carrier's settings of the device allow the web UI. If this fails, every request is
// answered with "WebUI feature disabled".
int sys_getWebUICarrierEnabled(int* enabled) {
    *enabled = 1;
    return SYS_SUCCESS;
}

// The same for file sharing. If this or one of the next switches fails, it counts as off: the
// service makes no call that the switch would enable, and logs nothing about the failure. Switches
// are read once per process.
int sys_getSambaCarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// The same for positioning.
int sys_getGPSCarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// The same for received messages.
int sys_getMTSMSCarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// The same for Wi-Fi.
int sys_getWiFiCarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// The same for guest Wi-Fi.
int sys_getWiFiGuestCarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// Whether the network reports the state of the account in its protocol configuration options.
int sys_getPCOCarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// Whether the NUA software-update agent is enabled.
int sys_getNUACarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// Whether OMA-DM firmware updates are enabled.
int sys_getOmadmFumoCarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// 1 for a device that runs with more than one SIM.
int sys_getMultiSimEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// Whether the WDCP agent restricts the web UI.
int sys_getWDCPCarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// Whether the Halyard agent restricts the web UI.
int sys_getHalyardAgentCarrierEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// Look up whether the carrier hides the field.
int sys_getUIFieldShowEnabled(const char* /*field*/, int* /*show*/) {
    return kNotSupported;
}

// Look up whether the carrier locks the field.
int sys_getUIFieldLockEnabled(const char* /*field*/, int* /*locked*/) {
    return kNotSupported;
}

// Look up whether the carrier hides the application.
int sys_getUIAppDisplayEnabled(const char* /*app*/, int* /*display*/) {
    return kNotSupported;
}

// Look up whether the carrier locks the application.
int sys_getUIAppWriteEnabled(const char* /*app*/, int* /*write*/) {
    return kNotSupported;
}
