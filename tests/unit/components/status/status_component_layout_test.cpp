// The virtual table of the component is that of its base.
#include <gtest/gtest.h>

#include "bindings/recording/recording.h"
#include "components/status/status_component.h"
#include "tests/support/vtable.h"

namespace {

#if defined(__x86_64__) || defined(__i386__)
TEST(StatusComponentLayout, OperationsOfTheFamilyKeepTheirSlots) {
    EXPECT_EQ(Slot(&StatusComponent::Hook0), 0U);
    EXPECT_EQ(Slot(&StatusComponent::GetDynamicData), 1U);
    EXPECT_EQ(Slot(&StatusComponent::Hook2), 2U);
    EXPECT_EQ(Slot(&StatusComponent::Hook3), 3U);
    EXPECT_EQ(Slot(&StatusComponent::ValidateFormData), 4U);
    EXPECT_EQ(Slot(&StatusComponent::Hook5), 5U);
    EXPECT_EQ(Slot(&StatusComponent::StoreData), 6U);
}
#endif

TEST(StatusComponentLayout, OnlyTheDestructorsAreItsOwn) {
    recording::Reset();
    constexpr std::size_t kInherited = 7;
    constexpr std::size_t kAll = 9;
    const auto base = VirtualFunctions<kAll>(PageComponent());
    const auto component = VirtualFunctions<kAll>(StatusComponent());
    for (std::size_t slot = 0; slot < kInherited; ++slot) {
        EXPECT_EQ(component[slot], base[slot]) << slot;
    }
    for (std::size_t slot = kInherited; slot < kAll; ++slot) {
        EXPECT_NE(component[slot], base[slot]) << slot;
    }
}

}  // namespace
