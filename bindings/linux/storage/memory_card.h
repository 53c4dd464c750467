// The memory card, from /sys/block and the table of mounts.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/sysint.h"

namespace binding {

/// A block device that is a memory card.
struct MemoryCard {
    std::string name;  ///< such as "mmcblk0"
    /// Where its file system is mounted; empty when it is not.
    std::filesystem::path mountPoint;
};

/// Finds the memory card among the block devices in @p blockDevices (/sys/block); nothing when the
/// slot is empty. @p mounts is the text of /proc/self/mountinfo. The card from which the device has
/// started is none: it is not there to be taken out. @p wanted names the block device if it is not
/// an mmcblk.
std::optional<MemoryCard> FindMemoryCard(const std::filesystem::path& blockDevices,
                                         std::string_view mounts, std::string_view wanted = {});

/// The space of the file system at @p mountPoint, in bytes; nothing when it cannot be told.
std::optional<sys_sd_card_info_t> SpaceAt(const std::filesystem::path& mountPoint);

}  // namespace binding
