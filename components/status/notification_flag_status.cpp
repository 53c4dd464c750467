#include <algorithm>

#include "components/notification/notification_block.h"
#include "components/status/status_component.h"
#include "framework/log.h"

void StatusComponent::GetNotificationFlagStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetNotificationFlagStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    MsgbusHandler bus(nullptr);
    (void)bus.Initialize();
    NotificationBlock block;
    switch (block.Read(bus)) {
        case NotificationBlock::ReadResult::kRead:
            KESTAL_DEBUG("[%s]:[%s] - %s -[%d] notifications received on msgbus",
                         block.AnnouncedCount());
            break;
        case NotificationBlock::ReadResult::kFailed:
            KESTAL_FAILURE("[%s]:[%s] - %s: msgbus.GetData for %s channel failed",
                           kNotificationChannel);
            break;
        case NotificationBlock::ReadResult::kNoMemory:
            KESTAL_FAILURE("[%s]:[%s] - %s: Failed to allocate memory");
            break;
    }
    (void)bus.Uninitialize();
    const auto records = block.Records();
    const bool anyActive = std::any_of(records.begin(), records.end(), IsActive);
    statusData["statusBarNotificationFlag"] = anyActive ? "1" : "0";
    KESTAL_END();
}
