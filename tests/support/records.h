// Platform records for scripts of the recording binding.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "platform/notification.h"
#include "platform/webui.h"

/// Copies @p text to a fixed-size field, as much as fits; no terminator when it fills the field.
template <std::size_t Size>
void SetText(char (&field)[Size], std::string_view text) {
    std::fill(std::begin(field), std::end(field), '\0');
    std::copy_n(text.begin(), std::min(text.size(), Size), field);
}

inline webui_feature_t Feature(std::string_view name, std::uint8_t value) {
    webui_feature_t record{};
    SetText(record.name, name);
    record.value = value;
    return record;
}

inline webui_configuration_t Configuration(std::string_view name, std::string_view value) {
    webui_configuration_t record{};
    SetText(record.name, name);
    SetText(record.value, value);
    return record;
}

inline webui_i18n_settings_t Language(std::string_view code) {
    webui_i18n_settings_t record{};
    SetText(record.language, code);
    return record;
}

/// An active notification of the type @p id.
inline AnsNotificationRecord Notification(std::string_view id) {
    AnsNotificationRecord record{};
    SetText(record.id, id);
    record.flags = ANS_NOTIFICATION_ACTIVE;
    return record;
}

/// The block in which @p records are published.
inline std::vector<std::byte> NotificationList(const std::vector<AnsNotificationRecord>& records) {
    const auto count = static_cast<std::int32_t>(records.size());
    const auto head = std::as_bytes(std::span(&count, 1));
    const auto tail = std::as_bytes(std::span(records));
    std::vector<std::byte> block(head.begin(), head.end());
    block.insert(block.end(), tail.begin(), tail.end());
    return block;
}
