// The types of notifications that devices publish.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/notification.h"

namespace binding {

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
