#include "framework/po_string.h"

#include <gtest/gtest.h>

#include <limits>

#include "bindings/recording/recording.h"

namespace {

const char* const kNull = nullptr;

class PoStringTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }
};

TEST_F(PoStringTest, PlaceholdersAreReplacedInPlaceAndTheResultIsACopy) {
    std::string text = "%2 of %1, %2";
    const std::string result = FormatPoString(2, text, "ten", "one");
    EXPECT_EQ(result, "one of ten, one");
    EXPECT_EQ(text, result);
    EXPECT_EQ(recording::TranscriptText(), "");
}

TEST_F(PoStringTest, TextWithoutPlaceholdersIsUnchanged) {
    std::string text = "100% sure, % 1, %a, %";
    EXPECT_EQ(FormatPoString(4, text, "a", "b", "c", "d"), "100% sure, % 1, %a, %");
}

TEST_F(PoStringTest, EmptyTextStaysEmpty) {
    std::string text;
    EXPECT_EQ(FormatPoString(2, text, "a", "b"), "");
}

TEST_F(PoStringTest, SurplusArgumentsAndPlaceholdersWithoutArgumentPassSilently) {
    std::string text = "%3 %5 %0";
    EXPECT_EQ(FormatPoString(4, text, "a", "b", "2", "d"), "2 %5 %0");
    EXPECT_EQ(recording::TranscriptText(), "");
}

TEST_F(PoStringTest, FirstPlaceholderIsAlsoTheBeginningOfTheTenth) {
    std::string text = "%10 %19";
    EXPECT_EQ(FormatPoString(4, text, "x", "b", "c", "d"), "x0 x9");
}

TEST_F(PoStringTest, TenthPlaceholderLosesItsBeginningEvenWhereThereIsATenthArgument) {
    std::string text = "%9 %10";
    EXPECT_EQ(FormatPoString(10, text, "1", "2", "3", "4", "5", "6", "7", "8", "nine", "ten"),
              "nine 10");
}

TEST_F(PoStringTest, DoubledPercentSignIsNoEscape) {
    std::string text = "%%1";
    EXPECT_EQ(FormatPoString(1, text, "x"), "%x");
}

TEST_F(PoStringTest, InsertedArgumentIsSearchedForLaterPlaceholders) {
    std::string text = "%1";
    EXPECT_EQ(FormatPoString(2, text, "<%2>", "b"), "<b>");
}

TEST_F(PoStringTest, InsertedArgumentIsNotSearchedForEarlierPlaceholders) {
    std::string text = "%1 %2";
    EXPECT_EQ(FormatPoString(2, text, "a", "%1"), "a %1");
}

TEST_F(PoStringTest, InsertedArgumentIsNotSearchedForItsOwnPlaceholder) {
    std::string text = "%1%1";
    EXPECT_EQ(FormatPoString(1, text, "%1%1"), "%1%1%1%1");
    text = "%1";
    EXPECT_EQ(FormatPoString(1, text, "%"), "%");
}

TEST_F(PoStringTest, InsertedArgumentMayFormALaterPlaceholderWithWhatFollows) {
    std::string text = "%12";
    EXPECT_EQ(FormatPoString(2, text, "%", "b"), "b");
}

TEST_F(PoStringTest, NoMoreArgumentsAreReadThanThereAre) {
    std::string text = "%1 %2 %3";
    EXPECT_EQ(FormatPoString(3, text, "a"), "a %2 %3");
    EXPECT_EQ(FormatPoString(std::numeric_limits<int>::max(), text, "a", "b"), "a b %3");
    EXPECT_EQ(FormatPoString(3, text), "a b %3");
    EXPECT_EQ(recording::TranscriptText(), "");
}

TEST_F(PoStringTest, NoMoreArgumentsAreUsedThanTheCountSays) {
    std::string text = "%1 %2";
    EXPECT_EQ(FormatPoString(1, text, "a", "b"), "a %2");
    EXPECT_EQ(recording::TranscriptText(), "");
}

TEST_F(PoStringTest, NullArgumentCountsAsEmpty) {
    std::string text = "[%1][%2]";
    EXPECT_EQ(FormatPoString(2, text, kNull, "b"), "[][b]");
}

TEST_F(PoStringTest, CountOfZeroReplacesNothing) {
    std::string text = "%1";
    EXPECT_EQ(FormatPoString(0, text, "a"), "%1");
    EXPECT_EQ(recording::TranscriptText(), "");
}

TEST_F(PoStringTest, NegativeCountReplacesNothingAndIsAMismatch) {
    for (const int count : {-1, std::numeric_limits<int>::min()}) {
        recording::Reset();
        std::string text = "%1";
        EXPECT_EQ(FormatPoString(count, text, "a"), "%1");
        EXPECT_EQ(recording::TranscriptText(),
                  recording::Lines({"syslog 138 [WEBUI]:[ERROR] - Number of arguments mismatched",
                                    "log 3 [WEBUI]:[ERROR] - Number of arguments mismatched"}));
    }
}

TEST_F(PoStringTest, ArgumentsCanComeAsAList) {
    const char* const arguments[] = {"a", kNull, "c"};
    std::string text = "%1%2%3";
    EXPECT_EQ(FormatPoString(3, text, std::span(arguments)), "ac");
    EXPECT_EQ(text, "ac");
}

// If each placeholder moved the rest of the text, this test would take minutes.
TEST_F(PoStringTest, MillionPlaceholdersAreReplacedInOnePass) {
    constexpr std::size_t kCount = 1000000;
    std::string text;
    std::string expected;
    for (std::size_t i = 0; i < kCount; ++i) {
        text += "%1";
        expected += "abc";
    }
    EXPECT_TRUE(FormatPoString(1, text, "abc") == expected);
}

}  // namespace
