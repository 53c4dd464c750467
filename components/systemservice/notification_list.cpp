#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "components/notification/message_bus.h"
#include "components/notification/notification_block.h"
#include "components/systemservice/gpio_text.h"
#include "components/systemservice/system_service_component.h"
#include "framework/attempt.h"
#include "framework/log.h"
#include "framework/po_string.h"
#include "framework/text_domain.h"
#include "framework/value_text.h"
#include "platform/fixed_text.h"
#include "platform/sysint.h"

namespace {

/// What replaces the placeholders %1 to %4 of the texts, in this order.
struct TextArguments {
    std::string productName;
    std::string productNumber;
    std::string unreadCount;
    std::string gpioText;
};

constexpr ValueText kSeverityTexts[] = {
    {ANS_SEVERITY_INFO, "info"},
    {ANS_SEVERITY_WARNING, "warning"},
    {ANS_SEVERITY_ALERT, "alert"},
    {ANS_SEVERITY_CRITICAL, "critical"},
};

/// Text of @p severity, an ans_severity_e; empty if it is unknown.
std::string SeverityText(std::uint32_t severity) {
    std::string text;
    (void)FindText(kSeverityTexts, static_cast<std::int32_t>(severity), text);
    return text;
}

/// The number of unread messages as decimal text. If the call fails, that is 0 or what the call has
/// written nevertheless.
std::string ReadUnreadCount(const char* signature) {
    int count = 0;
    const int result = sys_getSMSUnreadCount(&count);
    if (result == SYS_SUCCESS) {
        KESTAL_DEBUG("sms unread count %d", count);
    } else {
        KESTAL_FAILURE_UNSEPARATED(
            " sys_getSMSUnreadCount failed, returned error code [%d]. Try sysintcli "
            "getSMSUnreadCount from command line.",
            result);
    }
    return std::to_string(count);
}

/// The catalogue's text for @p record.
std::string CatalogueText(const AnsNotificationRecord& record, const TextArguments& arguments) {
    std::string text = Translated(FixedTextView(record.textId));
    if (text == " ") {
        KESTAL_MODULE_SYSLOG("WEBUI", TORU_DBG_ERROR, "po string is empty or no arguments passed");
        return text;
    }
    return FormatPoString(4, text, arguments.productName.c_str(), arguments.productNumber.c_str(),
                          arguments.unreadCount.c_str(), arguments.gpioText.c_str());
}

}  // namespace

PageError SystemServiceComponent::GetNotificationStatus(CTPP::CDT& out) {
    KESTAL_SIGNATURE("PageError SystemServiceComponent::GetNotificationStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    // First an empty list, so that the answer has a list whatever fails.
    Attempt(signature, "empty notification list",
            [&] { out["notificationsList"] = CTPP::CDT(CTPP::CDT::ARRAY_VAL); });
    OnMessageBus(signature, "notification list", [&](MsgbusHandler& bus) {
        out["notificationsList"] = ReadNotificationList(signature, bus);
    });
    KESTAL_END_RETURNING(PAGE_ERROR_NONE);
    return PAGE_ERROR_NONE;
}

CTPP::CDT SystemServiceComponent::ReadNotificationList(const char* signature, MsgbusHandler& bus) {
    NotificationBlock block;
    switch (block.Read(bus)) {
        case NotificationBlock::ReadResult::kRead:
            KESTAL_DEBUG("[%d] notifications received on msgbus", block.AnnouncedCount());
            return BuildNotificationList(signature, block.Records());
        case NotificationBlock::ReadResult::kFailed:
            KESTAL_FAILURE("msgbus failed to read notification data. Try msgbus_cli MsgBusGet %s",
                           ANS_NOTIFICATION_CHANNEL);
            break;
        case NotificationBlock::ReadResult::kNoMemory:
            KESTAL_FAILURE("Failed to allocate memory for notification list");
            break;
    }
    return CTPP::CDT(CTPP::CDT::ARRAY_VAL);
}

CTPP::CDT SystemServiceComponent::BuildNotificationList(
    const char* signature, std::span<const AnsNotificationRecord> records) {
    CTPP::CDT list(CTPP::CDT::ARRAY_VAL);
    TextArguments arguments;
    arguments.productName = Translated("webui_product_name");
    arguments.productNumber = Translated("webui_product_number");
    for (const AnsNotificationRecord& record : records) {
        if (!IsActive(record)) {
            continue;
        }
        const std::string type = FixedText(record.id);
        arguments.gpioText = ReadGpioText(signature, type);
        arguments.unreadCount = ReadUnreadCount(signature);
        CTPP::CDT notification;
        notification["id"] = type;
        notification["category"] = FixedText(record.category);
        notification["severity"] = SeverityText(record.severity);
        notification["title"] = Translated(FixedTextView(record.titleId));
        std::string text = customMessages.Text(signature, type);
        if (text.empty()) {
            text = CatalogueText(record, arguments);
        }
        GetSupplementaryTextForNotification(type, text);
        notification["text"] = std::move(text);
        notification["label"] = Translated(FixedTextView(record.labelId));
        list.PushBack(std::move(notification));
    }
    return list;
}
