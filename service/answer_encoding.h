#pragma once

#include <string>

/// Makes @p json valid UTF-8: replaces each invalid sequence by U+FFFD and leaves valid text as it
/// is. Names of networks, clients and messages come from outside and may hold any bytes, which the
/// answer tree writes unchanged; one invalid byte would make a JSON parser reject the whole answer.
/// Returns whether anything was replaced.
bool ReplaceInvalidUtf8(std::string& json);
