// A notification as it is published.
#pragma once

#include "bindings/device/notification_types.h"
#include "platform/notification.h"

namespace binding {

/// An active notification of the type @p type, with its usual severity and message ids.
AnsNotificationRecord NotificationRecordOf(const NotificationType& type);

}  // namespace binding
