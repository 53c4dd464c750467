#include "bindings/simulator/edit/printed_answer.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bindings/document/node.h"
#include "bindings/document/value_names.h"
#include "platform/sysint_queries.h"

namespace binding {

namespace {

using json = nlohmann::ordered_json;

/// A call whose answer is printed as an object with one member, which the document does not have.
struct Wrapped {
    std::string_view call;
    std::string_view member;
    /// Whether the document has one such answer for each index or name.
    bool isOneOfSeveral = false;
};

const std::vector<Wrapped>& WrappedAnswers() {
    static const std::vector<Wrapped> kAnswers = {{"getWiFiGuestProfileEnabled", "enabled"},
                                                  {"getWiFiGuestProfileEnabled", "enabled", true},
                                                  {"getConnectedDeviceList", "devices"},
                                                  {"externalUriData", "address", true},
                                                  {"softwareInstallationDuration", "duration"},
                                                  {"commonFeatures", "features"},
                                                  {"appFeatures", "features", true},
                                                  {"commonConfigurations", "configurations"},
                                                  {"appConfigurations", "configurations", true},
#define DOCUMENT_WRAPPED(Type, name, Meaning, field, description) {#name, field},
                                                  SYSINT_QUERIES(DOCUMENT_WRAPPED)
#undef DOCUMENT_WRAPPED
#define DOCUMENT_NAMED_WRAPPED(name, Subject, field, description) {#name, field, true},
                                                      SYSINT_NAMED_QUERIES(DOCUMENT_NAMED_WRAPPED)
#undef DOCUMENT_NAMED_WRAPPED
    };
    return kAnswers;
}

bool IsAnswerOf(const KeyPath& path, std::string_view call, bool isOneOfSeveral) {
    return path.size() == (isOneOfSeveral ? 3U : 2U) &&
           path[1] == KeyPath::value_type(std::string(call));
}

/// @p value without the object around it that only the printed answer has.
const json& Unwrapped(const KeyPath& path, const json& value) {
    if (!value.is_object() || value.size() != 1 || value.begin().key().empty()) {
        return value;
    }
    const auto& all = WrappedAnswers();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Wrapped& one) {
        return one.member == value.begin().key() && IsAnswerOf(path, one.call, one.isOneOfSeveral);
    });
    return found == all.end() ? value : value.begin().value();
}

/// Whether @p value is a number printed with its name, which is null if it has none.
bool IsNamedNumber(const json& value) {
    return value.is_object() && value.contains("value") && value.contains("name") &&
           value.at("value").is_number_integer() &&
           (value.at("name").is_string() || value.at("name").is_null());
}

json NameOrNumber(const KeyPath& path, const json& printed) {
    const json& number = printed.at("value");
    const json& name = printed.at("name");
    if (name.is_null()) {
        return number;
    }
    if (NumberAt(path, name) != NumberOf<std::int64_t>(number)) {
        throw std::runtime_error(PathText(path) + ": " + number.dump() + " is not called '" +
                                 name.get<std::string>() + "'");
    }
    return name;
}

/// A printed list of features or configurations, as an object; null for another list.
json NamesAndValues(const json& list) {
    json object = json::object();
    for (const json& one : list) {
        if (!one.is_object() || one.size() != 2 || !one.contains("value") ||
            !one.contains("name") || !one.at("name").is_string()) {
            return nullptr;
        }
        object[one.at("name").get<std::string>()] = one.at("value");
    }
    return object;
}

/// The bytes of a printed group identifier; null if they are not hexadecimal.
json Bytes(const std::string& digits) {
    json bytes = json::array();
    for (std::size_t index = 0; index < digits.size(); index += 2) {
        const char* const pair = digits.data() + index;
        unsigned byte = 0;
        if (digits.size() % 2 != 0 || std::from_chars(pair, pair + 2, byte, 16).ptr != pair + 2) {
            return nullptr;
        }
        bytes.push_back(byte);
    }
    return bytes;
}

bool IsGroupIdentifier(const KeyPath& path, const json& value) {
    return (IsAnswerOf(path, "getSIMCarrierGID", false) ||
            IsAnswerOf(path, "getSIMCarrierGID", true)) &&
           value.is_object() && value.size() == 2 && value.contains("length") &&
           value.contains("gid") && value.at("gid").is_string();
}

}  // namespace

json FromPrinted(KeyPath path, const json& value) {
    const json& answer = Unwrapped(path, value);
    if (IsNamedNumber(answer)) {
        return NameOrNumber(path, answer);
    }
    if (IsGroupIdentifier(path, answer)) {
        return Bytes(answer.at("gid").get<std::string>());
    }
    if (&answer != &value && answer.is_array() && path.front() == KeyPath::value_type("webui")) {
        return NamesAndValues(answer);
    }
    if (!answer.is_structured()) {
        return answer;
    }
    json result = answer;
    std::size_t position = 0;
    for (auto item = result.begin(); item != result.end(); ++item) {
        if (result.is_object()) {
            path.emplace_back(item.key());
        } else {
            path.emplace_back(position++);
        }
        *item = FromPrinted(path, *item);
        path.pop_back();
    }
    return result;
}

}  // namespace binding
