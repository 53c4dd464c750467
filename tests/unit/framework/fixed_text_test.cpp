#include "platform/fixed_text.h"

#include <gtest/gtest.h>

TEST(FixedText, EndsAtTheTerminator) {
    const char field[8] = {'a', 'b', '\0', 'x', 'y', '\0', '\0', '\0'};
    EXPECT_EQ(FixedText(field), "ab");
}

TEST(FixedText, EndsWithTheFieldWhenThereIsNoTerminator) {
    const struct {
        char field[3];
        char neighbour[3];
    } record = {{'a', 'b', 'c'}, {'d', 'e', '\0'}};
    EXPECT_EQ(FixedText(record.field), "abc");
}

TEST(FixedText, IsEmptyForAnEmptyField) {
    const char field[4] = {};
    EXPECT_EQ(FixedText(field), "");
}
