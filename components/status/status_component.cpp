#include "components/status/status_component.h"

#include <utility>

#include "framework/attempt.h"
#include "framework/log.h"
#include "platform/sysint.h"

namespace {

/// Whether the switch that @p call reads is on. Its result code is not checked: a call that fails
/// leaves the switch off, unless it has written a value nevertheless.
bool IsSwitchedOn(int (*call)(int*)) {
    int enabled = 0;
    (void)call(&enabled);
    return enabled != 0;
}

}  // namespace

StatusComponent::StatusComponent() {
    KESTAL_SIGNATURE("StatusComponent::StatusComponent()");
    KESTAL_BEGIN();
    GetCapabilities();
    useCommonFeatures = 1;
    useCommonConfigurations = 1;
    bandCombination = std::make_unique<BandCombination>();
    KESTAL_DEBUG("ENd");
}

StatusComponent::~StatusComponent() {
    KESTAL_SIGNATURE("virtual StatusComponent::~StatusComponent()");
    KESTAL_BEGIN();
    bandCombination.reset();
    KESTAL_DEBUG("ENd");
}

void StatusComponent::GetCapabilities() {
    KESTAL_SIGNATURE("void StatusComponent::GetCapabilities()");
    KESTAL_BEGIN();
    isSMBSupported = IsSwitchedOn(sys_getSambaCarrierEnabled);
    isGPSSupported = IsSwitchedOn(sys_getGPSCarrierEnabled);
    isMTSMSSupported = IsSwitchedOn(sys_getMTSMSCarrierEnabled);
    isWifiSupported = IsSwitchedOn(sys_getWiFiCarrierEnabled);
    isGuestWifiSupported = IsSwitchedOn(sys_getWiFiGuestCarrierEnabled);
    isPCOSupported = IsSwitchedOn(sys_getPCOCarrierEnabled);
    isNUASupported = IsSwitchedOn(sys_getNUACarrierEnabled);
    isOMADMSupported = IsSwitchedOn(sys_getOmadmFumoCarrierEnabled);
    isDualSIMSupported = IsSwitchedOn(sys_getMultiSimEnabled);
    KESTAL_DEBUG(
        "IsSMBSupported is [%d], IsGPSSupported is [%d],IsMTSMSSupported is [%d],IsWifiSupported "
        "is [%d],IsGuestWifiSupported is [%d],IsPCOSupported is [%d],IsNUASupported is "
        "[%d],IsOMADMSupported is [%d], IsDualSIMSupported[%d]",
        isSMBSupported, isGPSSupported, isMTSMSSupported, isWifiSupported, isGuestWifiSupported,
        isPCOSupported, isNUASupported, isOMADMSupported, isDualSIMSupported);
    KESTAL_DEBUG("END ");
}

PageError StatusComponent::GetData(CTPP::CDT& out) {
    KESTAL_SIGNATURE("PageError StatusComponent::GetData(CTPP::CDT&)");
    KESTAL_BEGIN();
    CTPP::CDT statusData(CTPP::CDT::HASH_VAL);
    // A group that throws must not prevent the others from being read.
    const auto gather = [&](const char* name, void (StatusComponent::*group)(CTPP::CDT&)) {
        Attempt(signature, name, [&] { (this->*group)(statusData); });
    };
    gather("GetBatteryStatus", &StatusComponent::GetBatteryStatus);
    gather("GetMnsStatus", &StatusComponent::GetMnsStatus);
    gather("GetInternetStatus", &StatusComponent::GetInternetStatus);
    gather("GetRouterStatus", &StatusComponent::GetRouterStatus);
    gather("GetMobileDataEnabled", &StatusComponent::GetMobileDataEnabled);
    gather("GetEthernetPortEnabled", &StatusComponent::GetEthernetPortEnabled);
    gather("GetFotaInstallStatus", &StatusComponent::GetFotaInstallStatus);
    if (isWifiSupported) {
        gather("GetWifiStatus", &StatusComponent::GetWifiStatus);
    }
    gather("GetNotificationFlagStatus", &StatusComponent::GetNotificationFlagStatus);
    if (isGPSSupported) {
        gather("GetGpsStatus", &StatusComponent::GetGpsStatus);
    }
    if (isMTSMSSupported) {
        gather("GetSmsStatus", &StatusComponent::GetSmsStatus);
    }
    if (isSMBSupported) {
        gather("GetSmbStatus", &StatusComponent::GetSmbStatus);
    }
    if (isGuestWifiSupported) {
        gather("GetGuestWifiStatus", &StatusComponent::GetGuestWifiStatus);
    }
    if (isNUASupported || isOMADMSupported) {
        gather("GetSoftwareUpdateStatus", &StatusComponent::GetSoftwareUpdateStatus);
    }
    // The order of the groups is fixed. The dual-SIM group, which reads the active slot, comes
    // after the internet group, which therefore shows a change of the slot one request late.
    Attempt(signature, "isDualSimSupported",
            [&] { statusData["isDualSimSupported"] = isDualSIMSupported ? 1 : 0; });
    if (isDualSIMSupported) {
        gather("GetDualSimStatus", &StatusComponent::GetDualSimStatus);
    } else {
        gather("GetSimStatus", &StatusComponent::GetSimStatus);
    }
    out["statusData"] = std::move(statusData);
    KESTAL_END();
    return PAGE_ERROR_NONE;
}
