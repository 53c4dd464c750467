// Lists of the SDK's queries. All code that has one part for each query is generated from these
// lists: the calls of the simulated device, commands, tests. Each query is also declared in
// platform/sysint.h, and described in docs/simulator.md and docs/man/sysintcli.1.scd.
#pragma once

#include "platform/sysint.h"

/// Queries whose only parameter is their result, in the order of their declarations:
///
///     QUERY(type, name without "sys_", meaning, name of the result, description)
///
/// The meaning is the enumeration to which a number belongs, bool for a number that is always 0 or
/// 1, and otherwise the type again. The name of the result is "" for a record, because its fields
/// have names.
#define SYSINT_QUERIES(QUERY)                                                                      \
    QUERY(int, getWebUICarrierEnabled, int, "enabled", "Whether the carrier enables the web UI")   \
    QUERY(int, getSambaCarrierEnabled, int, "enabled", "Whether the carrier enables file sharing") \
    QUERY(int, getGPSCarrierEnabled, int, "enabled", "Whether the carrier enables GPS")            \
    QUERY(int, getMTSMSCarrierEnabled, int, "enabled",                                             \
          "Whether the carrier enables mobile-terminated SMS")                                     \
    QUERY(int, getWiFiCarrierEnabled, int, "enabled", "Whether the carrier enables Wi-Fi")         \
    QUERY(int, getWiFiGuestCarrierEnabled, int, "enabled",                                         \
          "Whether the carrier enables guest Wi-Fi")                                               \
    QUERY(int, getPCOCarrierEnabled, int, "enabled",                                               \
          "Whether the carrier enables the account status in protocol configuration options")      \
    QUERY(int, getNUACarrierEnabled, int, "enabled",                                               \
          "Whether the carrier enables the NUA software-update agent")                             \
    QUERY(int, getOmadmFumoCarrierEnabled, int, "enabled",                                         \
          "Whether the carrier enables OMA-DM firmware update")                                    \
    QUERY(int, getMultiSimEnabled, int, "enabled",                                                 \
          "Whether the device runs with more than one SIM")                                        \
    QUERY(int, getWDCPCarrierEnabled, int, "enabled",                                              \
          "Whether the carrier enables the WDCP agent")                                            \
    QUERY(int, getHalyardAgentCarrierEnabled, int, "enabled",                                      \
          "Whether the carrier enables the Halyard agent")                                         \
    QUERY(int, getWatchdogInterval, int, "interval",                                               \
          "Seconds between two keep-alive messages to the watchdog")                               \
    QUERY(int, getCellularDataEnabled, int, "enabled",                                             \
          "Whether the user has switched cellular data on")                                        \
    QUERY(int, getCellularDataConnectionStatus, sys_data_connection_status_e, "status",            \
          "State of the data call")                                                                \
    QUERY(sys_cellular_service_stats_t, getCellularServiceStats, sys_cellular_service_stats_t, "", \
          "Network, technology and signal of the cellular service")                                \
    QUERY(sys_cellular_data_connection_stats_t, getCellularDataConnectionStats,                    \
          sys_cellular_data_connection_stats_t, "", "Duration and traffic of the data call")       \
    QUERY(int, getRadioEnabled, bool, "enabled", "1 with the radio on, 0 in airplane mode")        \
    QUERY(int, getCellularServiceStatus, sys_service_status_e, "status",                           \
          "Registration with the cellular network")                                                \
    QUERY(int, getCellularDataAccountStatus, sys_account_status_e, "status",                       \
          "State of the account, as the carrier reports it")                                       \
    QUERY(int, getEnabledRadioTechnologies, int, "technologies",                                   \
          "Radio technologies that the user has enabled, as a bit mask")                           \
    QUERY(int, getSIMStatus, sys_sim_status_e, "status", "State of the SIM in use")                \
    QUERY(sys_subscriber_info_t, getSubscriberInfo, sys_subscriber_info_t, "",                     \
          "Identity of the subscriber")                                                            \
    QUERY(sys_network_sim_lock_t, getNetworkSIMLockStatus, sys_network_sim_lock_t, "",             \
          "Whether the carrier blocks the SIM")                                                    \
    QUERY(int, getSIMNetworkRejectCode, int, "code",                                               \
          "Code with which the network last rejected the SIM, or 0")                               \
    QUERY(int, getActiveSimSlot, int, "slot", "Number of the slot whose SIM is in use, from 1")    \
    QUERY(int, getNumSims, int, "count", "Number of SIMs")                                         \
    QUERY(sys_all_sim_slots_t, getAllSimSlotsInfo, sys_all_sim_slots_t, "", "All SIM slots")       \
    QUERY(int, getCellular3GBand, int, "band", "3G band in use")                                   \
    QUERY(int, getCellularBand, int, "band", "LTE band in use")                                    \
    QUERY(sys_wan_5g_mode_e, getCellular5GMode, sys_wan_5g_mode_e, "mode", "How 5G is used")       \
    QUERY(int, getCABandWidth, int, "bandwidth",                                                   \
          "LTE bandwidth over all aggregated carriers, in MHz")                                    \
    QUERY(int, get5GBandWidth, int, "bandwidth", "5G bandwidth, in MHz")                           \
    QUERY(int, getEthernetEnabled, int, "enabled", "Whether Ethernet is on")                       \
    QUERY(int, getEthernetLinkStatus, int, "status", "Whether an Ethernet cable is connected")     \
    QUERY(int, getFotaInstallStatus, int, "status", "State of the firmware installation")          \
    QUERY(int, getGPSStatus, sys_gps_status_e, "status", "State of the GPS receiver")              \
    QUERY(int, getSMSUnreadCount, int, "count", "Number of unread messages")                       \
    QUERY(GpioCustomSettings, getGpioPin1CustomSettings, GpioCustomSettings, "",                   \
          "The user's names for general-purpose pin 1")                                            \
    QUERY(GpioCustomSettings, getGpioPin2CustomSettings, GpioCustomSettings, "",                   \
          "The user's names for general-purpose pin 2")                                            \
    QUERY(sys_sd_card_info_t, getSDCardInfo, sys_sd_card_info_t, "",                               \
          "Capacity of the memory card")                                                           \
    QUERY(int, getSambaEnabled, int, "enabled", "Whether file sharing is on")                      \
    QUERY(sys_samba_share_info_t, getSambaShareInfo, sys_samba_share_info_t, "",                   \
          "State of file sharing")                                                                 \
    QUERY(int, getWiFiEnabled, int, "enabled", "Whether Wi-Fi is on")                              \
    QUERY(unsigned int, getWiFiMaxClients, unsigned int, "count",                                  \
          "Greatest number of Wi-Fi clients")                                                      \
    QUERY(sys_battery_status_t, getBatteryStatus, sys_battery_status_t, "", "State of the battery")

/// Queries whose parameters are the name of a field or an application of the web UI, and a number
/// as the result: QUERY(name without "sys_", Field or App, name of the result, description).
#define SYSINT_NAMED_QUERIES(QUERY)                                                      \
    QUERY(getUIFieldShowEnabled, Field, "show", "Whether an input field is shown")       \
    QUERY(getUIFieldLockEnabled, Field, "locked", "Whether an input field is read-only") \
    QUERY(getUIAppDisplayEnabled, App, "display", "Display setting of an application")   \
    QUERY(getUIAppWriteEnabled, App, "write", "Write setting of an application")
