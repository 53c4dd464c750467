#include "components/status/status_component.h"
#include "framework/log.h"
#include "platform/fixed_text.h"
#include "platform/webui.h"

namespace {

/// Longest language code in which the carrier's messages are asked for, in characters.
constexpr std::size_t kLanguageCodeLimit = 11;

/// Whether the page shows the carrier's messages in this state of the update.
bool HasCustomMessages(const webui_software_update_status_t& update) {
    switch (update.status) {
        case 4:
        case 5:
        case 6:
        case 8:
        case 10:
            return true;
        case 9:
            return update.value == 2;
        default:
            return false;
    }
}

void SetCustomMessages(CTPP::CDT& statusData, const SoftwareUpdateCustomMessages& messages) {
    statusData["StatusBarSoftwareUpdateCustomDesc"] = FixedText(messages.description);
    statusData["StatusBarSoftwareUpdateCustomDownloadMsg"] = FixedText(messages.download);
    statusData["StatusBarSoftwareUpdateCustomReadyToInstallMsg"] =
        FixedText(messages.readyToInstall);
    statusData["StatusBarSoftwareUpdateCustomInstallSuccessMsg"] =
        FixedText(messages.installSuccess);
    statusData["StatusBarSoftwareUpdateCustomInstallFailMsg"] = FixedText(messages.installFail);
}

}  // namespace

void StatusComponent::GetSoftwareUpdateStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetSoftwareUpdateStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    // Write all keys with their defaults and keep references to the values: to set them later takes
    // no second search in the tree.
    CTPP::CDT& status = statusData["StatusBarSoftwareUpdateStatus"] = 0;
    CTPP::CDT& value = statusData["StatusBarSoftwareUpdateValue"] = 0;
    CTPP::CDT& version = statusData["StatusBarSoftwareUpdateVersion"] = "";
    CTPP::CDT& userInitiated = statusData["StatusBarSoftwareUpdateUserInitiated"] = 0;
    CTPP::CDT& installationDuration = statusData["StatusBarSoftwareUpdateInstallationDuration"] = 0;
    SoftwareUpdateCustomMessages messages{};
    SetCustomMessages(statusData, messages);

    webui_software_update_status_t update{};
    const int updateResult = webui_get_software_update_status(&update);
    if (updateResult == WEBUI_SUCCESS) {
        status = update.status;
        value = update.value;
        version = FixedText(update.version);
        userInitiated = update.userInitiated;
        KESTAL_DEBUG("webui_get_software_update_status success, status[%d]  value[%d]",
                     update.status, update.value);
    } else {
        update = {};
        KESTAL_FAILURE(
            "webui_get_software_update_status failed, returned error %d. Try webui_cli "
            "get_software_update_status from command line.",
            updateResult);
    }

    int duration = 0;
    const int durationResult = webui_get_software_installation_duration(&duration);
    if (durationResult == WEBUI_SUCCESS) {
        installationDuration = duration;
        KESTAL_DEBUG("software installation duration is [%d]", duration);
    } else {
        KESTAL_FAILURE(
            "webui_get_software_installation_duration failed, returned error %d. Try webui_cli "
            "software_installation_duration from command line.",
            durationResult);
    }

    webui_i18n_settings_t settings{};
    const int settingsResult = webui_get_i18n_settings(&settings);
    if (settingsResult != WEBUI_SUCCESS) {
        settings = {};
        KESTAL_FAILURE(
            "webui_get_i18n_settings failed, returned error %d. Try webui_cli get_i18n_settings "
            "from command line.",
            settingsResult);
    }

    // Read for every request and not cached, because the carrier may change its messages while
    // neither the state nor the language changes.
    if (HasCustomMessages(update)) {
        const std::string language = FixedText(settings.language).substr(0, kLanguageCodeLimit);
        const int messagesResult =
            webui_get_software_update_custom_msgs(language.c_str(), &messages);
        if (messagesResult == WEBUI_SUCCESS) {
            SetCustomMessages(statusData, messages);
        } else {
            KESTAL_FAILURE(
                "webui_get_software_update_custom_msgs failed, returned error %d. Try webui_cli "
                "get_software_update_custom_msgs from command line.",
                messagesResult);
        }
    }
    KESTAL_END();
}
