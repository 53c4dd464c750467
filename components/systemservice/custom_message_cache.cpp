#include "components/systemservice/custom_message_cache.h"

#include <optional>
#include <string_view>

#include "framework/log.h"
#include "platform/fixed_text.h"

namespace {

enum class Update { kReady, kSuccess, kFailure };

std::optional<Update> UpdateOf(std::string_view type) {
    if (type == "softwareUpdate") {
        return Update::kReady;
    }
    if (type == "softwareUpdateSuccess") {
        return Update::kSuccess;
    }
    if (type == "softwareUpdateFailure") {
        return Update::kFailure;
    }
    return std::nullopt;
}

std::string TextFor(Update update, const SoftwareUpdateCustomMessages& messages) {
    if (update == Update::kReady) {
        return FixedText(messages.description);
    }
    return FixedText(update == Update::kSuccess ? messages.installSuccess : messages.installFail);
}

/// Logs that the notification shows @p text in place of the text of the catalogue. The line has a
/// place for the replaced text, which is always empty: that text has not been looked up.
void LogReplacement(const char* signature, Update update, const std::string& text) {
    const char* const replaced = "";
    if (update == Update::kReady) {
        KESTAL_DEBUG("Replace SU_READY [%s]-->[%s]", replaced, text.c_str());
    } else if (update == Update::kSuccess) {
        KESTAL_DEBUG("Replace SU_SUCCESS [%s]-->[%s]", replaced, text.c_str());
    } else {
        KESTAL_DEBUG("Replace SU_FAIL [%s]-->[%s]", replaced, text.c_str());
    }
}

}  // namespace

std::string CustomMessageCache::Text(const char* signature, const std::string& type) {
    const std::optional<Update> update = UpdateOf(type);
    if (!update) {
        return "";
    }
    const bool fetched = Refresh(signature);
    std::string text = TextFor(*update, messages);
    if (fetched && !text.empty()) {
        LogReplacement(signature, *update, text);
    }
    return text;
}

bool CustomMessageCache::Refresh(const char* signature) {
    webui_i18n_settings_t settings{};
    const int settingsStatus = webui_get_i18n_settings(&settings);
    if (settingsStatus != WEBUI_SUCCESS) {
        language = "en";
        KESTAL_FAILURE(
            "webui_get_i18n_settings failed, returned error %d. Try webui_cli get_i18n_settings "
            "from command line.",
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
        // Discards what the failed call may have written.
        messages = {};
        KESTAL_FAILURE(
            "webui_get_software_update_custom_msgs failed, returned error %d. Try webui_cli "
            "get_software_update_custom_msgs from command line.",
            status);
        return false;
    }
    loaded = true;
    return true;
}
