// What holds for every answer of the service.
#pragma once

#include <string>
#include <string_view>

/// Whether @p text is UTF-8 throughout.
bool IsUtf8(std::string_view text);

/// The answer is JSON. Texts that are no UTF-8 are copied byte by byte and only they may break it:
/// its structure is looked at all the same.
void RequireJson(const std::string& answer);
