#include "components/status/status_component.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetWifiStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetWifiStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    int enabled = 0;
    const int enabledResult = sys_getWiFiEnabled(&enabled);
    if (enabledResult == SYS_SUCCESS) {
        statusData["statusBarWiFiEnabled"] = enabled != 0 ? 1 : 0;
        KESTAL_DEBUG("wifi enabled status: %d", enabled);
    } else {
        KESTAL_FAILURE(
            "sys_getWiFiEnabled failed, returned error code [%d]. Try sysintcli getWiFiEnabled "
            "from command line.",
            enabledResult);
    }
    unsigned int maxClients = 30;
    const int maxClientsResult = sys_getWiFiMaxClients(&maxClients);
    if (maxClientsResult == SYS_SUCCESS) {
        statusData["statusBarMaxWiFiClientListSize"] = std::to_string(maxClients);
    } else {
        KESTAL_FAILURE(
            "sys_getWiFiMaxClients failed, returned error code [%d]. Try sysintcli "
            "getWiFiMaxClients from command line.",
            maxClientsResult);
    }
    KESTAL_END();
}

void StatusComponent::GetGuestWifiStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetGuestWifiStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    bool guestEnabled = false;
    int enabled = 0;
    int result = sys_getWiFiGuestProfileEnabled(SYS_WIFI_GUEST_2_4_GHZ, &enabled);
    if (result == SYS_SUCCESS) {
        guestEnabled = enabled != 0;
        KESTAL_DEBUG("guest 2.4 GHz wifi enabled status: %d", enabled);
    } else {
        KESTAL_FAILURE(
            "sys_getWiFiGuestProfileEnabled failed, returned error code [%d]. Try sysintcli "
            "getWiFiGuestProfileEnabled from command line for 2.4GHZ guest profile",
            result);
    }
    if (!guestEnabled) {
        enabled = 0;
        result = sys_getWiFiGuestProfileEnabled(SYS_WIFI_GUEST_5_GHZ, &enabled);
        if (result == SYS_SUCCESS) {
            guestEnabled = enabled != 0;
            KESTAL_DEBUG("guest 5 GHz wifi enabled status: %d", enabled);
        } else {
            KESTAL_FAILURE(
                "sys_getWiFiGuestProfileEnabled failed, returned error code [%d]. Try sysintcli "
                "getWiFiGuestProfileEnabled from command line for 5GHZ guest profile",
                result);
        }
    }
    statusData["statusBarGuestWifiEnabled"] = guestEnabled ? 1 : 0;
    KESTAL_END();
}
