#include "bindings/simulator/edit/notification_types.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "bindings/simulator/edit/nearest_name.h"

namespace binding {

namespace {

struct NotificationType {
    const char* name;
    const char* category;
    const char* severity;
    const char* title;  ///< part of the message id, like the next one
    const char* text;
};

constexpr std::array<NotificationType, 24> kTypes = {{
    {"dataOff", "data", "info", "data_off", "data_off"},
    {"data90", "data", "warning", "data_90", "data_90"},
    {"data100", "data", "alert", "data_100", "data_100"},
    {"deviceJoinWiFi", "devices", "info", "device_join_wifi", "device_join_wifi"},
    {"deviceJoinUSB", "devices", "info", "device_join_usb", "device_join_usb"},
    {"deviceJoinEthernet", "devices", "info", "device_join_ethernet", "device_join_ethernet"},
    {"deviceLeave", "devices", "info", "device_leave", "device_leave"},
    {"smsReceived", "messaging", "info", "sms_received", "sms_received"},
    {"roamingDomestic", "network", "info", "roaming_domestic", "roaming_domestic"},
    {"roamingInternational", "network", "warning", "roaming_international",
     "roaming_international"},
    {"noService", "network", "alert", "no_service", "no_service"},
    {"uiccLaunchBrowser", "account", "alert", "uicc_launch_browser", "uicc_launch_browser"},
    {"PCO3", "account", "alert", "pco_3", "pco_3"},
    {"PCO5", "account", "critical", "pco_5", "pco_5"},
    {"simPINLocked", "sim", "alert", "sim_pin_locked", "sim_pin_locked"},
    {"simPUKLocked", "sim", "critical", "sim_puk_locked", "sim_puk_locked"},
    {"simNonQKT", "sim", "warning", "sim_non_qkt", "sim_non_qkt"},
    {"softwareUpdate", "software", "warning", "software_update", "software_update"},
    {"softwareUpdateSuccess", "software", "info", "software_update_success",
     "software_update_success"},
    {"softwareUpdateFailure", "software", "alert", "software_update_failure",
     "software_update_failure"},
    {"gpioPin1StateChangeToLow", "gpio", "info", "gpio_pin1", "gpio_message"},
    {"gpioPin1StateChangeToHigh", "gpio", "info", "gpio_pin1", "gpio_message"},
    {"gpioPin2StateChangeToLow", "gpio", "info", "gpio_pin2", "gpio_message"},
    {"gpioPin2StateChangeToHigh", "gpio", "info", "gpio_pin2", "gpio_message"},
}};

/// The default fields of a type; empty for an unknown type.
NotificationFields Usual(const std::string& type) {
    const auto* const found =
        std::find_if(kTypes.begin(), kTypes.end(),
                     [&](const NotificationType& known) { return known.name == type; });
    if (found == kTypes.end()) {
        return {};
    }
    const std::string prefix = "notification_";
    return {.category = found->category,
            .severity = std::make_shared<nlohmann::ordered_json>(found->severity),
            .labelId = prefix + "category_" + found->category + "_label",
            .titleId = prefix + found->title + "_title",
            .textId = prefix + found->text + "_text"};
}

void MustBeSeverity(const nlohmann::ordered_json& severity) {
    const std::vector<std::string> known = {"info", "warning", "alert", "critical"};
    if (!severity.is_string()) {
        return;
    }
    const std::string& text = severity.get_ref<const std::string&>();
    if (std::find(known.begin(), known.end(), text) == known.end()) {
        throw std::runtime_error(
            "expected info, warning, alert, critical or an unsigned 32-bit integer for the "
            "severity, found '" +
            text + "'" + Suggestion(NearestName(text, known)));
    }
}

}  // namespace

std::vector<std::string> NotificationTypeNames() {
    std::vector<std::string> names;
    names.reserve(kTypes.size());
    for (const NotificationType& type : kTypes) {
        names.emplace_back(type.name);
    }
    return names;
}

nlohmann::ordered_json MakeNotification(const std::string& type, const NotificationFields& fields) {
    const NotificationFields usual = Usual(type);
    if (fields.severity) {
        MustBeSeverity(*fields.severity);
    }
    nlohmann::ordered_json notification = {{"id", type}};
    const auto add = [&](const char* name, const auto& given, const auto& otherwise) {
        if (!given && !otherwise) {
            throw std::runtime_error("there is no type of notification '" + type + "'" +
                                     Suggestion(NearestName(type, NotificationTypeNames())));
        }
        notification[name] = given ? *given : *otherwise;
    };
    add("category", fields.category, usual.category);
    add("severity", fields.severity, usual.severity);
    add("labelId", fields.labelId, usual.labelId);
    add("titleId", fields.titleId, usual.titleId);
    add("textId", fields.textId, usual.textId);
    if (!fields.active) {
        notification["active"] = false;
    }
    return notification;
}

}  // namespace binding
