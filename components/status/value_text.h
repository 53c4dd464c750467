#pragma once

#include <cstdint>
#include <span>
#include <string>

/// One row of a table from a platform value to its text.
struct ValueText {
    std::int32_t value;
    const char* text;
};

/// Stores the text of @p value and returns kStatusTextSet; without a row for it, returns
/// kStatusTextNone and leaves @p text as it was.
int FindText(std::span<const ValueText> table, std::int32_t value, std::string& text);
