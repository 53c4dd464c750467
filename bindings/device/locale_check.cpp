#include "bindings/device/locale_check.h"

#include <libintl.h>

#include <cerrno>
#include <clocale>
#include <cstring>
#include <string_view>

#include "bindings/log.h"

namespace binding {

void CheckLocale(const webui_i18n_settings_t& settings) noexcept {
    // What gettext tells if the program has chosen none.
    constexpr std::string_view kNoDomain = "messages";
    if (textdomain(nullptr) == kNoDomain) {
        return;
    }
    thread_local webui_i18n_settings_t checked{};
    if (std::memcmp(&checked, &settings, sizeof(settings)) == 0) {
        return;
    }
    checked = settings;
    char language[sizeof(settings.language) + 1] = {};
    std::memcpy(language, settings.language, sizeof(settings.language));
    const locale_t found = newlocale(LC_MESSAGES_MASK, language, nullptr);
    if (found != nullptr) {
        freelocale(found);
    } else if (errno == ENOENT) {
        BINDING_LOG(
            TORU_DBG_ERROR,
            "the machine has no locale %s: texts stay in the language before it, or untranslated",
            language);
    }
}

}  // namespace binding
