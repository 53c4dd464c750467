#include "framework/po_string.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <string_view>
#include <utility>

#include "framework/log.h"

namespace {

/// Replaces every @p placeholder in @p text; returns whether there was one. The result is built in
/// a second string, so that the rest of the text is not moved once per placeholder.
bool ReplaceAll(std::string& text, std::string_view placeholder, std::string_view argument) {
    std::size_t found = text.find(placeholder);
    if (found == std::string::npos) {
        return false;
    }
    std::string result;
    result.reserve(text.size() + argument.size());
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
    std::array<char, 1 + std::numeric_limits<std::size_t>::digits10 + 1> placeholder{'%'};
    // A text without a "%", as most are, has no placeholder.
    for (std::size_t i = 0; i < usable && text.find('%') != std::string::npos; ++i) {
        const char* argument = arguments[i] != nullptr ? arguments[i] : "";
        const auto number =
            std::to_chars(placeholder.data() + 1, placeholder.data() + placeholder.size(), i + 1);
        if (ReplaceAll(text, {placeholder.data(), number.ptr}, argument)) {
            ++matched;
        }
    }
    if (matched > count) {
        KESTAL_MODULE_SYSLOG("WEBUI", TORU_DBG_ERROR, "Number of arguments mismatched");
    }
    return text;
}
