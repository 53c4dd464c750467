#include "components/systemservice/custom_message_cache.h"

#include "components/systemservice/notification_list_signature.h"
#include "framework/fixed_text.h"
#include "framework/log.h"

namespace {

KESTAL_SIGNATURE(kNotificationListSignature);

enum class Update { kNone, kReady, kSuccess, kFailure };

Update UpdateOf(const std::string& type) {
    if (type == "softwareUpdate") {
        return Update::kReady;
    }
    if (type == "softwareUpdateSuccess") {
        return Update::kSuccess;
    }
    if (type == "softwareUpdateFailure") {
        return Update::kFailure;
    }
    return Update::kNone;
}

std::string TextFor(Update update, const SoftwareUpdateCustomMessages& messages) {
    switch (update) {
        case Update::kReady:
            return FixedText(messages.description);
        case Update::kSuccess:
            return FixedText(messages.installSuccess);
        case Update::kFailure:
            return FixedText(messages.installFail);
        default:
            return "";
    }
}

/// Logs that the notification shows @p text. The text that it replaces is not known yet: it would
/// be looked up only afterwards.
void LogReplacement(Update update, const std::string& text) {
    const char* const replaced = "";
    switch (update) {
        case Update::kReady:
            KESTAL_DEBUG("[%s]:[%s] - %s - Replace SU_READY [%s]-->[%s]", replaced, text.c_str());
            break;
        case Update::kSuccess:
            KESTAL_DEBUG("[%s]:[%s] - %s - Replace SU_SUCCESS [%s]-->[%s]", replaced, text.c_str());
            break;
        case Update::kFailure:
            KESTAL_DEBUG("[%s]:[%s] - %s - Replace SU_FAIL [%s]-->[%s]", replaced, text.c_str());
            break;
        default:
            break;
    }
}

}  // namespace

std::string CustomMessageCache::Text(const std::string& type) {
    const Update update = UpdateOf(type);
    if (update == Update::kNone) {
        return "";
    }
    const bool fetched = Refresh();
    std::string text = TextFor(update, messages);
    if (fetched && !text.empty()) {
        LogReplacement(update, text);
    }
    return text;
}

bool CustomMessageCache::Refresh() {
    webui_i18n_settings_t settings{};
    const int settingsStatus = webui_get_i18n_settings(&settings);
    if (settingsStatus != WEBUI_SUCCESS) {
        language = "en";
        KESTAL_FAILURE(
            "[%s]:[%s] - %s - webui_get_i18n_settings failed, returned error %d. Try webui_cli "
            "get_i18n_settings from command line.",
            settingsStatus);
    }
    const std::string chosen = FixedText(settings.language);
    if (loaded && language == chosen && !FixedText(messages.description).empty()) {
        return false;
    }
    language = chosen;
    messages = {};
    const int status = webui_get_software_update_custom_msgs(language.c_str(), &messages);
    if (status != WEBUI_SUCCESS) {
        // A call that failed has nothing to say, whatever it wrote.
        messages = {};
        KESTAL_FAILURE(
            "[%s]:[%s] - %s - webui_get_software_update_custom_msgs failed, returned error %d. Try "
            "webui_cli get_software_update_custom_msgs from command line.",
            status);
        return false;
    }
    loaded = true;
    return true;
}
