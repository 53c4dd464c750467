#include "bindings/linux/board_document.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "bindings/document/device_reader.h"
#include "bindings/document/read_document.h"
#include "platform/sysint_queries.h"

namespace binding {

namespace {

constexpr const char* kSettingsName = "linux";

BoardDocument Compile(nlohmann::ordered_json document) {
    BoardDocument board;
    if (document.is_object() && document.contains(kSettingsName)) {
        const Node root(document);
        ReadSettings(root.Member(kSettingsName), board.settings);
        document.erase(kSettingsName);
    }
    board.device = CompileDevice(document);
    return board;
}

template <typename T>
void Replace(Answer<T>& answer, const Answer<T>& by) {
    if (by.named) {
        answer = by;
    }
}

template <typename T>
void Replace(IndexedAnswer<T>& answer, const IndexedAnswer<T>& by) {
    Replace(answer.every, by.every);
    for (const auto& [index, one] : by.byIndex) {
        answer.byIndex[index] = one;
    }
}

/// A document that names some fields says nothing of the others.
template <typename T>
void Merge(Answer<NamedAnswers<T>>& answers, const Answer<NamedAnswers<T>>& by) {
    if (!by.named) {
        return;
    }
    if (by.error != 0 || answers.error != 0) {
        answers = by;
        return;
    }
    answers.named = true;
    for (const auto& [name, one] : by.value) {
        answers.value[name] = one;
    }
}

void ReplaceCode(int& code, int by) {
    if (by != 0) {
        code = by;
    }
}

}  // namespace

std::string BoardDocumentPath() {
    const char* const path = std::getenv("KESTAL_DEVICE");
    return path == nullptr || *path == '\0' ? KESTAL_BOARD_DOCUMENT : path;
}

BoardDocument ReadBoardDocument(const std::string& file, const std::string& text) {
    return ReadDocument(file, text, Compile);
}

void Overlay(Device& device, const Device& document) {
    ReplaceCode(device.sdkInitialize, document.sdkInitialize);
    ReplaceCode(device.cellularDataConnect, document.cellularDataConnect);
    ReplaceCode(device.cellularDataDisconnect, document.cellularDataDisconnect);
#define DEVICE_REPLACE_ANSWER(Type, name, Meaning, field, description) \
    Replace(device.name, document.name);
    SYSINT_QUERIES(DEVICE_REPLACE_ANSWER)
#undef DEVICE_REPLACE_ANSWER
    Replace(device.getSIMCarrierGID, document.getSIMCarrierGID);
    Replace(device.getModemMnsInfo, document.getModemMnsInfo);
    Replace(device.getCellular5GBand, document.getCellular5GBand);
    Replace(device.getConnectedDeviceList, document.getConnectedDeviceList);
    Replace(device.getWiFiGuestProfileEnabled, document.getWiFiGuestProfileEnabled);
#define DEVICE_MERGE_ANSWERS(name, Subject, field, description) Merge(device.name, document.name);
    SYSINT_NAMED_QUERIES(DEVICE_MERGE_ANSWERS)
#undef DEVICE_MERGE_ANSWERS
    Replace(device.commonFeatures, document.commonFeatures);
    Merge(device.appFeatures, document.appFeatures);
    Replace(device.commonConfigurations, document.commonConfigurations);
    Merge(device.appConfigurations, document.appConfigurations);
    Merge(device.uriData, document.uriData);
    Merge(device.externalUriData, document.externalUriData);
    Replace(device.i18nSettings, document.i18nSettings);
    Replace(device.softwareUpdateStatus, document.softwareUpdateStatus);
    Replace(device.softwareInstallationDuration, document.softwareInstallationDuration);
    Merge(device.softwareUpdateCustomMsgs, document.softwareUpdateCustomMsgs);
    for (const auto& [name, channel] : document.channels) {
        device.channels[name] = channel;
    }
}

}  // namespace binding
