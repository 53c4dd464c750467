#include "bindings/linux/board_document.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "bindings/document/device_reader.h"
#include "bindings/document/read_document.h"
#include "platform/sysint_queries.h"

namespace binding {

namespace {

constexpr const char* kSettingsName = "linux";

/// On a real board, actions take the time that they take.
void MustNotTakeTime(const std::string& name, bool takesTime) {
    if (takesTime) {
        const KeyPath path = {"sys", name};
        throw ValueError(path, PathText(path) + ": only a simulated device changes by itself");
    }
}

BoardDocument Compile(nlohmann::ordered_json document, const Faults& earlier) {
    BoardDocument board;
    if (document.is_object() && document.contains(kSettingsName)) {
        const Node root(document);
        ReadSettings(root.Member(kSettingsName), board.settings);
        document.erase(kSettingsName);
    }
    board.device = CompileDevice(document, earlier);
    const Device& device = board.device;
    MustNotTakeTime("cellularDataConnect", device.cellularDataConnect.value.takes.count() != 0);
    MustNotTakeTime("cellularDataDisconnect",
                    device.cellularDataDisconnect.value.takes.count() != 0);
    MustNotTakeTime("getCellularDataConnectionStatus", device.statusChange.has_value());
    return board;
}

template <typename T>
void Replace(Answer<T>& answer, const Answer<T>& by) {
    if (by.named) {
        answer = by;
    } else if (by.fault) {
        answer.fault = by.fault;
    }
}

template <typename T>
void Replace(IndexedAnswer<T>& answer, const IndexedAnswer<T>& by) {
    if (by.fault) {
        answer.fault = by.fault;
    }
    Replace(answer.every, by.every);
    for (const auto& [index, one] : by.byIndex) {
        answer.byIndex[index] = one;
    }
}

/// A document that names some fields says nothing of the others.
template <typename T>
void Merge(Answer<NamedAnswers<T>>& answers, const Answer<NamedAnswers<T>>& by) {
    if (by.fault) {
        answers.fault = by.fault;
    }
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

}  // namespace

std::string BoardDocumentPath() {
    const char* const path = std::getenv("KESTAL_DEVICE");
    return path == nullptr || *path == '\0' ? KESTAL_BOARD_DOCUMENT : path;
}

BoardDocument ReadBoardDocument(const std::string& file, const std::string& text,
                                const Faults& earlier) {
    return ReadDocument(file, text, [&](nlohmann::ordered_json document) {
        return Compile(std::move(document), earlier);
    });
}

void Overlay(Device& device, const Device& document) {
    device.faults = document.faults;
    Replace(device.sdkInitialize, document.sdkInitialize);
    Replace(device.cellularDataConnect, document.cellularDataConnect);
    Replace(device.cellularDataDisconnect, document.cellularDataDisconnect);
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
