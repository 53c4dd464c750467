#include "framework/page_component.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "framework/attempt.h"
#include "framework/log.h"
#include "framework/nothrow_array.h"
#include "platform/fixed_text.h"
#include "platform/webui.h"

namespace {

/// More features or configurations than any device has.
constexpr std::size_t kUsualRecords = 10000;

/// Reads a list of the web UI configuration library. Its list calls are made twice: first for the
/// count, then with a buffer of so many records. Calls @p logCount between the two and @p store for
/// each record that was read, at most for as many as the buffer holds. Returns the status of the
/// last call. If something is thrown, or there is no memory for a list of a usual length, sets
/// @p cutShort, logs a failure of @p name in the name of the function with @p signature and returns
/// WEBUI_BUFFER_NEEDED.
template <typename Record, typename Call, typename LogCount, typename Store>
int ReadRecords(const char* signature, const char* name, bool& cutShort, Call call,
                LogCount logCount, Store store) {
    int status = WEBUI_BUFFER_NEEDED;
    const bool ended = Attempt(signature, name, [&] {
        int count = 0;
        status = call(nullptr, &count);
        if (status != WEBUI_BUFFER_NEEDED) {
            return;
        }
        logCount(count);
        const int room = std::max(count, 0);
        // At least one record, because a call without a buffer would ask for the count again.
        const auto length = static_cast<std::size_t>(std::max(room, 1));
        const auto buffer = NothrowArray<Record>(length);
        if (buffer == nullptr) {
            // A list of a usual length does not fit only because memory is short at the moment: the
            // next request tries again. A longer one would not fit then either.
            if (length <= kUsualRecords) {
                throw std::bad_alloc();
            }
            return;
        }
        count = room;
        status = call(buffer.get(), &count);
        if (status == WEBUI_SUCCESS) {
            std::for_each_n(buffer.get(), std::clamp(count, 0, room), store);
        }
    });
    if (ended) {
        return status;
    }
    cutShort = true;
    return WEBUI_BUFFER_NEEDED;
}

}  // namespace

int PageComponent::Hook0(CTPP::CDT& /*out*/, const CTPP::CDT& /*in*/) {
    return 0;
}

PageError PageComponent::GetDynamicData(CTPP::CDT& /*out*/, const CTPP::CDT& /*in*/) {
    return PAGE_ERROR_NONE;
}

int PageComponent::Hook2(CTPP::CDT& /*out*/, const CTPP::CDT& /*in*/) {
    return 0;
}

void PageComponent::Hook3(CTPP::CDT& /*out*/, const CTPP::CDT& /*in*/) {}

int PageComponent::ValidateFormData(const CTPP::CDT& /*in*/, CTPP::CDT& /*out*/) {
    return 0;
}

int PageComponent::Hook5(CTPP::CDT& /*out*/, const CTPP::CDT& /*in*/, CTPP::CDT& /*errors*/) {
    return 0;
}

PageError PageComponent::StoreData(const CTPP::CDT& /*in*/, CTPP::CDT& /*out*/) {
    return PAGE_ERROR_NONE;
}

void PageComponent::Init(std::string applicationName) {
    KESTAL_SIGNATURE("void PageComponent::Init(std::__cxx11::string)");
    KESTAL_BEGIN();
    cutShort = false;
    appName = std::move(applicationName);
    const int featuresStatus = GetFeatures();
    if (featuresStatus != WEBUI_SUCCESS) {
        KESTAL_FAILURE_UNSEPARATED(" Unable to read the app features, returned error code %d.",
                                   featuresStatus);
    }
    const int configurationsStatus = GetConfigurations();
    if (configurationsStatus != WEBUI_SUCCESS) {
        KESTAL_FAILURE_UNSEPARATED(
            " Unable to read the app configurations, returned error code %d.",
            configurationsStatus);
    }
    if (!appName.empty() &&
        !Attempt(signature, "GetURI", [this] { helpUri = GetURI((appName + "_help").c_str()); })) {
        cutShort = true;
    }
    KESTAL_END();
}

int PageComponent::GetFeatures() {
    KESTAL_SIGNATURE("int PageComponent::GetFeatures()");
    KESTAL_BEGIN();
    int status = WEBUI_SUCCESS;
    if (useCommonFeatures != 0) {
        status = ReadRecords<webui_feature_t>(
            signature, "webui_get_common_features", cutShort, webui_get_common_features,
            [](int count) {
                KESTAL_LOG_UNSEPARATED(TORU_DBG_INFO,
                                       " webui_get_common_features returned features_count: %d, "
                                       "allocate sufficient memory",
                                       count);
            },
            [this](const webui_feature_t& feature) {
                const std::string name = FixedText(feature.name);
                KESTAL_LOG_PLAIN(TORU_DBG_DEBUG, "[common] feature name - [%s] value - [%d]",
                                 name.c_str(), feature.value);
                features[name] = feature.value;
            });
        if (status != WEBUI_SUCCESS) {
            KESTAL_FAILURE_UNSEPARATED(
                " webui_get_common_features failed, returned error code %d. Try webui_cli "
                "get_common_features from command line.",
                status);
        }
    }
    if (!appName.empty()) {
        status = ReadRecords<webui_feature_t>(
            signature, "webui_get_app_features", cutShort,
            [this](webui_feature_t* buffer, int* count) {
                return webui_get_app_features(appName.c_str(), buffer, count);
            },
            [](int count) {
                KESTAL_LOG_UNSEPARATED(
                    TORU_DBG_INFO,
                    " webui_get_app_features returned features_count%d, allocate sufficient memory",
                    count);
            },
            [this](const webui_feature_t& feature) {
                const std::string name = FixedText(feature.name);
                KESTAL_LOG_PLAIN(TORU_DBG_DEBUG, "feature name - [%s] value - [%d]", name.c_str(),
                                 feature.value);
                features[name] = feature.value;
            });
        if (status != WEBUI_SUCCESS) {
            KESTAL_FAILURE_UNSEPARATED(
                " webui_get_app_features failed, returned error code %d. Try webui_cli "
                "get_app_features from command line.",
                status);
        }
    }
    KESTAL_END_RETURNING(status);
    return status;
}

int PageComponent::GetConfigurations() {
    KESTAL_SIGNATURE("int PageComponent::GetConfigurations()");
    KESTAL_BEGIN();
    int status = WEBUI_SUCCESS;
    if (useCommonConfigurations != 0) {
        status = ReadRecords<webui_configuration_t>(
            signature, "webui_get_common_configurations", cutShort, webui_get_common_configurations,
            [](int count) {
                KESTAL_LOG_UNSEPARATED(TORU_DBG_INFO,
                                       " webui_get_common_configurations returned "
                                       "configurations_count: %d, allocate sufficient memory",
                                       count);
            },
            [this](const webui_configuration_t& configuration) {
                const std::string name = FixedText(configuration.name);
                const std::string value = FixedText(configuration.value);
                KESTAL_LOG_PLAIN(TORU_DBG_DEBUG, "[common] configuration name - [%s] value - [%s]",
                                 name.c_str(), value.c_str());
                configurations[name] = value;
            });
        if (status != WEBUI_SUCCESS) {
            KESTAL_FAILURE_UNSEPARATED(
                " webui_get_common_configurations failed, returned error code %d. Try webui_cli "
                "get_common_configurations from command line.",
                status);
        }
    }
    if (!appName.empty()) {
        status = ReadRecords<webui_configuration_t>(
            signature, "webui_get_app_configurations", cutShort,
            [this](webui_configuration_t* buffer, int* count) {
                return webui_get_app_configurations(appName.c_str(), buffer, count);
            },
            [](int count) {
                KESTAL_LOG_UNSEPARATED(TORU_DBG_INFO,
                                       " webui_get_app_configurations returned "
                                       "configurations_count: %d, allocate sufficient memory",
                                       count);
            },
            [this](const webui_configuration_t& configuration) {
                const std::string name = FixedText(configuration.name);
                const std::string value = FixedText(configuration.value);
                KESTAL_LOG_PLAIN(TORU_DBG_INFO, "configuration name - [%s] value - [%s]",
                                 name.c_str(), value.c_str());
                configurations[name] = value;
            });
        if (status != WEBUI_SUCCESS) {
            KESTAL_FAILURE_UNSEPARATED(
                " webui_get_app_configurations failed, returned error code %d. Try webui_cli "
                "get_app_configurations from command line.",
                status);
        }
    }
    KESTAL_END_RETURNING(status);
    return status;
}

std::string PageComponent::GetURI(const char* uriId) const {
    KESTAL_SIGNATURE("std::__cxx11::string PageComponent::GetURI(const char*) const");
    KESTAL_BEGIN();
    std::string uri;
    webui_uri_data_t data{};
    const int status = webui_get_uri_data(uriId, &data);
    if (status == WEBUI_SUCCESS) {
        uri = FixedText(data.address);
        KESTAL_DEBUG_UNSEPARATED(" Friendly uri : %s for uri_id %s", uri.c_str(), uriId);
    } else {
        KESTAL_FAILURE_UNSEPARATED(
            " webui_get_uri_data failed, returned error code %d. Try webui_cli get_uri_data from "
            "command line.",
            status);
    }
    KESTAL_DEBUG("END returning %s", uri.c_str());
    return uri;
}

std::string PageComponent::GetExternalURI(const char* uriId) const {
    KESTAL_SIGNATURE("std::__cxx11::string PageComponent::GetExternalURI(const char*) const");
    KESTAL_BEGIN();
    std::string uri;
    webui_external_uri_data_t data{};
    const int status = webui_get_external_uri_data(uriId, &data);
    if (status == WEBUI_SUCCESS) {
        uri = FixedText(data.address);
        KESTAL_DEBUG_UNSEPARATED(" Friendly uri : %s for uri_id %s\n", uri.c_str(), uriId);
    } else {
        KESTAL_FAILURE_UNSEPARATED(
            " webui_get_external_uri_data failed, returned error code %d. Try webui_cli "
            "get_external_uri_data from command line.\n",
            status);
    }
    KESTAL_DEBUG("END returning %s", uri.c_str());
    return uri;
}

std::optional<INT_64> PageComponent::ConfigurationNumber(const std::string& name) const {
    // CTPP::CDT::Exists throws on a tree that is still undefined because nothing was loaded.
    bool exists = false;
    const CTPP::CDT& value = configurations.GetExistedCDT(name, exists);
    return exists ? std::optional<INT_64>(value.GetInt()) : std::nullopt;
}
