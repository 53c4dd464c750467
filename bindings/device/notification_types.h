// The types of notifications that devices publish.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "platform/notification.h"

namespace binding {

/// Names of the severities, by their numbers.
constexpr std::array<const char*, 4> kSeverityNames = {"info", "warning", "alert", "critical"};
static_assert(kSeverityNames.size() == ANS_SEVERITY_CRITICAL + 1U);

struct NotificationType {
    const char* name;
    const char* category;
    ans_severity_e severity;
    const char* title;  ///< part of the message id, like the next one
    const char* text;

    std::string LabelId() const;
    std::string TitleId() const;
    std::string TextId() const;
};

/// All types.
std::span<const NotificationType> NotificationTypes();

/// The type @p name; null when there is none.
const NotificationType* FindNotificationType(std::string_view name);

}  // namespace binding
