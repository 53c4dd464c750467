#include "bindings/linux/notification/notification_record.h"

#include "bindings/linux/text_field.h"

namespace binding {

AnsNotificationRecord NotificationRecordOf(const NotificationType& type) {
    AnsNotificationRecord record{};
    PutText(record.category, type.category);
    PutText(record.id, type.name);
    PutText(record.labelId, type.LabelId());
    PutText(record.titleId, type.TitleId());
    PutText(record.textId, type.TextId());
    record.severity = type.severity;
    record.flags = ANS_NOTIFICATION_ACTIVE;
    return record;
}

}  // namespace binding
