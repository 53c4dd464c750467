#include "components/notification/notification_block.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "framework/log.h"

NotificationBlock::ReadResult NotificationBlock::Read(MsgbusHandler& bus) {
    KESTAL_SIGNATURE("NotificationBlock::ReadResult NotificationBlock::Read(MsgbusHandler&)");
    bytes.reset();
    size = 0;
    const std::string channel = ANS_NOTIFICATION_CHANNEL;
    unsigned int needed = 0;
    if (bus.GetData(channel, nullptr, needed) != MSGBUS_BUFFER_NEEDED || needed == 0) {
        return ReadResult::kFailed;
    }
    // Cleared memory, because a faulty bus can report success without having copied anything.
    bytes = NothrowArray<std::byte>(needed);
    if (bytes == nullptr) {
        return ReadResult::kNoMemory;
    }
    unsigned int received = needed;
    if (bus.GetData(channel, bytes.get(), received) != MSGBUS_SUCCESS) {
        bytes.reset();
        return ReadResult::kFailed;
    }
    size = std::min(received, needed);
    if (size < ANS_NOTIFICATION_LIST_RECORDS ||
        std::cmp_not_equal(AnnouncedCount(), Records().size())) {
        KESTAL_FAILURE(
            "malformed notification list, [%d] announced, [%zu] received in [%zu] bytes. Try "
            "msgbus_cli MsgBusGet %s",
            AnnouncedCount(), ReceivedCount(), size, ANS_NOTIFICATION_CHANNEL);
    }
    return ReadResult::kRead;
}

std::int32_t NotificationBlock::AnnouncedCount() const {
    std::int32_t count = 0;
    if (size >= sizeof(count)) {
        std::memcpy(&count, bytes.get(), sizeof(count));
    }
    return count;
}

std::size_t NotificationBlock::ReceivedCount() const {
    return size < ANS_NOTIFICATION_LIST_RECORDS
               ? 0
               : (size - ANS_NOTIFICATION_LIST_RECORDS) / sizeof(AnsNotificationRecord);
}

std::span<const AnsNotificationRecord> NotificationBlock::Records() const {
    const std::int32_t announced = AnnouncedCount();
    if (announced <= 0) {
        return {};
    }
    // The records are not copied, because there may be thousands. The memory that NothrowArray
    // gives is aligned for any type, and so is the offset of the records for their type.
    static_assert(ANS_NOTIFICATION_LIST_RECORDS % alignof(AnsNotificationRecord) == 0);
    const void* first = bytes.get() + ANS_NOTIFICATION_LIST_RECORDS;
    const auto* records = static_cast<const AnsNotificationRecord*>(first);
    return {records, std::min(static_cast<std::size_t>(announced), ReceivedCount())};
}
