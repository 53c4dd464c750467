// Files of the kernel that hold one value, below /sys.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace binding {

/// The value that the file at @p path holds, without the line feed; at most a few KiB of it.
/// Nothing when it cannot be read: drivers refuse to tell what they do not know at the moment.
std::optional<std::string> ReadAttribute(const std::filesystem::path& path);

/// The same for a number in decimal digits.
std::optional<std::int64_t> ReadNumber(const std::filesystem::path& path);

/// What is in the folder, sorted by name; nothing when it cannot be read.
std::vector<std::filesystem::path> EntriesOf(const std::filesystem::path& folder);

}  // namespace binding
