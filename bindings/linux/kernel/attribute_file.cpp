#include "bindings/linux/kernel/attribute_file.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>
#include <system_error>

#include "bindings/linux/text.h"

namespace binding {

std::optional<std::string> ReadAttribute(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::array<char, 4096> buffer{};
    file.read(buffer.data(), buffer.size());
    if (!file.is_open() || file.bad()) {
        return std::nullopt;
    }
    return std::string(Trimmed({buffer.data(), static_cast<std::size_t>(file.gcount())}));
}

std::optional<std::int64_t> ReadNumber(const std::filesystem::path& path) {
    const auto text = ReadAttribute(path);
    return text ? NumberIn<std::int64_t>(*text) : std::nullopt;
}

std::vector<std::filesystem::path> EntriesOf(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> entries;
    std::error_code error;
    // The loop is written out because the one of the language throws when the folder changes.
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        entries.push_back(entry->path());
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

}  // namespace binding
