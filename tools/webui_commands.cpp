#include "tools/webui_commands.h"

#include <cstring>
#include <map>
#include <nlohmann/json.hpp>

#include "platform/webui.h"
#include "tools/described.h"
#include "tools/json_output.h"
#include "tools/list_reading.h"

namespace {

using Names = std::vector<std::string>;
using Parameters = std::vector<Parameter>;

std::string CallName(const Names& names) {
    return "webui_" + names.front();
}

/// The call of a command: it fills the answer and returns its code.
using Call = std::function<int(const Arguments&, Json&)>;

/// A command that makes @p call. The name of the call is "webui_" and the command's first name.
Command Calling(Names names, std::string description, Parameters parameters, Call call) {
    const std::string callName = CallName(names);
    return {
        .names = std::move(names),
        .description = std::move(description),
        .parameters = std::move(parameters),
        .run = [callName, call = std::move(call)](const Arguments& arguments, std::ostream& out) {
            Json answer;
            Check(callName, call(arguments, answer), WEBUI_SUCCESS);
            WriteJson(out, answer);
        }};
}

/// A query whose only parameter is its result.
template <typename Record>
Command Query(Names names, std::string description, int (*call)(Record*)) {
    return Calling(std::move(names), std::move(description), {},
                   [call](const Arguments& /*arguments*/, Json& answer) {
                       Record record{};
                       const int code = call(&record);
                       answer = Described(record);
                       return code;
                   });
}

/// A query that takes a name as its parameter.
template <typename Record>
Command Query(Names names, std::string description, Parameter parameter,
              int (*call)(const char*, Record*)) {
    return Calling(std::move(names), std::move(description), {parameter},
                   [call](const Arguments& arguments, Json& answer) {
                       Record record{};
                       const int code = call(arguments.Text(0), &record);
                       answer = Described(record);
                       return code;
                   });
}

/// Reads a list with @p read(buffer, count), which makes the call @p callName, and puts the list
/// into the answer as @p field.
template <typename Record, typename Read>
int List(const std::string& callName, const char* field, Read read, Json& answer) {
    Json list = Json::array();
    for (const Record& record :
         ReadList<Record, int>(callName, WEBUI_SUCCESS, WEBUI_BUFFER_NEEDED, read)) {
        list.push_back(Described(record));
    }
    answer = Json::object({{field, list}});
    return WEBUI_SUCCESS;
}

template <typename Record>
Command QueryList(Names names, std::string description, const char* field,
                  int (*call)(Record*, int*)) {
    const std::string callName = CallName(names);
    return Calling(std::move(names), std::move(description), {},
                   [=](const Arguments& /*arguments*/, Json& answer) {
                       return List<Record>(callName, field, call, answer);
                   });
}

template <typename Record>
Command QueryList(Names names, std::string description, const char* field, Parameter parameter,
                  int (*call)(const char*, Record*, int*)) {
    const std::string callName = CallName(names);
    return Calling(std::move(names), std::move(description), {parameter},
                   [=](const Arguments& arguments, Json& answer) {
                       const auto read = [&](Record* buffer, int* count) {
                           return call(arguments.Text(0), buffer, count);
                       };
                       return List<Record>(callName, field, read, answer);
                   });
}

constexpr Parameter kApp = {"APP", "Name of an application of the web UI"};
constexpr Parameter kPage = {"ID", "Identifier of a page"};
constexpr Parameter kLanguage = {"LANGUAGE", "Language code such as en_US"};

std::vector<Command> Commands() {
    return {
        QueryList({"get_common_features"}, "Device-wide features", "features",
                  webui_get_common_features),
        QueryList({"get_app_features"}, "Features of an application", "features", kApp,
                  webui_get_app_features),
        QueryList({"get_common_configurations"}, "Device-wide configurations", "configurations",
                  webui_get_common_configurations),
        QueryList({"get_app_configurations"}, "Configurations of an application", "configurations",
                  kApp, webui_get_app_configurations),
        Query({"get_uri_data"}, "Address and title of a page of the web UI", kPage,
              webui_get_uri_data),
        Query({"get_external_uri_data"}, "Address of a page outside the web UI", kPage,
              webui_get_external_uri_data),
        Query({"get_i18n_settings", "get_internationalization_settings"},
              "Language that the user has chosen", webui_get_i18n_settings),
        Query({"get_software_update_status"}, "State of the software update",
              webui_get_software_update_status),
        Calling({"get_software_installation_duration", "software_installation_duration"},
                "How long the installation of an update is expected to take", {},
                [](const Arguments& /*arguments*/, Json& answer) {
                    int duration = 0;
                    const int code = webui_get_software_installation_duration(&duration);
                    answer = Json::object({{"duration", duration}});
                    return code;
                }),
        Query({"get_software_update_custom_msgs"}, "The carrier's texts about software updates",
              kLanguage, webui_get_software_update_custom_msgs),
    };
}

using Bytes = std::span<const std::byte>;

template <typename Record>
Json OfRecord(Bytes answer) {
    Record record{};
    if (answer.size() != sizeof record) {
        return {};
    }
    std::memcpy(&record, answer.data(), sizeof record);
    return Described(record);
}

/// Describes the records that are complete.
template <typename Record>
Json OfList(Bytes answer) {
    Json list = Json::array();
    for (; answer.size() >= sizeof(Record); answer = answer.subspan(sizeof(Record))) {
        list.push_back(OfRecord<Record>(answer.first(sizeof(Record))));
    }
    return list;
}

Json OfDuration(Bytes answer) {
    int duration = 0;
    if (answer.size() != sizeof duration) {
        return {};
    }
    std::memcpy(&duration, answer.data(), sizeof duration);
    return Json::object({{"duration", duration}});
}

}  // namespace

Json DescribedWebuiAnswer(std::string_view call, Bytes answer) {
    static const std::map<std::string_view, Json (*)(Bytes)> kDescriptions = {
        {"webui_get_common_features", OfList<webui_feature_t>},
        {"webui_get_app_features", OfList<webui_feature_t>},
        {"webui_get_common_configurations", OfList<webui_configuration_t>},
        {"webui_get_app_configurations", OfList<webui_configuration_t>},
        {"webui_get_uri_data", OfRecord<webui_uri_data_t>},
        {"webui_get_external_uri_data", OfRecord<webui_external_uri_data_t>},
        {"webui_get_i18n_settings", OfRecord<webui_i18n_settings_t>},
        {"webui_get_software_update_status", OfRecord<webui_software_update_status_t>},
        {"webui_get_software_installation_duration", OfDuration},
        {"webui_get_software_update_custom_msgs", OfRecord<SoftwareUpdateCustomMessages>},
    };
    const auto found = kDescriptions.find(call);
    return found == kDescriptions.end() ? Json() : found->second(answer);
}

Tool WebuiTool(binding::Enumeration bindingCodes) {
    return {
        .name = "webui_cli",
        .description = "Makes a call of the web UI's configuration library and prints its answer.",
        .codes = binding::kWebuiStatus,
        .commands = Commands(),
        .bindingCodes = bindingCodes,
        .bindingCodeBase = WEBUI_SUCCESS};
}
