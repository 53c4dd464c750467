// Tables from a number of the platform to a text.
#pragma once

#include <cstdint>
#include <span>
#include <string>

/// What a function returns that looks up the text of a number.
constexpr int kTextSet = 0;
constexpr int kTextNone = 200;

/// One row of a table.
struct ValueText {
    std::int32_t value;
    const char* text;
};

/// Stores the text of @p value in @p text and returns kTextSet. Without a row for it, returns
/// kTextNone and leaves @p text as it was.
int FindText(std::span<const ValueText> table, std::int32_t value, std::string& text);
