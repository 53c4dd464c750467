#pragma once

#include "platform/webui.h"

namespace binding {

/// Logs that the machine has no locale for the language of @p settings, once until the language is
/// another one. gettext then translates nothing, and says nothing. Programs that show no texts,
/// which have no text domain, need none.
void CheckLocale(const webui_i18n_settings_t& settings) noexcept;

}  // namespace binding
