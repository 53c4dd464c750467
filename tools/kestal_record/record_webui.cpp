// The object "webui": what the web UI configuration library answers.
#include <utf8.h>

#include "platform/fixed_text.h"
#include "platform/webui.h"
#include "tools/described.h"
#include "tools/kestal_record/document_form.h"
#include "tools/kestal_record/record_device.h"
#include "tools/kestal_record/usual_names.h"

namespace {

Json ValueOf(const webui_feature_t& feature) {
    return feature.value;
}

Json ValueOf(const webui_configuration_t& configuration) {
    return RawText(FixedText(configuration.value), sizeof configuration.value);
}

/// The list that @p read(buffer, count) reads, as an object. Of records with the same name, the
/// last one counts, as for the web UI.
template <typename Record, typename Read>
Json NamesAndValues(const std::string& call, const Codes& codes, Remarks& remarks, Read read) {
    return ListAnswer<Record, int>(
        call, codes, WEBUI_BUFFER_NEEDED, read, [&](const std::vector<Record>& records) {
            Json object = Json::object();
            for (const Record& record : records) {
                const std::string name = FixedText(record.name);
                if (name.size() < sizeof record.name && utf8::is_valid(name.begin(), name.end())) {
                    object[name] = ValueOf(record);
                } else {
                    remarks.insert(call +
                                   " has a name that is not UTF-8 or not terminated; it is "
                                   "left out");
                }
            }
            // Such an object would be read as a failure.
            if (object.contains("error")) {
                object.erase("error");
                remarks.insert(call + " has the name 'error', which a document cannot have");
            }
            return object;
        });
}

/// @p call fills a record.
template <typename Record, typename Call>
Json Answer(const Codes& codes, Call call) {
    Record record{};
    const int code = call(&record);
    return code == codes.success ? WithoutNames(Described(record, RawText))
                                 : FailureOf(codes, code);
}

template <typename Record>
Json AnswerOn(const Codes& codes, int (*call)(const char*, Record*), const std::string& name) {
    return Answer<Record>(codes, [&](Record* record) { return call(name.c_str(), record); });
}

Json ExternalPage(const Codes& codes, const std::string& name) {
    const Json answer = AnswerOn(codes, webui_get_external_uri_data, name);
    return answer.contains("address") ? answer.at("address") : answer;
}

Json InstallationDuration(const Codes& codes) {
    int duration = 0;
    const int code = webui_get_software_installation_duration(&duration);
    return code == codes.success ? Json(duration) : FailureOf(codes, code);
}

/// Languages whose texts are asked for: also the one in use.
std::vector<std::string> Languages(const std::vector<std::string>& names) {
    std::vector<std::string> all = names;
    webui_i18n_settings_t settings{};
    if (webui_get_i18n_settings(&settings) == WEBUI_SUCCESS) {
        const std::string language = FixedText(settings.language);
        if (!language.empty() && utf8::is_valid(language.begin(), language.end())) {
            all.push_back(language);
        }
    }
    return With(all, kUsualLanguages);
}

}  // namespace

Json RecordWebui(const Questions& questions, Remarks& remarks) {
    const Codes codes = {WEBUI_SUCCESS, binding::kWebuiStatus, questions.bindingCodes,
                         WEBUI_SUCCESS};
    const std::vector<std::string> pages = With(questions.names, kUsualPages);
    Json webui = Json::object();
    webui["commonFeatures"] = NamesAndValues<webui_feature_t>("webui_get_common_features", codes,
                                                              remarks, webui_get_common_features);
    webui["appFeatures"] = AnswersByName(pages, [&](const std::string& app) {
        return NamesAndValues<webui_feature_t>(
            "webui_get_app_features", codes, remarks, [&](webui_feature_t* buffer, int* count) {
                return webui_get_app_features(app.c_str(), buffer, count);
            });
    });
    webui["commonConfigurations"] = NamesAndValues<webui_configuration_t>(
        "webui_get_common_configurations", codes, remarks, webui_get_common_configurations);
    webui["appConfigurations"] = AnswersByName(pages, [&](const std::string& app) {
        return NamesAndValues<webui_configuration_t>(
            "webui_get_app_configurations", codes, remarks,
            [&](webui_configuration_t* buffer, int* count) {
                return webui_get_app_configurations(app.c_str(), buffer, count);
            });
    });
    webui["uriData"] = AnswersByName(
        pages, [&](const std::string& page) { return AnswerOn(codes, webui_get_uri_data, page); });
    webui["externalUriData"] =
        AnswersByName(With(questions.names, kUsualExternalPages),
                      [&](const std::string& page) { return ExternalPage(codes, page); });
    webui["i18nSettings"] = Answer<webui_i18n_settings_t>(codes, webui_get_i18n_settings);
    webui["softwareUpdateStatus"] =
        Answer<webui_software_update_status_t>(codes, webui_get_software_update_status);
    webui["softwareInstallationDuration"] = InstallationDuration(codes);
    webui["softwareUpdateCustomMsgs"] =
        AnswersByName(Languages(questions.names), [&](const std::string& language) {
            return AnswerOn(codes, webui_get_software_update_custom_msgs, language);
        });
    return webui;
}
