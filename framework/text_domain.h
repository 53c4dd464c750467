#pragma once

/// gettext domain of every text for the user.
constexpr const char* kTextDomain = "webui";
