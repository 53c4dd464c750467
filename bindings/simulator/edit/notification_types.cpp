#include "bindings/simulator/edit/notification_types.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "bindings/device/notification_types.h"
#include "bindings/names/enumerations.h"
#include "bindings/names/nearest_name.h"

namespace binding {

namespace {

/// The default fields of a type; empty for an unknown type.
NotificationFields Usual(const std::string& type) {
    const NotificationType* const found = FindNotificationType(type);
    if (found == nullptr) {
        return {};
    }
    return {
        .category = found->category,
        .severity = std::make_shared<nlohmann::ordered_json>(NameOf(found->severity, kSeverity)),
        .labelId = found->LabelId(),
        .titleId = found->TitleId(),
        .textId = found->TextId()};
}

void MustBeSeverity(const nlohmann::ordered_json& severity) {
    const std::vector<std::string> known = AllNames(kSeverity);
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
    for (const NotificationType& type : NotificationTypes()) {
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
    std::vector<std::string> missing;
    const auto add = [&](const char* name, const auto& given, const auto& otherwise) {
        if (!given && !otherwise) {
            missing.emplace_back(name);
            return;
        }
        notification[name] = given ? *given : *otherwise;
    };
    add("category", fields.category, usual.category);
    add("severity", fields.severity, usual.severity);
    add("labelId", fields.labelId, usual.labelId);
    add("titleId", fields.titleId, usual.titleId);
    add("textId", fields.textId, usual.textId);
    if (!missing.empty()) {
        throw std::runtime_error(
            "there is no type of notification '" + type +
            "', and for one of your own these are missing: " + Listed(missing) +
            Suggestion(NearestName(type, NotificationTypeNames())));
    }
    if (!fields.active) {
        notification["active"] = false;
    }
    return notification;
}

}  // namespace binding
