// The web UI configuration library.
#include "platform/webui.h"

#include <algorithm>
#include <span>

#include "bindings/device/calls.h"
#include "bindings/device/locale_check.h"
#include "bindings/device/seen_call.h"

using binding::Answer;
using binding::Device;
using binding::FailureOf;
using binding::kWebuiCodeBase;
using binding::NamedAnswers;
using binding::WithDevice;

namespace {

template <typename T>
int Deliver(const Answer<T>& answer, T* value) {
    const int failure = FailureOf(answer, kWebuiCodeBase);
    if (failure != 0) {
        return failure;
    }
    *value = answer.value;
    return WEBUI_SUCCESS;
}

template <typename Record>
int DeliverList(const Answer<std::vector<Record>>& answer, Record* buffer, int* count) {
    const int failure = FailureOf(answer, kWebuiCodeBase);
    if (failure != 0) {
        return failure;
    }
    const int room = buffer == nullptr ? 0 : *count;
    *count = static_cast<int>(answer.value.size());
    if (room < *count) {
        return WEBUI_BUFFER_NEEDED;
    }
    std::copy(answer.value.begin(), answer.value.end(), buffer);
    return WEBUI_SUCCESS;
}

/// Runs @p deliver on what @p answers say about @p name.
template <typename T, typename DeliverOne>
int DeliverNamed(const Answer<NamedAnswers<T>>& answers, const char* name, DeliverOne deliver) {
    return binding::DeliverNamed(answers, name, kWebuiCodeBase, deliver);
}

/// Makes the call @p name, which has one record as its answer.
template <typename Record, typename Call>
int AnswerOne(std::string_view name, const binding::CallArgument& argument, Record* record,
              Call call) noexcept {
    return binding::Watched(
        name, argument, WEBUI_SUCCESS, [&] { return WithDevice(kWebuiCodeBase, call); },
        [&] { return binding::BytesOf(*record); });
}

/// Makes the call @p name, which has a list as its answer.
template <typename Record, typename Call>
int AnswerList(std::string_view name, const binding::CallArgument& argument, Record* buffer,
               const int* count, Call call) noexcept {
    return binding::Watched(
        name, argument, WEBUI_SUCCESS, [&] { return WithDevice(kWebuiCodeBase, call); },
        [&] { return std::as_bytes(std::span(buffer, static_cast<std::size_t>(*count))); });
}

}  // namespace

int webui_get_common_features(webui_feature_t* buffer, int* count) {
    return AnswerList("webui_get_common_features", {}, buffer, count, [&](const Device& device) {
        return DeliverList(device.commonFeatures, buffer, count);
    });
}

int webui_get_app_features(const char* appName, webui_feature_t* buffer, int* count) {
    return AnswerList("webui_get_app_features", appName, buffer, count, [&](const Device& device) {
        return DeliverNamed(device.appFeatures, appName,
                            [&](const auto& answer) { return DeliverList(answer, buffer, count); });
    });
}

int webui_get_common_configurations(webui_configuration_t* buffer, int* count) {
    return AnswerList("webui_get_common_configurations", {}, buffer, count,
                      [&](const Device& device) {
                          return DeliverList(device.commonConfigurations, buffer, count);
                      });
}

int webui_get_app_configurations(const char* appName, webui_configuration_t* buffer, int* count) {
    return AnswerList(
        "webui_get_app_configurations", appName, buffer, count, [&](const Device& device) {
            return DeliverNamed(device.appConfigurations, appName, [&](const auto& answer) {
                return DeliverList(answer, buffer, count);
            });
        });
}

int webui_get_uri_data(const char* uriId, webui_uri_data_t* data) {
    return AnswerOne("webui_get_uri_data", uriId, data, [&](const Device& device) {
        return DeliverNamed(device.uriData, uriId,
                            [&](const auto& answer) { return Deliver(answer, data); });
    });
}

int webui_get_external_uri_data(const char* uriId, webui_external_uri_data_t* data) {
    return AnswerOne("webui_get_external_uri_data", uriId, data, [&](const Device& device) {
        return DeliverNamed(device.externalUriData, uriId,
                            [&](const auto& answer) { return Deliver(answer, data); });
    });
}

int webui_get_i18n_settings(webui_i18n_settings_t* settings) {
    const int status =
        AnswerOne("webui_get_i18n_settings", {}, settings,
                  [&](const Device& device) { return Deliver(device.i18nSettings, settings); });
    if (status == WEBUI_SUCCESS) {
        binding::CheckLocale(*settings);
    }
    return status;
}

int webui_get_software_update_status(webui_software_update_status_t* status) {
    return AnswerOne("webui_get_software_update_status", {}, status, [&](const Device& device) {
        return Deliver(device.softwareUpdateStatus, status);
    });
}

int webui_get_software_installation_duration(int* duration) {
    return AnswerOne("webui_get_software_installation_duration", {}, duration,
                     [&](const Device& device) {
                         return Deliver(device.softwareInstallationDuration, duration);
                     });
}

int webui_get_software_update_custom_msgs(const char* language,
                                          SoftwareUpdateCustomMessages* messages) {
    return AnswerOne(
        "webui_get_software_update_custom_msgs", language, messages, [&](const Device& device) {
            return DeliverNamed(device.softwareUpdateCustomMsgs, language,
                                [&](const auto& answer) { return Deliver(answer, messages); });
        });
}
