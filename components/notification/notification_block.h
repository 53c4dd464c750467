#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "framework/nothrow_array.h"
#include "platform/msgbus.h"
#include "platform/notification.h"

/// The published notifications, read as one block. If a malformed block announces more records than
/// it has bytes for, that is logged, and only the records that were received count.
class NotificationBlock {
  public:
    enum class ReadResult {
        kRead,
        /// The channel did not answer as the message bus promises.
        kFailed,
        /// There is no memory for a block of the size that the channel announced.
        kNoMemory,
    };

    /// Reads the block again over @p bus, which has been joined. The block is empty if it cannot be
    /// read.
    ReadResult Read(MsgbusHandler& bus);

    /// The number of records that the block announces, which may be any number, even a negative
    /// one. 0 if the block is too short to hold the number.
    std::int32_t AnnouncedCount() const;

    /// The announced records of which every byte was received. They are valid as long as the block,
    /// and until the next Read.
    std::span<const AnsNotificationRecord> Records() const;

  private:
    /// How many records were received with all their bytes, whatever the block announces.
    std::size_t ReceivedCount() const;

    std::unique_ptr<std::byte[], FreeMemory> bytes;
    std::size_t size = 0;
};

/// Whether @p record is to be shown.
constexpr bool IsActive(const AnsNotificationRecord& record) {
    return (record.flags & ANS_NOTIFICATION_ACTIVE) != 0;
}
