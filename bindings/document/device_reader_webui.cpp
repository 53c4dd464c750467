// The object "webui": what the web UI configuration library answers.
#include <algorithm>
#include <string>

#include "bindings/document/device_reader.h"

namespace binding {

namespace {

/// Puts the name of a member into a record.
void ReadName(const Node& member, const std::string& name, std::span<char> field) {
    if (name.size() >= field.size() || name.find('\0') != std::string::npos) {
        member.Expected("a name of at most " + std::to_string(field.size() - 1) + " bytes",
                        "one of " + std::to_string(name.size()));
    }
    std::copy(name.begin(), name.end(), field.begin());
}

/// An object of names and values.
template <typename Record>
void ReadRecords(const Node& node, std::vector<Record>& records) {
    node.MustBeObject();
    for (const std::string& name : node.MemberNames()) {
        const Node member = node.Member(name);
        Record& record = records.emplace_back();
        ReadName(member, name, record.name);
        Read(member, record.value);
    }
}

template <typename T, typename ReadValue>
void ReadSingle(Members& webui, const std::string& name, Answer<T>& answer, ReadValue readValue) {
    if (const auto member = webui.Find(name)) {
        ReadAnswer(*member, answer, readValue);
    }
}

template <typename T, typename ReadValue>
void ReadNamed(Members& webui, const std::string& name, Answer<NamedAnswers<T>>& answer,
               ReadValue readValue) {
    if (const auto member = webui.Find(name)) {
        ReadNamedAnswers(*member, answer, readValue);
    }
}

void ReadUriData(const Node& node, webui_uri_data_t& data) {
    Members(node).Field("address", data.address).Field("titleId", data.titleId).RejectOthers();
}

void ReadExternalUriData(const Node& node, webui_external_uri_data_t& data) {
    Read(node, data.address);
}

void ReadI18nSettings(const Node& node, webui_i18n_settings_t& settings) {
    Members(node).Field("language", settings.language).RejectOthers();
}

void ReadSoftwareUpdateStatus(const Node& node, webui_software_update_status_t& status) {
    Members(node)
        .Field("status", status.status)
        .Field("userInitiated", status.userInitiated)
        .Field("value", status.value)
        .Field("version", status.version)
        .RejectOthers();
}

void ReadDuration(const Node& node, std::int32_t& duration) {
    Read(node, duration);
}

void ReadCustomMessages(const Node& node, SoftwareUpdateCustomMessages& messages) {
    Members(node)
        .Field("description", messages.description)
        .Field("download", messages.download)
        .Field("readyToInstall", messages.readyToInstall)
        .Field("installSuccess", messages.installSuccess)
        .Field("installFail", messages.installFail)
        .RejectOthers();
}

}  // namespace

void ReadWebui(const Node& node, Device& device) {
    Members webui(node);
    ReadSingle(webui, "commonFeatures", device.commonFeatures, ReadRecords<webui_feature_t>);
    ReadSingle(webui, "commonConfigurations", device.commonConfigurations,
               ReadRecords<webui_configuration_t>);
    ReadNamed(webui, "appFeatures", device.appFeatures, ReadRecords<webui_feature_t>);
    ReadNamed(webui, "appConfigurations", device.appConfigurations,
              ReadRecords<webui_configuration_t>);
    ReadNamed(webui, "uriData", device.uriData, ReadUriData);
    ReadNamed(webui, "externalUriData", device.externalUriData, ReadExternalUriData);
    ReadSingle(webui, "i18nSettings", device.i18nSettings, ReadI18nSettings);
    ReadSingle(webui, "softwareUpdateStatus", device.softwareUpdateStatus,
               ReadSoftwareUpdateStatus);
    ReadSingle(webui, "softwareInstallationDuration", device.softwareInstallationDuration,
               ReadDuration);
    ReadNamed(webui, "softwareUpdateCustomMsgs", device.softwareUpdateCustomMsgs,
              ReadCustomMessages);
    webui.RejectOthers();
}

}  // namespace binding
