// System-interface SDK: the cellular connection.
#include "not_supported.h"
#include "platform/sysint.h"

// Ask the modem service to start the data call; do not wait until it is connected.
int sys_cellularDataConnect(int /*reserved*/) {
    return kNotSupported;
}

// Ask the modem service to stop the data call.
int sys_cellularDataDisconnect(int /*reserved*/) {
    return kNotSupported;
}

// The user's switch for cellular data, from your settings.
int sys_getCellularDataEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// State of the data call as a sys_data_connection_status_e.
int sys_getCellularDataConnectionStatus(int* /*status*/) {
    return kNotSupported;
}

// Technology, bars, operator and signal, from the modem service.
int sys_getCellularServiceStats(sys_cellular_service_stats_t* /*stats*/) {
    return kNotSupported;
}

// Seconds and bytes of the data call, such as the counters of its network interface.
int sys_getCellularDataConnectionStats(sys_cellular_data_connection_stats_t* /*stats*/) {
    return kNotSupported;
}

// 0 in airplane mode.
int sys_getRadioEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// State of the registration with the network (AT+CREG?) as a sys_service_status_e.
int sys_getCellularServiceStatus(int* /*status*/) {
    return kNotSupported;
}

// What the network says about the account, as a sys_account_status_e; 0 without a limit.
int sys_getCellularDataAccountStatus(int* /*status*/) {
    return kNotSupported;
}

// The user's choice of technologies, as the modem's bit mask.
int sys_getEnabledRadioTechnologies(int* /*technologies*/) {
    return kNotSupported;
}

// Whether the user may select the network, has selected one, and the state of the scan.
int sys_getModemMnsInfo(int* /*allowed*/, int* /*selected*/, int* /*scanStatus*/) {
    return kNotSupported;
}

// Number of the WCDMA band in use.
int sys_getCellular3GBand(int* /*band*/) {
    return kNotSupported;
}

// Number of the LTE band in use, 66 for B66.
int sys_getCellularBand(int* /*band*/) {
    return kNotSupported;
}

// Number of the NR band in use, 77 for n77; nobody reads the second number.
int sys_getCellular5GBand(int* /*band*/, int* /*second*/) {
    return kNotSupported;
}

// Whether NR is used alone or together with LTE.
int sys_getCellular5GMode(sys_wan_5g_mode_e* /*mode*/) {
    return kNotSupported;
}

// Bandwidth of all LTE carriers together, in MHz.
int sys_getCABandWidth(int* /*bandwidth*/) {
    return kNotSupported;
}

// Bandwidth of the NR carrier, in MHz.
int sys_get5GBandWidth(int* /*bandwidth*/) {
    return kNotSupported;
}
