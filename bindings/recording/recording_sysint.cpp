#include <string>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"

using recording::InsidePlatform;
using recording::Output;
using recording::Play;

/// A call whose only parameter is its result.
// NOLINTBEGIN(bugprone-macro-parentheses): a type takes no parentheses here
#define RECORDING_QUERY(call, Type)              \
    int call(Type* value) {                      \
        const InsidePlatform inside;             \
        return Play(#call, "", {Output(value)}); \
    }
// NOLINTEND(bugprone-macro-parentheses)

RECORDING_QUERY(sys_getWebUICarrierEnabled, int)
RECORDING_QUERY(sys_getSambaCarrierEnabled, int)
RECORDING_QUERY(sys_getGPSCarrierEnabled, int)
RECORDING_QUERY(sys_getMTSMSCarrierEnabled, int)
RECORDING_QUERY(sys_getWiFiCarrierEnabled, int)
RECORDING_QUERY(sys_getWiFiGuestCarrierEnabled, int)
RECORDING_QUERY(sys_getPCOCarrierEnabled, int)
RECORDING_QUERY(sys_getNUACarrierEnabled, int)
RECORDING_QUERY(sys_getOmadmFumoCarrierEnabled, int)
RECORDING_QUERY(sys_getMultiSimEnabled, int)
RECORDING_QUERY(sys_getWDCPCarrierEnabled, int)
RECORDING_QUERY(sys_getHalyardAgentCarrierEnabled, int)
RECORDING_QUERY(sys_getWatchdogInterval, int)
RECORDING_QUERY(sys_getCellularDataEnabled, int)
RECORDING_QUERY(sys_getCellularDataConnectionStatus, int)
RECORDING_QUERY(sys_getSIMStatus, int)
RECORDING_QUERY(sys_getCellular3GBand, int)
RECORDING_QUERY(sys_getCellularBand, int)
RECORDING_QUERY(sys_getCABandWidth, int)
RECORDING_QUERY(sys_get5GBandWidth, int)
RECORDING_QUERY(sys_getEthernetEnabled, int)
RECORDING_QUERY(sys_getEthernetLinkStatus, int)
RECORDING_QUERY(sys_getFotaInstallStatus, int)
RECORDING_QUERY(sys_getGPSStatus, int)
RECORDING_QUERY(sys_getSMSUnreadCount, int)
RECORDING_QUERY(sys_getGpioPin1CustomSettings, GpioCustomSettings)
RECORDING_QUERY(sys_getGpioPin2CustomSettings, GpioCustomSettings)
RECORDING_QUERY(sys_getSambaEnabled, int)
RECORDING_QUERY(sys_getWiFiEnabled, int)
RECORDING_QUERY(sys_getRadioEnabled, int)
RECORDING_QUERY(sys_getCellularServiceStatus, int)
RECORDING_QUERY(sys_getCellularDataAccountStatus, int)
RECORDING_QUERY(sys_getEnabledRadioTechnologies, int)
RECORDING_QUERY(sys_getSIMNetworkRejectCode, int)
RECORDING_QUERY(sys_getActiveSimSlot, int)
RECORDING_QUERY(sys_getNumSims, int)
RECORDING_QUERY(sys_getCellularDataConnectionStats, sys_cellular_data_connection_stats_t)
RECORDING_QUERY(sys_getSubscriberInfo, sys_subscriber_info_t)
RECORDING_QUERY(sys_getNetworkSIMLockStatus, sys_network_sim_lock_t)
RECORDING_QUERY(sys_getAllSimSlotsInfo, sys_all_sim_slots_t)
RECORDING_QUERY(sys_getCellularServiceStats, sys_cellular_service_stats_t)
RECORDING_QUERY(sys_getCellular5GMode, sys_wan_5g_mode_e)
RECORDING_QUERY(sys_getSDCardInfo, sys_sd_card_info_t)
RECORDING_QUERY(sys_getSambaShareInfo, sys_samba_share_info_t)
RECORDING_QUERY(sys_getWiFiMaxClients, unsigned int)
RECORDING_QUERY(sys_getBatteryStatus, sys_battery_status_t)

/// A call whose only parameter beside its result is the name of a field or an application.
#define RECORDING_QUERY_BY_NAME(call)                                            \
    int call(const char* name, int* value) {                                     \
        const InsidePlatform inside;                                             \
        return Play(#call, name == nullptr ? "no name" : name, {Output(value)}); \
    }

RECORDING_QUERY_BY_NAME(sys_getUIFieldShowEnabled)
RECORDING_QUERY_BY_NAME(sys_getUIFieldLockEnabled)
RECORDING_QUERY_BY_NAME(sys_getUIAppDisplayEnabled)
RECORDING_QUERY_BY_NAME(sys_getUIAppWriteEnabled)

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
