// Web UI configuration library: features, configurations, page addresses, language and software
// update.
#pragma once

#include <cstddef>
#include <cstdint>

/// Result codes of the webui_ calls.
enum webui_status_e : int {
    WEBUI_SUCCESS = 983040,
    /// The buffer is missing or too small; the record count has been set.
    WEBUI_BUFFER_NEEDED = 983043,
};

/// One feature switch.
struct webui_feature_t {
    char name[50];       ///< terminated text
    std::uint8_t value;  ///< 0 to 255
};
static_assert(sizeof(webui_feature_t) == 51);
static_assert(offsetof(webui_feature_t, value) == 50);

/// One configuration value.
struct webui_configuration_t {
    char name[50];   ///< terminated text
    char value[50];  ///< terminated text
};
static_assert(sizeof(webui_configuration_t) == 100);
static_assert(offsetof(webui_configuration_t, value) == 50);

/// Address and title of a page of the web UI.
struct webui_uri_data_t {
    char address[256];  ///< friendly address (URL path), terminated text
    char titleId[128];  ///< message id of the page title, terminated text
};
static_assert(sizeof(webui_uri_data_t) == 384);
static_assert(offsetof(webui_uri_data_t, titleId) == 256);

/// Address of a page outside the web UI.
struct webui_external_uri_data_t {
    char reserved[128];  ///< not read
    char address[384];   ///< friendly address, terminated text
};
static_assert(sizeof(webui_external_uri_data_t) == 512);
static_assert(offsetof(webui_external_uri_data_t, address) == 128);

/// Internationalisation settings.
struct webui_i18n_settings_t {
    char language[32];  ///< language code such as "en_US", terminated text
};
static_assert(sizeof(webui_i18n_settings_t) == 32);

/// State of the software update.
struct webui_software_update_status_t {
    std::int32_t status;         ///< meaning defined by the platform, as are the next two
    std::int32_t userInitiated;  ///< whether the user has asked for the update
    std::int32_t value;          ///< qualifies the status
    char version[256];           ///< version of the update, terminated text
};
static_assert(sizeof(webui_software_update_status_t) == 268);
static_assert(offsetof(webui_software_update_status_t, status) == 0);
static_assert(offsetof(webui_software_update_status_t, userInitiated) == 4);
static_assert(offsetof(webui_software_update_status_t, value) == 8);
static_assert(offsetof(webui_software_update_status_t, version) == 12);

/// The carrier's texts about a software update, in one language. All are terminated; a text that
/// the carrier does not supply is empty.
struct SoftwareUpdateCustomMessages {
    char description[1024];
    char download[1024];
    char readyToInstall[1024];
    char installSuccess[1024];
    char installFail[1024];
};
static_assert(sizeof(SoftwareUpdateCustomMessages) == 5120);
static_assert(offsetof(SoftwareUpdateCustomMessages, description) == 0);
static_assert(offsetof(SoftwareUpdateCustomMessages, download) == 1024);
static_assert(offsetof(SoftwareUpdateCustomMessages, readyToInstall) == 2048);
static_assert(offsetof(SoftwareUpdateCustomMessages, installSuccess) == 3072);
static_assert(offsetof(SoftwareUpdateCustomMessages, installFail) == 4096);

/// Address of a web UI caller.
struct webui_addr_t {
    std::uint32_t family;      ///< AF_INET or AF_INET6
    std::uint8_t address[16];  ///< network byte order; an IPv4 address fills the first four bytes
};
static_assert(sizeof(webui_addr_t) == 20);
static_assert(offsetof(webui_addr_t, address) == 4);

// A list call takes a buffer of *count records. If the buffer is null or too small, it sets *count
// to the number of records that there are and returns WEBUI_BUFFER_NEEDED, or WEBUI_SUCCESS when
// there are none; otherwise it fills the buffer and sets *count to the number of records that it
// wrote. All calls return WEBUI_SUCCESS or an error code. A call that fails with another code than
// WEBUI_BUFFER_NEEDED writes nothing.
extern "C" {

/// Device-wide features.
int webui_get_common_features(webui_feature_t* buffer, int* count);

/// Features of the application @p appName.
int webui_get_app_features(const char* appName, webui_feature_t* buffer, int* count);

/// Device-wide configurations.
int webui_get_common_configurations(webui_configuration_t* buffer, int* count);

/// Configurations of the application @p appName.
int webui_get_app_configurations(const char* appName, webui_configuration_t* buffer, int* count);

/// Address and title of the page @p uriId.
int webui_get_uri_data(const char* uriId, webui_uri_data_t* data);

/// Address of the external page @p uriId.
int webui_get_external_uri_data(const char* uriId, webui_external_uri_data_t* data);

/// Language that the user has chosen.
int webui_get_i18n_settings(webui_i18n_settings_t* settings);

/// State of the software update.
int webui_get_software_update_status(webui_software_update_status_t* status);

/// How long the installation of an update is expected to take.
int webui_get_software_installation_duration(int* duration);

/// The carrier's texts about software updates in the language @p language, such as "en_US".
int webui_get_software_update_custom_msgs(const char* language,
                                          SoftwareUpdateCustomMessages* messages);
}
