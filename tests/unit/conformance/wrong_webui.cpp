// Faults of the web UI configuration library.
#include <algorithm>
#include <cstring>

#include "platform/webui.h"
#include "tests/unit/conformance/wrong_binding.h"

using wrong::Has;

extern "C" {

int RealSettings(webui_i18n_settings_t* settings) REAL("webui_get_i18n_settings");
int WrongSettings(webui_i18n_settings_t* settings) WRAPPED("webui_get_i18n_settings");
int WrongSettings(webui_i18n_settings_t* settings) {
    const int code = RealSettings(settings);
    if (Has("language-not-terminated")) {
        std::memset(settings->language, 'x', sizeof(settings->language));
    }
    return code;
}

int RealFeatures(webui_feature_t* buffer, int* count) REAL("webui_get_common_features");
int WrongFeatures(webui_feature_t* buffer, int* count) WRAPPED("webui_get_common_features");
int WrongFeatures(webui_feature_t* buffer, int* count) {
    constexpr int kEnormous = 500'000;  // 25 million bytes
    static int more = 0;
    const int room = *count;
    const int code = RealFeatures(buffer, count);
    if (Has("empty-list-needs-buffer")) {
        *count = 0;
        return buffer == nullptr ? WEBUI_BUFFER_NEEDED : WEBUI_SUCCESS;
    }
    if (Has("list-of-enormous-length") && (buffer == nullptr || room < kEnormous)) {
        *count = kEnormous;
        return WEBUI_BUFFER_NEEDED;
    }
    if (buffer == nullptr) {
        if (Has("list-success-without-buffer")) {
            return WEBUI_SUCCESS;
        }
        *count += Has("list-of-changing-length") ? ++more : 0;
    } else if (code == WEBUI_SUCCESS) {
        if (Has("live-values")) {
            buffer[0].value = static_cast<std::uint8_t>(wrong::Flicker());
        }
        *count = Has("list-counts-room") ? room : *count;
        *count -= Has("list-counts-one-less") ? 1 : 0;
    } else if (Has("list-too-small-fails")) {
        *count = room;
        return code + 1;
    }
    return code;
}

int RealConfigurations(webui_configuration_t* buffer, int* count)
    REAL("webui_get_common_configurations");
int WrongConfigurations(webui_configuration_t* buffer, int* count)
    WRAPPED("webui_get_common_configurations");
int WrongConfigurations(webui_configuration_t* buffer, int* count) {
    webui_configuration_t kept{};
    if (buffer != nullptr && *count > 1) {
        kept = buffer[1];
    }
    const int code = RealConfigurations(buffer, count);
    if (buffer != nullptr && code == WEBUI_SUCCESS) {
        if (Has("record-not-terminated")) {
            std::memset(buffer[0].value, 'x', sizeof(buffer[0].value));
        }
        if (Has("record-left-out")) {
            buffer[1] = kept;
        }
    }
    return code;
}

int RealAppFeatures(const char* appName, webui_feature_t* buffer, int* count)
    REAL("webui_get_app_features");
int WrongAppFeatures(const char* appName, webui_feature_t* buffer, int* count)
    WRAPPED("webui_get_app_features");
int WrongAppFeatures(const char* appName, webui_feature_t* buffer, int* count) {
    const int code = RealAppFeatures(appName, buffer, count);
    if (Has("failure-with-count")) {
        *count = 0;
    }
    return code;
}

int RealUri(const char* uriId, webui_uri_data_t* data) REAL("webui_get_uri_data");
int WrongUri(const char* uriId, webui_uri_data_t* data) WRAPPED("webui_get_uri_data");
int WrongUri(const char* uriId, webui_uri_data_t* data) {
    if (Has("unknown-name-succeeds") && std::strcmp(uriId, "conformance-unknown") == 0) {
        return WEBUI_SUCCESS;
    }
    return RealUri(uriId, data);
}
}
