#include "framework/po_string.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "framework/log.h"

namespace {

/// Replaces every @p placeholder in @p text; returns whether there was one. The result is built in
/// a second string, so that the rest of the text is not moved once per placeholder.
bool ReplaceAll(std::string& text, const std::string& placeholder, std::string_view argument) {
    std::size_t found = text.find(placeholder);
    if (found == std::string::npos) {
        return false;
    }
    std::string result;
    std::size_t copied = 0;
    while (found != std::string::npos) {
        result.append(text, copied, found - copied);
        result += argument;
        copied = found + placeholder.size();
        found = text.find(placeholder, copied);
    }
    result.append(text, copied);
    text = std::move(result);
    return true;
}

}  // namespace

std::string FormatPoString(int count, std::string& text, std::span<const char* const> arguments) {
    const std::size_t wanted = count > 0 ? static_cast<std::size_t>(count) : 0;
    const std::size_t usable = std::min(wanted, arguments.size());
    int matched = 0;
    for (std::size_t i = 0; i < usable; ++i) {
        const char* argument = arguments[i] != nullptr ? arguments[i] : "";
        if (ReplaceAll(text, "%" + std::to_string(i + 1), argument)) {
            ++matched;
        }
    }
    if (matched > count) {
        KESTAL_MODULE_SYSLOG("WEBUI", TORU_DBG_ERROR, "Number of arguments mismatched");
    }
    return text;
}
