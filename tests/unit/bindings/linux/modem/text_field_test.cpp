#include "bindings/linux/text_field.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/fixed_text.h"

namespace {

using binding::FittingText;
using binding::PutText;

TEST(TextField, ATextThatFitsStaysAsItIs) {
    EXPECT_EQ(FittingText("Orvane", 6), "Orvane");
    EXPECT_EQ(FittingText("", 6), "");
    EXPECT_EQ(FittingText("\"><script>", 64), "\"><script>");
}

TEST(TextField, ALongTextEndsAtTheEndOfACharacter) {
    EXPECT_EQ(FittingText("Orvane", 5), "Orvan");
    EXPECT_EQ(FittingText("a\u00e4", 2), "a");
    EXPECT_EQ(FittingText("a\u00e4", 3), "a\u00e4");
    EXPECT_EQ(FittingText("\u65e5\u672c", 5), "\u65e5");
    EXPECT_EQ(FittingText("\U0001F4F6", 3), "");
    EXPECT_EQ(FittingText("Orvane", 0), "");
}

TEST(TextField, WhatIsNoUtf8IsReplaced) {
    EXPECT_EQ(FittingText("T\xFCrk", 64), "T\uFFFDrk");
    EXPECT_EQ(FittingText("cut\xE6\x97", 64), "cut\uFFFD");
    EXPECT_EQ(FittingText("\xFF\xFF\xFF", 4), "\uFFFD");
}

TEST(TextField, AZeroByteEndsTheText) {
    EXPECT_EQ(FittingText(std::string_view("Or\0vane", 7), 64), "Or");
}

TEST(TextField, AFieldIsFilledToItsEnd) {
    char field[8];
    std::memset(field, 'x', sizeof(field));
    PutText(field, "Orvane Mobile");
    EXPECT_EQ(FixedText(field), "Orvane ");
    EXPECT_EQ(field[7], '\0');
    PutText(field, "No");
    EXPECT_EQ(FixedText(field), "No");
    for (std::size_t index = 2; index < sizeof(field); ++index) {
        EXPECT_EQ(field[index], '\0') << index;
    }
}

}  // namespace
