// System-interface SDK: what the device knows and does.
#pragma once

#include <cstddef>
#include <cstdint>

/// Result codes of the sys_ calls that callers distinguish; every other non-zero code is an error.
enum sys_result_e : int {
    SYS_SUCCESS = 0,
    /// The list needs a buffer; the record count has been set.
    SYS_ERROR_BUFFER_NEEDED = 7,
    /// No memory card is in the slot.
    SYS_ERROR_NO_SD_CARD = 2001,
};

/// State of the SIM in use.
enum sys_sim_status_e : std::int32_t {
    SYS_SIM_NOT_FOUND = 0,
    SYS_SIM_LOCKED = 1,
    SYS_SIM_RESTRICTED = 2,
    SYS_SIM_ERROR = 3,
    SYS_SIM_FAILURE = 4,
    SYS_SIM_PUK_LOCKED = 5,
    SYS_SIM_PIN_LOCKED = 6,
    SYS_SIM_READY = 7,
};

/// Technology of the cellular connection.
enum sys_technology_e : std::int32_t {
    SYS_TECHNOLOGY_NONE = 0,
    SYS_TECHNOLOGY_WIFI = 1,
    SYS_TECHNOLOGY_GPRS = 2,
    SYS_TECHNOLOGY_CDMA_1XRTT = 3,
    SYS_TECHNOLOGY_EVDO_REV0 = 4,
    SYS_TECHNOLOGY_UMTS = 5,
    SYS_TECHNOLOGY_HSDPA = 6,
    SYS_TECHNOLOGY_EDGE = 7,
    SYS_TECHNOLOGY_EVDO_REVA = 8,
    SYS_TECHNOLOGY_HSUPA = 9,
    SYS_TECHNOLOGY_HSPA_PLUS = 10,
    SYS_TECHNOLOGY_LTE = 11,
    SYS_TECHNOLOGY_HSPA_PLUS_DC = 12,
    SYS_TECHNOLOGY_EVDO_REVB = 13,
    SYS_TECHNOLOGY_EVDO_EHRPD = 14,
    SYS_TECHNOLOGY_WIMAX = 15,
    SYS_TECHNOLOGY_LTE_PLUS = 16,
    SYS_TECHNOLOGY_5G = 17,
};

/// Roaming indicator.
enum sys_roaming_e : std::int32_t {
    SYS_ROAMING_NONE = 0,
    SYS_ROAMING_DOMESTIC = 1,
    SYS_ROAMING_INTERNATIONAL = 2,
    SYS_ROAMING_FLASH = 3,
};

/// Kind of a 5G connection.
enum sys_5g_type_e : std::int32_t {
    SYS_5G_ULTRA_WIDEBAND = 1,
    SYS_5G_OTHER = 2,
};

/// Direction of the traffic at the moment.
enum sys_traffic_status_e : std::int32_t {
    SYS_TRAFFIC_NONE = 0,
    SYS_TRAFFIC_UPLINK = 1,
    SYS_TRAFFIC_DOWNLINK = 2,
    SYS_TRAFFIC_BOTH = 3,
};

/// How 5G is used; any other value means no 5G.
enum sys_wan_5g_mode_e : std::int32_t {
    SYS_WAN_5G_NONE = 0,
    SYS_WAN_5G_STANDALONE = 1,
    SYS_WAN_5G_NON_STANDALONE = 2,
};

/// Registration with the cellular network.
enum sys_service_status_e : std::int32_t {
    SYS_SERVICE_NONE = 0,
    SYS_SERVICE_SEARCHING = 1,
    SYS_SERVICE_AVAILABLE = 2,
};

/// State of the cellular data connection.
enum sys_data_connection_status_e : std::int32_t {
    SYS_DATA_CONNECTION_READY = 0,
    SYS_DATA_CONNECTION_DORMANT = 1,
    SYS_DATA_CONNECTION_CONNECTED = 2,
    SYS_DATA_CONNECTION_INITIALIZING = 3,
    SYS_DATA_CONNECTION_CONNECTING = 4,
    SYS_DATA_CONNECTION_DISCONNECTING = 5,
    SYS_DATA_CONNECTION_ACTIVATING = 6,
    SYS_DATA_CONNECTION_UNACTIVATED = 7,
};

/// State of the account, which the carrier reports in protocol configuration options (PCO). Any
/// other value means that the account does not limit the connection.
enum sys_account_status_e : std::int32_t {
    SYS_ACCOUNT_RESTRICTED = 2,
    SYS_ACCOUNT_OUT_OF_CREDIT = 3,
    SYS_ACCOUNT_NOT_ACTIVE = 5,
};

/// State of the GPS receiver.
enum sys_gps_status_e : std::int32_t {
    SYS_GPS_OFF = 0,
    SYS_GPS_SEARCHING = 1,
    SYS_GPS_GOT_FIX = 2,
};

/// How a client device is connected.
enum sys_connection_kind_e : std::int32_t {
    SYS_CONNECTION_WIFI = 0,
    SYS_CONNECTION_WIRED_A = 1,
    SYS_CONNECTION_WIRED_B = 2,
    SYS_CONNECTION_GUEST_WIFI = 3,
};

/// Whether a battery is in the device.
enum sys_battery_detection_e : std::int32_t {
    SYS_BATTERY_INVALID = 0,
    SYS_BATTERY_NOT_PRESENT = 1,
    SYS_BATTERY_PRESENT = 2,
};

/// What the battery is charged from.
enum sys_charging_source_e : std::int32_t {
    SYS_CHARGING_SOURCE_NONE = 0,
    SYS_CHARGING_SOURCE_AC = 1,
    SYS_CHARGING_SOURCE_USB = 2,
};

/// Guest Wi-Fi profiles.
enum sys_wifi_guest_profile_e : int {
    SYS_WIFI_GUEST_2_4_GHZ = 1,
    SYS_WIFI_GUEST_5_GHZ = 2,
};

/// Cellular service statistics.
struct sys_cellular_service_stats_t {
    std::int32_t technology;  ///< sys_technology_e
    std::int32_t roaming;     ///< roaming indicator, 0 to 3
    std::int32_t reserved8[2];
    std::int32_t signalBars;
    std::int32_t reserved20;
    std::int32_t sinr;
    std::int32_t pci;  ///< physical cell identity
    std::int32_t reserved32;
    std::int32_t snr;
    std::int32_t reserved40[3];
    char networkName[65];    ///< operator name, terminated text
    char networkId[99];      ///< network identifier, terminated text
    std::int32_t femtoCell;  ///< 1 when served by a femtocell
    std::int32_t reserved220[3];
    std::int32_t fiveGType;  ///< 1 ultra-wideband, 2 other 5G
};
static_assert(sizeof(sys_cellular_service_stats_t) == 236);
static_assert(offsetof(sys_cellular_service_stats_t, roaming) == 4);
static_assert(offsetof(sys_cellular_service_stats_t, signalBars) == 16);
static_assert(offsetof(sys_cellular_service_stats_t, sinr) == 24);
static_assert(offsetof(sys_cellular_service_stats_t, pci) == 28);
static_assert(offsetof(sys_cellular_service_stats_t, snr) == 36);
static_assert(offsetof(sys_cellular_service_stats_t, networkName) == 52);
static_assert(offsetof(sys_cellular_service_stats_t, networkId) == 117);
static_assert(offsetof(sys_cellular_service_stats_t, femtoCell) == 216);
static_assert(offsetof(sys_cellular_service_stats_t, fiveGType) == 232);

/// Statistics of the cellular data connection. The bytes of each direction are the sum of its two
/// counters.
struct sys_cellular_data_connection_stats_t {
    std::int32_t trafficStatus;  ///< sys_traffic_status_e
    std::int32_t reserved4;
    std::uint64_t duration;
    std::uint64_t bytesReceived1;
    std::uint64_t bytesTransmitted1;
    std::uint64_t reserved32[2];
    std::uint64_t bytesReceived2;
    std::uint64_t bytesTransmitted2;
    std::uint64_t reserved64[22];
};
static_assert(sizeof(sys_cellular_data_connection_stats_t) == 240);
static_assert(offsetof(sys_cellular_data_connection_stats_t, duration) == 8);
static_assert(offsetof(sys_cellular_data_connection_stats_t, bytesReceived1) == 16);
static_assert(offsetof(sys_cellular_data_connection_stats_t, bytesTransmitted1) == 24);
static_assert(offsetof(sys_cellular_data_connection_stats_t, bytesReceived2) == 48);
static_assert(offsetof(sys_cellular_data_connection_stats_t, bytesTransmitted2) == 56);

/// The subscriber that the SIM identifies.
struct sys_subscriber_info_t {
    char identity[32];  ///< terminated text, or all of the field
    std::uint8_t reserved32[100];
};
static_assert(sizeof(sys_subscriber_info_t) == 132);

/// Network lock of the SIM in use.
struct sys_network_sim_lock_t {
    std::int32_t reserved0[3];
    std::int32_t carrierBlocked;  ///< 1 when the carrier blocks the SIM, else 0
    /// Reserved for future fields of the platform; not read.
    std::int32_t reserved16[12];
};
static_assert(offsetof(sys_network_sim_lock_t, carrierBlocked) == 12);

/// One SIM slot.
struct sys_sim_slot_t {
    std::uint8_t reserved0[99];
    char networkName[77];               ///< operator name, terminated text
    std::int32_t active;                ///< 1 when this SIM is in use
    std::int32_t simStatus;             ///< sys_sim_status_e
    std::int32_t dataConnectionStatus;  ///< sys_data_connection_status_e
    std::int32_t serviceStatus;         ///< sys_service_status_e
};
static_assert(sizeof(sys_sim_slot_t) == 192);
static_assert(offsetof(sys_sim_slot_t, networkName) == 99);
static_assert(offsetof(sys_sim_slot_t, active) == 176);
static_assert(offsetof(sys_sim_slot_t, simStatus) == 180);
static_assert(offsetof(sys_sim_slot_t, dataConnectionStatus) == 184);
static_assert(offsetof(sys_sim_slot_t, serviceStatus) == 188);

/// All SIM slots of the device.
struct sys_all_sim_slots_t {
    std::int32_t count;  ///< valid entries of slots
    sys_sim_slot_t slots[2];
};
static_assert(sizeof(sys_all_sim_slots_t) == 388);
static_assert(offsetof(sys_all_sim_slots_t, slots) == 4);

/// Capacity of the memory card, in the platform's unit.
struct sys_sd_card_info_t {
    std::uint64_t totalCapacity;
    std::uint64_t freeSpace;
};
static_assert(sizeof(sys_sd_card_info_t) == 16);
static_assert(offsetof(sys_sd_card_info_t, freeSpace) == 8);

/// State of file sharing from the memory card.
struct sys_samba_share_info_t {
    std::uint32_t cardInUse;  ///< defined by the platform, published unchanged
    std::uint32_t reserved4[2];
};
static_assert(sizeof(sys_samba_share_info_t) == 12);
static_assert(offsetof(sys_samba_share_info_t, cardInUse) == 0);

/// One connected client device.
struct sys_connected_device_t {
    std::uint8_t reserved0[132];
    std::int32_t connectionKind;  ///< sys_connection_kind_e
    std::uint8_t reserved136[148];
};
static_assert(sizeof(sys_connected_device_t) == 284);
static_assert(offsetof(sys_connected_device_t, connectionKind) == 132);

/// State of the battery.
struct sys_battery_status_t {
    std::int32_t reserved0[2];
    std::int32_t chargePercent;
    std::int32_t chargingState;  ///< 1 charging, 0 not charging
    std::int32_t reserved16;
    std::int32_t detection;       ///< 0 invalid, 1 not present, 2 present
    std::int32_t chargingSource;  ///< 0 none, 1 AC, 2 USB
};
static_assert(sizeof(sys_battery_status_t) == 28);
static_assert(offsetof(sys_battery_status_t, chargePercent) == 8);
static_assert(offsetof(sys_battery_status_t, chargingState) == 12);
static_assert(offsetof(sys_battery_status_t, detection) == 20);
static_assert(offsetof(sys_battery_status_t, chargingSource) == 24);

/// What the user calls a general-purpose pin and its two states. Terminated texts, empty when the
/// user has not named them.
struct GpioCustomSettings {
    char name[64];
    char lowState[64];
    char highState[64];
    std::uint8_t reserved192[64];
};
static_assert(sizeof(GpioCustomSettings) == 256);
static_assert(offsetof(GpioCustomSettings, name) == 0);
static_assert(offsetof(GpioCustomSettings, lowState) == 64);
static_assert(offsetof(GpioCustomSettings, highState) == 128);

/// Room that callers of sys_getSIMCarrierGID provide, in bytes.
constexpr std::size_t SYS_SIM_CARRIER_GID_SIZE = 256;

// Every call returns SYS_SUCCESS or an error code and delivers its result through a pointer. A call
// that fails leaves its result as it was, because callers preset results with what they use then.
// Switches are non-zero when on.
extern "C" {

/// Opens the SDK for one round of calls.
int sys_sdkInitialize();

/// Ends the round of calls that sys_sdkInitialize opened.
int sys_sdkShutdown();

// Carrier switches: whether the carrier enables a function on this device.

int sys_getWebUICarrierEnabled(int* enabled);
int sys_getSambaCarrierEnabled(int* enabled);
int sys_getGPSCarrierEnabled(int* enabled);
/// Mobile-terminated SMS.
int sys_getMTSMSCarrierEnabled(int* enabled);
int sys_getWiFiCarrierEnabled(int* enabled);
int sys_getWiFiGuestCarrierEnabled(int* enabled);
/// Account status in protocol configuration options.
int sys_getPCOCarrierEnabled(int* enabled);
/// NUA software-update agent.
int sys_getNUACarrierEnabled(int* enabled);
/// OMA-DM firmware update.
int sys_getOmadmFumoCarrierEnabled(int* enabled);
/// Whether the device runs with more than one SIM.
int sys_getMultiSimEnabled(int* enabled);
/// WDCP agent, one of the two through which the carrier restricts fields and applications of the
/// web UI.
int sys_getWDCPCarrierEnabled(int* enabled);
/// Halyard agent, the other of the two.
int sys_getHalyardAgentCarrierEnabled(int* enabled);

// What the carrier allows in the web UI. The platform defines which fields and applications there
// are and what the numbers of an application mean.

/// Whether the input field @p field is shown.
int sys_getUIFieldShowEnabled(const char* field, int* show);
/// Whether the input field @p field is read-only.
int sys_getUIFieldLockEnabled(const char* field, int* locked);
/// Display setting of the application @p app.
int sys_getUIAppDisplayEnabled(const char* app, int* display);
/// Write setting of the application @p app.
int sys_getUIAppWriteEnabled(const char* app, int* write);

// Watchdog.

/// Seconds between two keep-alive messages.
int sys_getWatchdogInterval(int* interval);

// Cellular connection.

/// Starts the data call; @p reserved is given as 0.
int sys_cellularDataConnect(int reserved);
/// Stops the data call; @p reserved is given as 0.
int sys_cellularDataDisconnect(int reserved);
/// Whether the user has switched cellular data on.
int sys_getCellularDataEnabled(int* enabled);
/// Status of the data call: 0 ready, 1 dormant, 2 connected, 4 connecting, 5 disconnecting,
/// 6 activation in progress, 7 unactivated.
int sys_getCellularDataConnectionStatus(int* status);
int sys_getCellularServiceStats(sys_cellular_service_stats_t* stats);
int sys_getCellularDataConnectionStats(sys_cellular_data_connection_stats_t* stats);
/// 1 with the radio on, 0 in airplane mode.
int sys_getRadioEnabled(int* enabled);
/// sys_service_status_e.
int sys_getCellularServiceStatus(int* status);
/// sys_account_status_e.
int sys_getCellularDataAccountStatus(int* status);
/// Set of radio technologies that the user has enabled, as a bit mask.
int sys_getEnabledRadioTechnologies(int* technologies);
/// Manual network selection: whether it is allowed, whether it is in use, state of the scan.
int sys_getModemMnsInfo(int* allowed, int* selected, int* scanStatus);

// SIM.

/// sys_sim_status_e of the SIM in use.
int sys_getSIMStatus(int* status);
/// Copies group identifier number @p index of the SIM to @p gid, which has room for
/// SYS_SIM_CARRIER_GID_SIZE bytes, and its length to @p length.
int sys_getSIMCarrierGID(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index);
int sys_getSubscriberInfo(sys_subscriber_info_t* info);
int sys_getNetworkSIMLockStatus(sys_network_sim_lock_t* lock);
/// Code of the network's last reject, 0 when there was none.
int sys_getSIMNetworkRejectCode(int* code);
/// Number of the slot whose SIM is in use, from 1.
int sys_getActiveSimSlot(int* slot);
int sys_getNumSims(int* count);
int sys_getAllSimSlotsInfo(sys_all_sim_slots_t* slots);

// Bands (by number) and bandwidths (in MHz) in use.

int sys_getCellular3GBand(int* band);
/// LTE band.
int sys_getCellularBand(int* band);
/// NR band; @p second is not used by callers.
int sys_getCellular5GBand(int* band, int* second);
int sys_getCellular5GMode(sys_wan_5g_mode_e* mode);
/// LTE bandwidth over all aggregated carriers.
int sys_getCABandWidth(int* bandwidth);
int sys_get5GBandWidth(int* bandwidth);

// Device services.

int sys_getEthernetEnabled(int* enabled);
/// Non-zero when a cable is connected.
int sys_getEthernetLinkStatus(int* status);
/// State of the firmware installation, a number that the platform defines; published unchanged.
int sys_getFotaInstallStatus(int* status);
/// 0 off, 1 searching, 2 position found.
int sys_getGPSStatus(int* status);
int sys_getSMSUnreadCount(int* count);
/// The user's names for general-purpose pin 1.
int sys_getGpioPin1CustomSettings(GpioCustomSettings* settings);
/// The same for pin 2.
int sys_getGpioPin2CustomSettings(GpioCustomSettings* settings);

// Storage, clients, Wi-Fi and battery.

/// SYS_ERROR_NO_SD_CARD when the slot is empty.
int sys_getSDCardInfo(sys_sd_card_info_t* info);
int sys_getSambaEnabled(int* enabled);
int sys_getSambaShareInfo(sys_samba_share_info_t* info);
/// Client devices. If @p devices is null, sets @p count and returns SYS_ERROR_BUFFER_NEEDED, or
/// SYS_SUCCESS when there are none. If @p devices has room for @p *count records, fills it and sets
/// @p count to the number of devices. With too little room it fails, so that a caller never takes
/// some of the devices for all of them; it may then return SYS_ERROR_BUFFER_NEEDED and set @p
/// count.
int sys_getConnectedDeviceList(sys_connected_device_t* devices, unsigned int* count);
int sys_getWiFiEnabled(int* enabled);
int sys_getWiFiMaxClients(unsigned int* count);
/// @p profile is a sys_wifi_guest_profile_e.
int sys_getWiFiGuestProfileEnabled(int profile, int* enabled);
int sys_getBatteryStatus(sys_battery_status_t* status);
}
