// The object "msgbus": what has been published on the channels of the message bus.
#include <array>
#include <cstring>
#include <optional>
#include <span>
#include <utility>

#include "platform/fixed_text.h"
#include "platform/msgbus.h"
#include "platform/notification.h"
#include "tools/kestal_record/document_form.h"
#include "tools/kestal_record/record_device.h"
#include "tools/kestal_record/usual_names.h"

namespace {

using Block = std::vector<std::uint8_t>;

template <std::size_t Size>
void AddText(Json& notification, const char* name, const char (&field)[Size]) {
    notification[name] = RawText(FixedText(field), Size);
}

Json Notification(const AnsNotificationRecord& record) {
    Json notification = Json::object();
    AddText(notification, "id", record.id);
    AddText(notification, "category", record.category);
    notification["severity"] = NumberOrName(record.severity, binding::kSeverity);
    AddText(notification, "labelId", record.labelId);
    AddText(notification, "titleId", record.titleId);
    AddText(notification, "textId", record.textId);
    if ((record.flags & ANS_NOTIFICATION_ACTIVE) == 0) {
        notification["active"] = false;
    }
    return notification;
}

/// The list of notifications in @p block; nothing if it is not exactly one.
std::optional<Json> Notifications(std::span<const std::uint8_t> block) {
    std::int32_t count = 0;
    if (block.size() < sizeof count) {
        return std::nullopt;
    }
    std::memcpy(&count, block.data(), sizeof count);
    const auto records = block.subspan(ANS_NOTIFICATION_LIST_RECORDS);
    if (count < 0 ||
        records.size() != static_cast<std::size_t>(count) * sizeof(AnsNotificationRecord)) {
        return std::nullopt;
    }
    Json list = Json::array();
    for (std::size_t index = 0; std::cmp_less(index, count); ++index) {
        AnsNotificationRecord record{};
        std::memcpy(&record, records.subspan(index * sizeof record).data(), sizeof record);
        list.push_back(Notification(record));
    }
    return list;
}

Json ChannelAnswer(MsgbusHandler& bus, const Codes& codes, const std::string& channel) {
    const auto read = [&](std::uint8_t* buffer, unsigned int* size) {
        const int code = bus.GetData(channel, buffer, *size);
        if (code == MSGBUS_BUFFER_NEEDED && *size == 0) {
            // The empty block, which no buffer is needed for.
            return static_cast<int>(MSGBUS_SUCCESS);
        }
        return code;
    };
    return ListAnswer<std::uint8_t, unsigned int>(
        "MsgbusHandler::GetData", codes, MSGBUS_BUFFER_NEEDED, read, [&](const Block& block) {
            auto list =
                channel == ANS_NOTIFICATION_CHANNEL ? Notifications(block) : std::optional<Json>();
            return list ? *list : Json::object({{"bytes", HexText(block)}});
        });
}

}  // namespace

Json RecordMsgbus(const Questions& questions) {
    const Codes codes = {MSGBUS_SUCCESS, binding::kMsgbusResult, questions.bindingCodes, 0};
    MsgbusHandler bus(nullptr);
    const int joined = bus.Initialize();
    Json channels = Json::object();
    for (const std::string& channel :
         With(questions.channels, std::array{ANS_NOTIFICATION_CHANNEL})) {
        channels[channel] =
            joined == codes.success ? ChannelAnswer(bus, codes, channel) : FailureOf(codes, joined);
    }
    (void)bus.Uninitialize();
    return channels;
}
