#include "bindings/device/locale_check.h"

#include <libintl.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <memory>
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
    // newlocale would leave the locale as it is, but glibc never frees the search path that it
    // makes of LOCPATH.
    const std::unique_ptr<char, decltype(&std::free)> before(
        strdup(std::setlocale(LC_MESSAGES, nullptr)), &std::free);
    if (before == nullptr) {
        return;
    }
    errno = 0;
    const bool found = std::setlocale(LC_MESSAGES, language) != nullptr;
    const bool missing = !found && errno != ENOMEM;
    if (found) {
        (void)std::setlocale(LC_MESSAGES, before.get());
    }
    if (missing) {
        BINDING_LOG(
            TORU_DBG_ERROR,
            "the machine has no locale %s: texts stay in the language before it, or untranslated",
            language);
    }
}

}  // namespace binding
