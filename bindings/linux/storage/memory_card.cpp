#include "bindings/linux/storage/memory_card.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "bindings/linux/kernel/attribute_file.h"
#include "bindings/linux/text.h"

namespace binding {

namespace {

using Folder = std::filesystem::path;

struct Mount {
    std::string_view device;  ///< numbers of the block device, as in "179:1"
    std::string path;
};

/// Blanks, tabs, line feeds and backslashes in paths are written as a backslash and three octal
/// digits.
std::string Unescaped(std::string_view text) {
    constexpr std::size_t kDigits = 3;
    std::string path;
    while (!text.empty()) {
        std::uint8_t byte = 0;
        if (text.front() == '\\' && text.size() > kDigits) {
            const char* digits = text.data() + 1;
            const auto [stop, error] = std::from_chars(digits, digits + kDigits, byte, 8);
            if (error == std::errc() && stop == digits + kDigits) {
                path += static_cast<char>(byte);
                text.remove_prefix(kDigits + 1);
                continue;
            }
        }
        path += text.front();
        text.remove_prefix(1);
    }
    return path;
}

/// Fields of a line: number of the mount, of its parent, device numbers, the root within the file
/// system, the mount point, and others.
std::vector<Mount> ReadMounts(std::string_view text) {
    std::vector<Mount> mounts;
    while (!text.empty()) {
        std::string_view line = TakeLine(text);
        (void)TakeWord(line);
        (void)TakeWord(line);
        const std::string_view device = TakeWord(line);
        (void)TakeWord(line);
        const std::string_view path = TakeWord(line);
        if (!path.empty()) {
            mounts.push_back({device, Unescaped(path)});
        }
    }
    return mounts;
}

/// The numbers of the block device and of its partitions.
std::vector<std::string> DevicesOf(const Folder& block) {
    std::vector<std::string> devices;
    if (auto whole = ReadAttribute(block / "dev")) {
        devices.push_back(std::move(*whole));
    }
    for (const Folder& entry : EntriesOf(block)) {
        const bool isPartition = ReadAttribute(entry / "partition").has_value();
        auto device = isPartition ? ReadAttribute(entry / "dev") : std::nullopt;
        if (device) {
            devices.push_back(std::move(*device));
        }
    }
    return devices;
}

bool IsCard(const Folder& block) {
    // The host of a card that cannot be taken out while the device runs says "not removable", so
    // the kind of the card decides: a soldered flash memory is an "MMC".
    const bool isRemovable = ReadNumber(block / "removable").value_or(0) != 0;
    return isRemovable || ReadAttribute(block / "device" / "type") == "SD";
}

bool IsSystemPath(const std::string& path) {
    return path == "/" || path == "/boot" || path.starts_with("/boot/");
}

}  // namespace

std::optional<MemoryCard> FindMemoryCard(const Folder& blockDevices, std::string_view mounts,
                                         std::string_view wanted) {
    const std::vector<Mount> table = ReadMounts(mounts);
    for (const Folder& block : EntriesOf(blockDevices)) {
        const std::string name = block.filename();
        // The boot areas of a soldered memory are block devices of their own: mmcblk0boot0.
        const bool isMmc = name.starts_with("mmcblk") && name.find("boot") == std::string::npos;
        const bool isOurs = wanted.empty() ? isMmc && IsCard(block) : name == wanted;
        // The device of a card reader is there without a card, too, with the size 0.
        if (!isOurs || ReadNumber(block / "size").value_or(0) <= 0) {
            continue;
        }
        MemoryCard card{name, {}};
        bool isSystem = false;
        const std::vector<std::string> devices = DevicesOf(block);
        for (const Mount& mount : table) {
            if (std::find(devices.begin(), devices.end(), mount.device) == devices.end()) {
                continue;
            }
            isSystem = isSystem || IsSystemPath(mount.path);
            if (card.mountPoint.empty()) {
                card.mountPoint = mount.path;
            }
        }
        if (!isSystem) {
            return card;
        }
    }
    return std::nullopt;
}

std::optional<sys_sd_card_info_t> SpaceAt(const Folder& mountPoint) {
    struct statvfs space {};
    if (statvfs(mountPoint.c_str(), &space) != 0) {
        return std::nullopt;
    }
    const std::uint64_t unit = space.f_frsize;
    sys_sd_card_info_t info{};
    info.totalCapacity = space.f_blocks * unit;
    info.freeSpace = std::min<std::uint64_t>(space.f_bavail * unit, info.totalCapacity);
    return info;
}

}  // namespace binding
