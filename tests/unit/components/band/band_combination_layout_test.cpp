// The order of the virtual functions and the lack of members are part of the class's binary
// interface.
#include <gtest/gtest.h>

#include <type_traits>

#include "components/band/band_combination.h"
#include "tests/support/vtable.h"

namespace {

class WithOtherDestructor : public BandCombination {
  public:
    ~WithOtherDestructor() override { ++destroyed; }
    static inline int destroyed = 0;
};

#if defined(__x86_64__) || defined(__i386__)
TEST(BandCombinationLayout, BandTextComesBeforeBandwidthText) {
    EXPECT_EQ(Slot(&BandCombination::GetBandCombinationString), 0U);
    EXPECT_EQ(Slot(&BandCombination::GetBandwidthString), 1U);
}
#endif

TEST(BandCombinationLayout, DestructorsFollowTheTwoOperations) {
    const auto functions = VirtualFunctions<4>(BandCombination());
    const auto derived = VirtualFunctions<4>(WithOtherDestructor());
    EXPECT_EQ(derived[0], functions[0]);
    EXPECT_EQ(derived[1], functions[1]);
    EXPECT_NE(derived[2], functions[2]);
    EXPECT_NE(derived[3], functions[3]);
}

TEST(BandCombinationLayout, HasNoDataMembers) {
    EXPECT_EQ(sizeof(BandCombination), sizeof(void*));
    EXPECT_TRUE(std::has_virtual_destructor_v<BandCombination>);
}

}  // namespace
