#include "bindings/device/notification_types.h"

#include <algorithm>
#include <array>

namespace binding {

namespace {

constexpr std::array<NotificationType, 24> kTypes = {{
    {"dataOff", "data", ANS_SEVERITY_INFO, "data_off", "data_off"},
    {"data90", "data", ANS_SEVERITY_WARNING, "data_90", "data_90"},
    {"data100", "data", ANS_SEVERITY_ALERT, "data_100", "data_100"},
    {"deviceJoinWiFi", "devices", ANS_SEVERITY_INFO, "device_join_wifi", "device_join_wifi"},
    {"deviceJoinUSB", "devices", ANS_SEVERITY_INFO, "device_join_usb", "device_join_usb"},
    {"deviceJoinEthernet", "devices", ANS_SEVERITY_INFO, "device_join_ethernet",
     "device_join_ethernet"},
    {"deviceLeave", "devices", ANS_SEVERITY_INFO, "device_leave", "device_leave"},
    {"smsReceived", "messaging", ANS_SEVERITY_INFO, "sms_received", "sms_received"},
    {"roamingDomestic", "network", ANS_SEVERITY_INFO, "roaming_domestic", "roaming_domestic"},
    {"roamingInternational", "network", ANS_SEVERITY_WARNING, "roaming_international",
     "roaming_international"},
    {"noService", "network", ANS_SEVERITY_ALERT, "no_service", "no_service"},
    {"uiccLaunchBrowser", "account", ANS_SEVERITY_ALERT, "uicc_launch_browser",
     "uicc_launch_browser"},
    {"PCO3", "account", ANS_SEVERITY_ALERT, "pco_3", "pco_3"},
    {"PCO5", "account", ANS_SEVERITY_CRITICAL, "pco_5", "pco_5"},
    {"simPINLocked", "sim", ANS_SEVERITY_ALERT, "sim_pin_locked", "sim_pin_locked"},
    {"simPUKLocked", "sim", ANS_SEVERITY_CRITICAL, "sim_puk_locked", "sim_puk_locked"},
    {"simNonQKT", "sim", ANS_SEVERITY_WARNING, "sim_non_qkt", "sim_non_qkt"},
    {"softwareUpdate", "software", ANS_SEVERITY_WARNING, "software_update", "software_update"},
    {"softwareUpdateSuccess", "software", ANS_SEVERITY_INFO, "software_update_success",
     "software_update_success"},
    {"softwareUpdateFailure", "software", ANS_SEVERITY_ALERT, "software_update_failure",
     "software_update_failure"},
    {"gpioPin1StateChangeToLow", "gpio", ANS_SEVERITY_INFO, "gpio_pin1", "gpio_message"},
    {"gpioPin1StateChangeToHigh", "gpio", ANS_SEVERITY_INFO, "gpio_pin1", "gpio_message"},
    {"gpioPin2StateChangeToLow", "gpio", ANS_SEVERITY_INFO, "gpio_pin2", "gpio_message"},
    {"gpioPin2StateChangeToHigh", "gpio", ANS_SEVERITY_INFO, "gpio_pin2", "gpio_message"},
}};

constexpr const char* kPrefix = "notification_";

}  // namespace

std::string NotificationType::LabelId() const {
    return std::string(kPrefix) + "category_" + category + "_label";
}

std::string NotificationType::TitleId() const {
    return std::string(kPrefix) + title + "_title";
}

std::string NotificationType::TextId() const {
    return std::string(kPrefix) + text + "_text";
}

std::span<const NotificationType> NotificationTypes() {
    return kTypes;
}

const NotificationType* FindNotificationType(std::string_view name) {
    const auto* const found =
        std::find_if(kTypes.begin(), kTypes.end(),
                     [&](const NotificationType& type) { return type.name == name; });
    return found == kTypes.end() ? nullptr : found;
}

}  // namespace binding
