// Checks that every answer of the service must pass.
#pragma once

#include <string>
#include <string_view>

/// Whether all of @p text is UTF-8.
bool IsUtf8(std::string_view text);

/// Requires the answer to be JSON. The service copies texts that are not UTF-8 into the answer
/// unchanged, so the answer may not be UTF-8 either; only its structure is checked then.
void RequireJson(const std::string& answer);
