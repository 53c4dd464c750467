#pragma once

/// In whose name everything logs that takes part in listing the notifications.
constexpr const char* kNotificationListSignature =
    "PageError SystemServiceComponent::GetNotificationStatus(CTPP::CDT&)";
