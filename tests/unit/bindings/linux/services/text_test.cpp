// Reading texts of other programs.
#include "bindings/linux/text.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using namespace std::string_view_literals;

TEST(TextOfOthers, IsPrintableWhateverItsEncoding) {
    EXPECT_EQ(binding::Printable("B\xc3\xbcro"), "B\xc3\xbcro");
    EXPECT_EQ(binding::Printable("B\xfcro"), "B?ro");
    EXPECT_EQ(binding::Printable("a\nb\x1b[2J\0c\x7f"sv), "a?b?[2J?c?");
    EXPECT_EQ(binding::Printable("\"><script>"), "\"><script>");
}

TEST(TextOfOthers, ThatIsCutWithinACharacterStaysValid) {
    EXPECT_EQ(binding::Printable("ab\xc3\xbc", 3), "ab?");
    EXPECT_EQ(binding::Printable(std::string(100, 'x')).size(), 64U);
}

TEST(TextOfOthers, HasNumbersThatFitAndNothingElse) {
    EXPECT_EQ(binding::NumberIn<int>("-12"), -12);
    EXPECT_EQ(binding::NumberIn<int>("12x"), std::nullopt);
    EXPECT_EQ(binding::NumberIn<int>(""), std::nullopt);
    EXPECT_EQ(binding::NumberIn<std::int32_t>("2147483648"), std::nullopt);
}

TEST(HardwareAddress, IsReadInAnyCaseAndWrittenInLowerCase) {
    EXPECT_EQ(binding::MacIn("02:11:22:aA:Bb:fF"), 0x021122aabbffU);
    EXPECT_EQ(binding::MacText(0x021122aabbffU), "02:11:22:aa:bb:ff");
    for (const char* wrong : {"", "02:11:22:aa:bb", "02:11:22:aa:bb:f", "02:11:22:aa:bb:fg",
                              "02-11-22-aa-bb-ff", "02:11:22:aa:bb:ff:", "-2:11:22:aa:bb:ff"}) {
        EXPECT_EQ(binding::MacIn(wrong), std::nullopt) << wrong;
    }
}

}  // namespace
