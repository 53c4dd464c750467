// System-interface SDK: services of the device, storage, clients and battery.
#include "not_supported.h"
#include "platform/sysint.h"

// Seconds between two keep-alive messages that your watchdog expects.
int sys_getWatchdogInterval(int* /*interval*/) {
    return kNotSupported;
}

// The user's switch for the Ethernet port, from your settings.
int sys_getEthernetEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// Whether a cable is plugged in: /sys/class/net/eth0/carrier.
int sys_getEthernetLinkStatus(int* /*status*/) {
    return kNotSupported;
}

// State of the firmware update, a number that its installer defines; published unchanged.
int sys_getFotaInstallStatus(int* /*status*/) {
    return kNotSupported;
}

// State of the receiver as a sys_gps_status_e.
int sys_getGPSStatus(int* /*status*/) {
    return kNotSupported;
}

// Number of unread messages, from your message store.
int sys_getSMSUnreadCount(int* /*count*/) {
    return kNotSupported;
}

// Names that the user has given to pin 1 and its states.
int sys_getGpioPin1CustomSettings(GpioCustomSettings* /*settings*/) {
    return kNotSupported;
}

// The same for pin 2.
int sys_getGpioPin2CustomSettings(GpioCustomSettings* /*settings*/) {
    return kNotSupported;
}

// Size and free space of the card; SYS_ERROR_NO_SD_CARD with an empty slot.
int sys_getSDCardInfo(sys_sd_card_info_t* /*info*/) {
    return kNotSupported;
}

// The user's switch for file sharing.
int sys_getSambaEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// Whether files of the card are in use; published unchanged.
int sys_getSambaShareInfo(sys_samba_share_info_t* /*info*/) {
    return kNotSupported;
}

// One record for each client device; see the declaration for how the size is asked for. If the
// buffer has room for fewer records than there are, set the count and return
// SYS_ERROR_BUFFER_NEEDED, too.
int sys_getConnectedDeviceList(sys_connected_device_t* /*devices*/, unsigned int* /*count*/) {
    return kNotSupported;
}

// The user's switch for Wi-Fi.
int sys_getWiFiEnabled(int* /*enabled*/) {
    return kNotSupported;
}

// How many client devices your access point admits.
int sys_getWiFiMaxClients(unsigned int* /*count*/) {
    return kNotSupported;
}

// Whether the guest network of that band is on.
int sys_getWiFiGuestProfileEnabled(int /*profile*/, int* /*enabled*/) {
    return kNotSupported;
}

// Charge and source of power: /sys/class/power_supply. A device without a battery succeeds with
// SYS_BATTERY_NOT_PRESENT.
int sys_getBatteryStatus(sys_battery_status_t* /*status*/) {
    return kNotSupported;
}
