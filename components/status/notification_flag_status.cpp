#include <algorithm>

#include "components/notification/message_bus.h"
#include "components/notification/notification_block.h"
#include "components/status/status_component.h"
#include "framework/log.h"

void StatusComponent::GetNotificationFlagStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetNotificationFlagStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    // Written before the bus is read, so that the answer has the flag whatever fails.
    CTPP::CDT& flag = statusData["statusBarNotificationFlag"] = "0";
    OnMessageBus(signature, "notification flag", [&](MsgbusHandler& bus) {
        NotificationBlock block;
        switch (block.Read(bus)) {
            case NotificationBlock::ReadResult::kRead:
                KESTAL_DEBUG_UNSEPARATED(" -[%d] notifications received on msgbus",
                                         block.AnnouncedCount());
                break;
            case NotificationBlock::ReadResult::kFailed:
                KESTAL_FAILURE_UNSEPARATED(": msgbus.GetData for %s channel failed",
                                           ANS_NOTIFICATION_CHANNEL);
                break;
            case NotificationBlock::ReadResult::kNoMemory:
                KESTAL_FAILURE_UNSEPARATED(": Failed to allocate memory");
                break;
        }
        const auto records = block.Records();
        if (std::any_of(records.begin(), records.end(), IsActive)) {
            flag = "1";
        }
    });
    KESTAL_END();
}
