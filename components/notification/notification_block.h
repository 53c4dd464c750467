#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "framework/nothrow_array.h"
#include "platform/msgbus.h"
#include "platform/notification.h"

/// The published notifications, read as one block. What a malformed block announces beyond the
/// bytes that were received is logged and not there.
class NotificationBlock {
  public:
    enum class ReadResult {
        kRead,
        /// The channel did not answer as it must.
        kFailed,
        /// There is no memory for a block of the size that the channel announced.
        kNoMemory,
    };

    /// Reads the block anew over @p bus, which has been joined. When it cannot be read, the block
    /// is empty.
    ReadResult Read(MsgbusHandler& bus);

    /// How many records the block claims to hold; 0 when it is too short to say so. Any number can
    /// stand there.
    std::int32_t AnnouncedCount() const;

    /// The records that the block claims to hold and of which every byte was received. They live as
    /// long as the block and until the next Read.
    std::span<const AnsNotificationRecord> Records() const;

  private:
    /// How many records there are with all their bytes, whatever the block claims.
    std::size_t ReceivedCount() const;

    std::unique_ptr<std::byte[], FreeMemory> bytes;
    std::size_t size = 0;
};

/// Whether @p record is to be shown.
constexpr bool IsActive(const AnsNotificationRecord& record) {
    return (record.flags & ANS_NOTIFICATION_ACTIVE) != 0;
}
