#include "service/answer_encoding.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const std::string kMark = "\xEF\xBF\xBD";

std::string Replaced(std::string json) {
    EXPECT_TRUE(ReplaceInvalidUtf8(json));
    return json;
}

TEST(AnswerEncodingTest, ValidTextStaysAsItIs) {
    for (const std::string valid :
         {"", "{\"a\":\"b\"}", "\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x93\xB6", "\xEF\xBB\xBF",
          "\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF", "\x7F\xC2\x80"}) {
        std::string json = valid;
        EXPECT_FALSE(ReplaceInvalidUtf8(json)) << valid;
        EXPECT_EQ(json, valid);
    }
}

TEST(AnswerEncodingTest, EachWrongByteBecomesOneReplacementCharacter) {
    EXPECT_EQ(Replaced("{\"a\":\"\xFF\xFE\"}"), "{\"a\":\"" + kMark + kMark + "\"}");
    EXPECT_EQ(Replaced("Caf\xE9"), "Caf" + kMark);
    EXPECT_EQ(Replaced("\x80"), kMark);
}

TEST(AnswerEncodingTest, IncompleteCharacterDoesNotSwallowTheNextByte) {
    EXPECT_EQ(Replaced("\"\xC3\""), "\"" + kMark + "\"");
    EXPECT_EQ(Replaced("\"\xE2\x82\","), "\"" + kMark + "\",");
    EXPECT_EQ(Replaced("\"\xF0\x9F\x93\"}"), "\"" + kMark + "\"}");
}

TEST(AnswerEncodingTest, FormsThatOnlyLookLikeUtf8AreReplaced) {
    EXPECT_EQ(Replaced("\"\xC0\xAF\""), "\"" + kMark + "\"") << "overlong";
    EXPECT_EQ(Replaced("\"\xED\xA0\x80\""), "\"" + kMark + "\"") << "surrogate";
    EXPECT_EQ(Replaced("\"\xF4\x90\x80\x80\""), "\"" + kMark + "\"") << "beyond U+10FFFF";
}

TEST(AnswerEncodingTest, ValidTextBesideAWrongByteStays) {
    EXPECT_EQ(Replaced("\xC3\xA4\xFF\xC3\xB6"), "\xC3\xA4" + kMark + "\xC3\xB6");
}

TEST(AnswerEncodingTest, WrongByteIsFoundWhereverItStands) {
    for (const std::string other : {"", "\xE2\x82\xAC"}) {
        for (std::size_t size = 0; size < 40; ++size) {
            const std::string ascii(size, 'a');
            for (std::size_t place = 0; place <= size; ++place) {
                const std::string before = ascii.substr(0, place);
                const std::string after = other + ascii.substr(place);
                std::string json = before + after;
                EXPECT_FALSE(ReplaceInvalidUtf8(json));
                EXPECT_EQ(Replaced(before + "\xFF" + after), before + kMark + after);
            }
        }
    }
}

}  // namespace
