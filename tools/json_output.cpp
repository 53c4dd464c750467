#include "tools/json_output.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>

void WriteJson(std::ostream& out, const Json& value) {
    constexpr int kIndent = 4;
    out << value.dump(kIndent, ' ', false, Json::error_handler_t::replace) << "\n";
}

Json Named(std::int64_t value, binding::Enumeration names) {
    const char* const name = binding::NameOf(value, names);
    if (name != nullptr) {
        return Json::object({{"value", value}, {"name", name}});
    }
    std::vector<std::string> named;
    for (const binding::EnumerationName& one : names) {
        named.push_back(std::to_string(one.value) + " " + one.name);
    }
    return Json::object({{"value", value},
                         {"name", nullptr},
                         {"explanation", "no name; these have: " + binding::Listed(named)}});
}

std::string HexText(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text;
}
