// platform/webui.h.
#include "platform/webui.h"

#include "conformance/list.h"
#include "conformance/query.h"
#include "conformance/sections/sections.h"

namespace conformance {

namespace {

template <typename Record>
List ListOf(const std::string& call, const std::string& arguments,
            const std::function<int(Record*, int*)>& function) {
    List list;
    list.call = call;
    list.arguments = arguments;
    list.success = WEBUI_SUCCESS;
    list.bufferNeeded = WEBUI_BUFFER_NEEDED;
    list.recordSize = sizeof(Record);
    list.fields = FieldsInBytes<Record>;
    list.make = [function](void* buffer, void* count) {
        return function(static_cast<Record*>(buffer), static_cast<int*>(count));
    };
    return list;
}

void ExamineNamed(Probe& probe, const std::string& name) {
    (void)Examine(probe, ListOf<webui_feature_t>("webui_get_app_features", Quoted(name),
                                                 [name](webui_feature_t* buffer, int* count) {
                                                     return webui_get_app_features(name.c_str(),
                                                                                   buffer, count);
                                                 }));
    (void)Examine(probe, ListOf<webui_configuration_t>(
                             "webui_get_app_configurations", Quoted(name),
                             [name](webui_configuration_t* buffer, int* count) {
                                 return webui_get_app_configurations(name.c_str(), buffer, count);
                             }));
    Examine(probe, NamedQueryOf("webui_get_uri_data", WEBUI_SUCCESS, webui_get_uri_data, name));
    Examine(probe, NamedQueryOf("webui_get_external_uri_data", WEBUI_SUCCESS,
                                webui_get_external_uri_data, name));
    Examine(probe, NamedQueryOf("webui_get_software_update_custom_msgs", WEBUI_SUCCESS,
                                webui_get_software_update_custom_msgs, name));
}

}  // namespace

void ExamineWebui(Probe& probe, const Options& options) {
    (void)Examine(
        probe, ListOf<webui_feature_t>("webui_get_common_features", "", webui_get_common_features));
    (void)Examine(probe, ListOf<webui_configuration_t>("webui_get_common_configurations", "",
                                                       webui_get_common_configurations));
    Examine(probe, QueryOf("webui_get_i18n_settings", WEBUI_SUCCESS, webui_get_i18n_settings));
    Examine(probe, QueryOf("webui_get_software_update_status", WEBUI_SUCCESS,
                           webui_get_software_update_status));
    Examine(probe, QueryOf("webui_get_software_installation_duration", WEBUI_SUCCESS,
                           webui_get_software_installation_duration));
    for (const std::string& name : options.names) {
        ExamineNamed(probe, name);
    }
}

}  // namespace conformance
