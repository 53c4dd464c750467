// The device's notifications as its notification service publishes them on the message bus, on the
// channel ANS_NOTIFICATION_CHANNEL: the whole list as one block, a signed 32-bit count of records
// and then the records, in the byte order of the processor.
#pragma once

#include <cstddef>
#include <cstdint>

/// The channel of the message bus on which the list is published.
inline constexpr const char* ANS_NOTIFICATION_CHANNEL = "zelt.ans.notifications";

/// Offset of the first record in the block, in bytes; the count stands in front of it.
enum ans_notification_list_e : std::size_t {
    ANS_NOTIFICATION_LIST_RECORDS = 4,
};
static_assert(ANS_NOTIFICATION_LIST_RECORDS == sizeof(std::int32_t));

enum ans_severity_e : std::uint32_t {
    ANS_SEVERITY_INFO = 0,
    ANS_SEVERITY_WARNING = 1,
    ANS_SEVERITY_ALERT = 2,
    ANS_SEVERITY_CRITICAL = 3,
};

/// Bits of the flags of a notification.
enum ans_notification_flag_e : std::uint32_t {
    /// The notification is to be shown.
    ANS_NOTIFICATION_ACTIVE = 0x1,
};

/// One notification. All texts are terminated.
struct AnsNotificationRecord {
    char category[20];
    char id[30];             ///< type of the notification, such as "softwareUpdate"
    char labelId[50];        ///< message id of the label
    char titleId[50];        ///< message id of the title
    char textId[286];        ///< message id of the text
    std::uint32_t severity;  ///< ans_severity_e
    std::uint8_t reserved440[4];
    std::uint32_t flags;  ///< ans_notification_flag_e
    std::uint8_t reserved448[16];
};
static_assert(sizeof(AnsNotificationRecord) == 464);
static_assert(offsetof(AnsNotificationRecord, category) == 0);
static_assert(offsetof(AnsNotificationRecord, id) == 20);
static_assert(offsetof(AnsNotificationRecord, labelId) == 50);
static_assert(offsetof(AnsNotificationRecord, titleId) == 100);
static_assert(offsetof(AnsNotificationRecord, textId) == 150);
static_assert(offsetof(AnsNotificationRecord, severity) == 436);
static_assert(offsetof(AnsNotificationRecord, reserved440) == 440);
static_assert(offsetof(AnsNotificationRecord, flags) == 444);
static_assert(offsetof(AnsNotificationRecord, reserved448) == 448);
