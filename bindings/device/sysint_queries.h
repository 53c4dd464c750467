// Queries of the system-interface SDK. The device, the reader of documents and the calls are made
// from these lists.
#pragma once

#include "platform/sysint.h"

/// Those whose only parameter is their result: QUERY(type of the result, name without "sys_").
#define SYSINT_QUERIES(QUERY)                                                   \
    QUERY(int, getWebUICarrierEnabled)                                          \
    QUERY(int, getSambaCarrierEnabled)                                          \
    QUERY(int, getGPSCarrierEnabled)                                            \
    QUERY(int, getMTSMSCarrierEnabled)                                          \
    QUERY(int, getWiFiCarrierEnabled)                                           \
    QUERY(int, getWiFiGuestCarrierEnabled)                                      \
    QUERY(int, getPCOCarrierEnabled)                                            \
    QUERY(int, getNUACarrierEnabled)                                            \
    QUERY(int, getOmadmFumoCarrierEnabled)                                      \
    QUERY(int, getMultiSimEnabled)                                              \
    QUERY(int, getWDCPCarrierEnabled)                                           \
    QUERY(int, getHalyardAgentCarrierEnabled)                                   \
    QUERY(int, getWatchdogInterval)                                             \
    QUERY(int, getCellularDataEnabled)                                          \
    QUERY(int, getCellularDataConnectionStatus)                                 \
    QUERY(sys_cellular_service_stats_t, getCellularServiceStats)                \
    QUERY(int, getRadioEnabled)                                                 \
    QUERY(int, getCellularServiceStatus)                                        \
    QUERY(int, getCellularDataAccountStatus)                                    \
    QUERY(int, getEnabledRadioTechnologies)                                     \
    QUERY(sys_cellular_data_connection_stats_t, getCellularDataConnectionStats) \
    QUERY(sys_subscriber_info_t, getSubscriberInfo)                             \
    QUERY(sys_network_sim_lock_t, getNetworkSIMLockStatus)                      \
    QUERY(int, getSIMNetworkRejectCode)                                         \
    QUERY(int, getActiveSimSlot)                                                \
    QUERY(int, getNumSims)                                                      \
    QUERY(sys_all_sim_slots_t, getAllSimSlotsInfo)                              \
    QUERY(int, getSIMStatus)                                                    \
    QUERY(int, getCellular3GBand)                                               \
    QUERY(int, getCellularBand)                                                 \
    QUERY(sys_wan_5g_mode_e, getCellular5GMode)                                 \
    QUERY(int, getCABandWidth)                                                  \
    QUERY(int, get5GBandWidth)                                                  \
    QUERY(int, getEthernetEnabled)                                              \
    QUERY(int, getEthernetLinkStatus)                                           \
    QUERY(int, getFotaInstallStatus)                                            \
    QUERY(int, getGPSStatus)                                                    \
    QUERY(int, getSMSUnreadCount)                                               \
    QUERY(GpioCustomSettings, getGpioPin1CustomSettings)                        \
    QUERY(GpioCustomSettings, getGpioPin2CustomSettings)                        \
    QUERY(sys_sd_card_info_t, getSDCardInfo)                                    \
    QUERY(int, getSambaEnabled)                                                 \
    QUERY(sys_samba_share_info_t, getSambaShareInfo)                            \
    QUERY(int, getWiFiEnabled)                                                  \
    QUERY(unsigned int, getWiFiMaxClients)                                      \
    QUERY(sys_battery_status_t, getBatteryStatus)

/// Those that answer a number for a field or an application of the web UI, which they are given by
/// name: QUERY(name without "sys_").
#define SYSINT_NAMED_QUERIES(QUERY) \
    QUERY(getUIFieldShowEnabled)    \
    QUERY(getUIFieldLockEnabled)    \
    QUERY(getUIAppDisplayEnabled)   \
    QUERY(getUIAppWriteEnabled)
