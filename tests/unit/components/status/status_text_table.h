// Checks a converter from a platform value to a text against the table of all texts.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <string>

using StatusTextConverter = std::function<int(std::int32_t, std::string&)>;

/// Expects that exactly the values in @p texts have a text and that every other value leaves the
/// string unchanged.
inline void ExpectStatusTexts(const StatusTextConverter& convert,
                              const std::map<std::int32_t, std::string>& texts) {
    std::string text;
    for (std::int32_t value = -3; value < 32; ++value) {
        text = "untouched";
        const auto expected = texts.find(value);
        if (expected == texts.end()) {
            EXPECT_EQ(convert(value, text), 200) << value;
            EXPECT_EQ(text, "untouched") << value;
        } else {
            EXPECT_EQ(convert(value, text), 0) << value;
            EXPECT_EQ(text, expected->second) << value;
        }
    }
    for (const std::int32_t value :
         {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
        text = "untouched";
        EXPECT_EQ(convert(value, text), 200) << value;
        EXPECT_EQ(text, "untouched") << value;
    }
}
