#include "components/status/status_component.h"
#include "components/status/status_texts.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetBatteryStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetBatteryStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    sys_battery_status_t battery{};
    const int result = sys_getBatteryStatus(&battery);
    if (result == SYS_SUCCESS) {
        const std::string percent = std::to_string(battery.chargePercent);
        std::string chargingState;
        std::string detection;
        std::string chargingSource;
        (void)GetBoolText(battery.chargingState, chargingState);
        (void)GetBatteryDetectionText(battery.detection, detection);
        (void)GetChargingSourceText(battery.chargingSource, chargingSource);
        statusData["statusBarBatteryPercent"] = percent;
        statusData["statusBarBatteryChargingState"] = chargingState;
        statusData["statusBarBatteryDetection"] = detection;
        statusData["statusBarBatteryChargingSource"] = chargingSource;
        KESTAL_DEBUG(
            "battery percentage: %s charging state: %s battery detection: %s charging source: %s",
            percent.c_str(), chargingState.c_str(), detection.c_str(), chargingSource.c_str());
    } else {
        KESTAL_FAILURE(
            "sys_getBatteryStatus failed, returned error code [%d]. Try sysintcli getBatteryStatus "
            "from command line",
            result);
    }
    KESTAL_END();
}
