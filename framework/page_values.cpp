#include "framework/log.h"
#include "framework/page_component.h"
#include "framework/text_domain.h"
#include "platform/sysint.h"

void PageComponent::SetData(CTPP::CDT& tree, const std::string& key, const std::string& value) {
    KESTAL_SIGNATURE(
        "static void PageComponent::SetData(CTPP::CDT&, const string&, const string&)");
    tree[key] = Translated(value);
    KESTAL_DEBUG_UNSEPARATED("- %s = \"%s\"", key.c_str(), value.c_str());
}

void PageComponent::SetData(CTPP::CDT& tree, const std::string& key, const char* value) {
    SetData(tree, key, std::string(value != nullptr ? value : ""));
}

void PageComponent::SetData(CTPP::CDT& tree, const std::string& key, int value) {
    SetData(tree, key, std::to_string(value));
}

void PageComponent::SetData(CTPP::CDT& tree, const std::string& key, bool value) {
    KESTAL_SIGNATURE("static void PageComponent::SetData(CTPP::CDT&, const string&, bool)");
    tree[key] = value ? 1 : 0;
    KESTAL_DEBUG_UNSEPARATED("- %s = %d", key.c_str(), value);
}

bool PageComponent::IsTrue(const std::string& text, bool defaultValue) {
    KESTAL_SIGNATURE("bool PageComponent::IsTrue(const string&, bool)");
    if (text == "true" || text == "on" || text == "1") {
        return true;
    }
    if (text == "false" || text == "off" || text == "0") {
        return false;
    }
    KESTAL_SYSLOG(TORU_DBG_NOTICE, "couldn't convert %s to a boolean value, treating as %d",
                  text.c_str(), defaultValue);
    return defaultValue;
}

// Other components of the family call it with this signature, which takes the texts by value.
// cppcheck-suppress passedByValue
// NOLINTNEXTLINE(performance-unnecessary-value-param)
PageError PageComponent::nativeChecker(int result, std::string callName, std::string /*hint*/) {
    KESTAL_SIGNATURE(
        "static PageError PageComponent::nativeChecker(int, std::__cxx11::string, "
        "std::__cxx11::string)");
    if (result == SYS_SUCCESS) {
        return PAGE_ERROR_NONE;
    }
    KESTAL_FAILURE("%s returned - %d", callName.c_str(), result);
    return PAGE_ERROR_FAILED;
}

std::string PageComponent::ConvertUnitToLanguage(std::string unit) {
    KESTAL_SIGNATURE(
        "static std::__cxx11::string PageComponent::ConvertUnitToLanguage(std::__cxx11::string)");
    struct Unit {
        const char* symbol;
        const char* messageId;
    };
    static constexpr Unit kUnits[] = {
        {"b", "webui_app_bit_text"},        {"Kb", "webui_app_kilobit_text"},
        {"Mb", "webui_app_megabit_text"},   {"Gb", "webui_app_gigabit_text"},
        {"B", "webui_app_bytes_text"},      {"KB", "webui_app_kilobytes_text"},
        {"MB", "webui_app_megabytes_text"}, {"GB", "webui_app_gigabytes_text"},
    };
    for (const Unit& known : kUnits) {
        if (unit == known.symbol) {
            return Translated(known.messageId);
        }
    }
    KESTAL_FAILURE("Unknown Unit Type!  No conversion can be done for %s.", unit.c_str());
    return unit;
}
