// What holds for every answer of the service.
#pragma once

#include <string>
#include <string_view>

/// Whether all of @p text is UTF-8.
bool IsUtf8(std::string_view text);

/// Requires the answer to be JSON. Texts that are not UTF-8 are copied into it byte by byte, so
/// that the answer may not be UTF-8 either; its structure is checked all the same.
void RequireJson(const std::string& answer);
