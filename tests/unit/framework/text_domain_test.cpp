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

TEST_F(TextDomainTest, TextIsAppended) {
    Give(kTextDomain, "once_text", "Once");
    std::string text = "At ";
    AppendTranslated(text, "once_text");
    EXPECT_EQ(text, "At Once");
}

TEST_F(TextDomainTest, TextFollowsAChangeOfTheCatalogue) {
    Give(kTextDomain, "colour_text", "colour");
    EXPECT_EQ(Translated("colour_text"), "colour");
    Give(kTextDomain, "colour_text", "Farbe");
    EXPECT_EQ(Translated("colour_text"), "Farbe");
    translations::Reset();
    EXPECT_EQ(Translated("colour_text"), "colour_text");
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
