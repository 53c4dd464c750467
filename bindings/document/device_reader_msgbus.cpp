// The object "msgbus": what has been published on the channels of the message bus.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "bindings/document/device_reader.h"
#include "platform/notification.h"

namespace binding {

namespace {

using Block = std::vector<std::byte>;

template <typename T>
void Append(Block& block, const T& value) {
    const auto bytes = std::as_bytes(std::span(&value, 1));
    block.insert(block.end(), bytes.begin(), bytes.end());
}

Block ReadNotifications(const Node& list) {
    const std::size_t count = list.Size();
    Block block;
    Append(block, static_cast<std::int32_t>(count));
    for (std::size_t index = 0; index < count; ++index) {
        AnsNotificationRecord record{};
        ReadNotification(list.Element(index), record);
        Append(block, record);
    }
    return block;
}

void ReadChannel(const Node& node, Block& block) {
    if (node.IsList()) {
        block = ReadNotifications(node);
        return;
    }
    if (!node.IsObject() || !node.HasMember("bytes")) {
        node.Expected("a list of notifications, {\"bytes\": \"hexadecimal digits\"}");
    }
    Members members(node);
    block = ReadBytes(*members.Find("bytes"));
    members.RejectOthers();
}

}  // namespace

void ReadNotification(const Node& node, AnsNotificationRecord& record) {
    bool active = true;
    Members members(node);
    members.Field("id", record.id)
        .Field("category", record.category)
        .Field("severity", record.severity)
        .Field("labelId", record.labelId)
        .Field("titleId", record.titleId)
        .Field("textId", record.textId)
        .Field("active", active)
        .RejectOthers();
    record.flags = 0;
    if (active) {
        record.flags = ANS_NOTIFICATION_ACTIVE;
    }
}

void ReadMsgbus(const Node& node, Device& device) {
    ReadNamedAnswers(node, device.channels, ReadChannel);
}

}  // namespace binding
