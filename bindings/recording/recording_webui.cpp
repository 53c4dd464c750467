#include <string>

#include "bindings/recording/recording.h"
#include "platform/webui.h"

using recording::InsidePlatform;
using recording::Output;
using recording::Play;

namespace {

/// A call that fills a list of records; outputs: the records, the count.
template <typename Record>
int PlayList(const std::string& call, std::string arguments, Record* buffer, int* count) {
    const InsidePlatform inside;
    arguments += buffer == nullptr ? "no buffer" : "room for " + std::to_string(*count);
    const auto room = static_cast<std::size_t>(*count);
    return Play(call, arguments, {Output(buffer, room), Output(count)});
}

}  // namespace

int webui_get_common_features(webui_feature_t* buffer, int* count) {
    const InsidePlatform inside;
    return PlayList("webui_get_common_features", "", buffer, count);
}

int webui_get_app_features(const char* appName, webui_feature_t* buffer, int* count) {
    const InsidePlatform inside;
    return PlayList("webui_get_app_features", std::string(appName) + ", ", buffer, count);
}

int webui_get_common_configurations(webui_configuration_t* buffer, int* count) {
    const InsidePlatform inside;
    return PlayList("webui_get_common_configurations", "", buffer, count);
}

int webui_get_app_configurations(const char* appName, webui_configuration_t* buffer, int* count) {
    const InsidePlatform inside;
    return PlayList("webui_get_app_configurations", std::string(appName) + ", ", buffer, count);
}

int webui_get_uri_data(const char* uriId, webui_uri_data_t* data) {
    const InsidePlatform inside;
    return Play("webui_get_uri_data", uriId, {Output(data)});
}

int webui_get_external_uri_data(const char* uriId, webui_external_uri_data_t* data) {
    const InsidePlatform inside;
    return Play("webui_get_external_uri_data", uriId, {Output(data)});
}

int webui_get_i18n_settings(webui_i18n_settings_t* settings) {
    const InsidePlatform inside;
    return Play("webui_get_i18n_settings", "", {Output(settings)});
}

int webui_get_software_update_status(webui_software_update_status_t* status) {
    const InsidePlatform inside;
    return Play("webui_get_software_update_status", "", {Output(status)});
}

int webui_get_software_installation_duration(int* duration) {
    const InsidePlatform inside;
    return Play("webui_get_software_installation_duration", "", {Output(duration)});
}

int webui_get_software_update_custom_msgs(const char* language,
                                          SoftwareUpdateCustomMessages* messages) {
    const InsidePlatform inside;
    return Play("webui_get_software_update_custom_msgs", language, {Output(messages)});
}
