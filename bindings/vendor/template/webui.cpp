// Configuration of the web UI, from your settings.
#include "platform/webui.h"

#include "not_supported.h"

// Switches of the web UI that hold for the whole device; see the declaration for how the size is
// asked for. No answer of the service depends on a feature, so the list may be empty.
int webui_get_common_features(webui_feature_t* /*buffer*/, int* /*count*/) {
    return kNotSupported;
}

// Switches of one application.
int webui_get_app_features(const char* /*appName*/, webui_feature_t* /*buffer*/, int* /*count*/) {
    return kNotSupported;
}

// Settings of the web UI that hold for the whole device. The service asks for ShowRoamingIndicator,
// ShowNonOrvaneTechnologies, ShowWifiEthernetUSBTotalClients and IsABPartitionEnabled; the list may
// be empty.
int webui_get_common_configurations(webui_configuration_t* /*buffer*/, int* /*count*/) {
    return kNotSupported;
}

// Settings of one application.
int webui_get_app_configurations(const char* /*appName*/, webui_configuration_t* /*buffer*/,
                                 int* /*count*/) {
    return kNotSupported;
}

// Path and message id of the title of a page of yours, such as "sms"; notifications link to it.
int webui_get_uri_data(const char* /*uriId*/, webui_uri_data_t* /*data*/) {
    return kNotSupported;
}

// Address of a page outside of the device.
int webui_get_external_uri_data(const char* /*uriId*/, webui_external_uri_data_t* /*data*/) {
    return kNotSupported;
}

// Language that the user has chosen, such as "en_US", which is also used when this fails. Texts are
// translated only where the machine has a locale of this name; else pages show message ids.
int webui_get_i18n_settings(webui_i18n_settings_t* /*settings*/) {
    return kNotSupported;
}

// State of the software update, as your update agent defines it.
int webui_get_software_update_status(webui_software_update_status_t* /*status*/) {
    return kNotSupported;
}

// Minutes that the installation of an update takes.
int webui_get_software_installation_duration(int* /*duration*/) {
    return kNotSupported;
}

// The carrier's texts about updates in that language; empty where there are none.
int webui_get_software_update_custom_msgs(const char* /*language*/,
                                          SoftwareUpdateCustomMessages* /*messages*/) {
    return kNotSupported;
}
