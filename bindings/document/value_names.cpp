#include "bindings/document/value_names.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "bindings/device/codes.h"
#include "bindings/document/answer_reader.h"
#include "bindings/document/node.h"
#include "platform/sysint_queries.h"
#include "platform/webui.h"

namespace binding {

namespace {

/// The names for the answer of a call of "sys", or for a field of that answer.
struct NamedNumber {
    std::string_view call;
    std::string_view field;  ///< empty for the answer itself
    Enumeration names;
};

const std::vector<NamedNumber>& NamedNumbersOfSys() {
    static const std::vector<NamedNumber> kNumbers = {
        {"getCellularDataConnectionStatus", "now", kDataConnectionStatus},
        {"getCellularDataConnectionStatus", "next", kDataConnectionStatus},
        {"getCellularServiceStats", "technology", kTechnology},
        {"getCellularServiceStats", "roaming", kRoaming},
        {"getCellularServiceStats", "fiveGType", kFiveGType},
        {"getCellularDataConnectionStats", "trafficStatus", kTrafficStatus},
        {"getAllSimSlotsInfo", "simStatus", kSimStatus},
        {"getAllSimSlotsInfo", "dataConnectionStatus", kDataConnectionStatus},
        {"getAllSimSlotsInfo", "serviceStatus", kServiceStatus},
        {"getConnectedDeviceList", "connectionKind", kConnectionKind},
        {"getBatteryStatus", "detection", kBatteryDetection},
        {"getBatteryStatus", "chargingSource", kChargingSource},
#define DOCUMENT_NAMES(Type, name, Meaning, field, description) \
    {#name, "", NamesOfMeaning<Meaning>()},
        SYSINT_QUERIES(DOCUMENT_NAMES)
#undef DOCUMENT_NAMES
    };
    return kNumbers;
}

/// The names for the codes with which calls of the platform fail, and for those of bindings, to
/// which @p base is added.
std::vector<EnumerationName> FailureNames(Enumeration platform, int base) {
    std::vector<EnumerationName> names;
    for (const EnumerationName& one : platform) {
        if (one.value != SYS_SUCCESS && one.value != WEBUI_SUCCESS) {
            names.push_back(one);
        }
    }
    for (const EnumerationName& one : kBindingCode) {
        names.push_back({one.value + base, one.name});
    }
    return names;
}

Enumeration FailureNamesIn(const std::string& section) {
    static const std::vector<EnumerationName> kSys = FailureNames(kSysResult, 0);
    static const std::vector<EnumerationName> kWebui = FailureNames(kWebuiStatus, kWebuiCodeBase);
    static const std::vector<EnumerationName> kMsgbus = FailureNames(kMsgbusResult, 0);
    if (section == "sys") {
        return kSys;
    }
    if (section == "webui") {
        return kWebui;
    }
    return section == "msgbus" ? Enumeration(kMsgbus) : Enumeration();
}

}  // namespace

Enumeration NamesAt(const KeyPath& path) {
    // The path begins with a section and a call, and the rest leads to a part of the answer.
    // Positions and "healed" do not matter: they only say which of several numbers it is.
    constexpr std::size_t kCall = 1;
    if (path.size() <= kCall || !std::holds_alternative<std::string>(path.back())) {
        return {};
    }
    const std::string& section = std::get<std::string>(path.front());
    const std::string& last = std::get<std::string>(path.back());
    if (path.size() > kCall + 1 && last == "error") {
        return FailureNamesIn(section);
    }
    // A board's document adds notifications in the object "linux".
    if (section == "msgbus" || section == "linux") {
        return path.size() > kCall + 1 && last == "severity" ? kSeverity : Enumeration();
    }
    if (section != "sys") {
        return {};
    }
    const bool isWhole = path.size() == kCall + 1 || last == kHealedName;
    const std::string_view field = isWhole ? std::string_view() : std::string_view(last);
    const auto& numbers = NamedNumbersOfSys();
    const auto found = std::find_if(numbers.begin(), numbers.end(), [&](const NamedNumber& one) {
        return path[kCall] == KeyPath::value_type(std::string(one.call)) && one.field == field;
    });
    return found == numbers.end() ? Enumeration() : found->names;
}

std::optional<std::int64_t> NumberAt(const KeyPath& path, const nlohmann::ordered_json& value) {
    const auto* const text = value.get_ptr<const std::string*>();
    return text == nullptr ? NumberOf<std::int64_t>(value) : ValueOf(*text, NamesAt(path));
}

}  // namespace binding
