#include "framework/text_domain.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/translations.h"

using translations::Give;
using translations::Lookups;

namespace {

class TextDomainTest : public testing::Test {
  protected:
    void SetUp() override { translations::Reset(); }
};

TEST_F(TextDomainTest, TextIsLookedUpOnce) {
    Give(kTextDomain, "once_text", "Once");
    const int before = Lookups("once_text");
    EXPECT_EQ(Translated("once_text"), "Once");
    EXPECT_EQ(Translated("once_text"), "Once");
    std::string text = "At ";
    AppendTranslated(text, "once_text");
    EXPECT_EQ(text, "At Once");
    EXPECT_EQ(Lookups("once_text"), before + 1);
}

TEST_F(TextDomainTest, TextFollowsAChangeOfTheCatalogue) {
    Give(kTextDomain, "colour_text", "colour");
    EXPECT_EQ(Translated("colour_text"), "colour");
    Give(kTextDomain, "colour_text", "Farbe");
    EXPECT_EQ(Translated("colour_text"), "Farbe");
    translations::Reset();
    EXPECT_EQ(Translated("colour_text"), "colour_text");
}

TEST_F(TextDomainTest, TextIsBelievedToBeMissingOnlyTheSecondTime) {
    const int before = Lookups("missing_text");
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(Translated("missing_text"), "missing_text");
    }
    EXPECT_EQ(Lookups("missing_text"), before + 2);
}

TEST_F(TextDomainTest, MissingTextIsLookedForAgainFromTimeToTime) {
    const int before = Lookups("never_found_text");
    for (int i = 0; i < 160; ++i) {
        EXPECT_EQ(Translated("never_found_text"), "never_found_text");
    }
    EXPECT_EQ(Lookups("never_found_text"), before + 20);
}

TEST_F(TextDomainTest, TextOfALongIdIsLookedUpEachTime) {
    const std::string id(1000, 'x');
    EXPECT_EQ(Translated(id), id);
    Give(kTextDomain, id, "Long");
    EXPECT_EQ(Translated(id), "Long");
    std::string text = "So ";
    AppendTranslated(text, id);
    EXPECT_EQ(text, "So Long");
}

TEST_F(TextDomainTest, TextsOfMoreIdsThanAreRememberedAreStillRight) {
    constexpr int kIds = 1000;
    const auto name = [](int i) { return "text_" + std::to_string(i); };
    for (int i = 0; i < kIds; i += 2) {
        Give(kTextDomain, name(i), std::to_string(i));
    }
    for (int i = 0; i < kIds; ++i) {
        EXPECT_EQ(Translated(name(i)), i % 2 == 0 ? std::to_string(i) : name(i));
    }
    const int before = Lookups(name(0));
    EXPECT_EQ(Translated(name(0)), "0");
    EXPECT_EQ(Lookups(name(0)), before + 1) << "nothing has been forgotten";
}

TEST_F(TextDomainTest, IdNeedNotBeTerminated) {
    Give(kTextDomain, "short", "Short");
    EXPECT_EQ(Translated(std::string_view("shorter").substr(0, 5)), "Short");
}

TEST_F(TextDomainTest, EmptyIdIsNotLookedUp) {
    Give(kTextDomain, "", "header of the catalogue");
    const int before = Lookups("");
    EXPECT_EQ(Translated(""), "");
    EXPECT_EQ(Lookups(""), before);
}

}  // namespace
