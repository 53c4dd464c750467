#include "bindings/linux/modem/tables/sim_state.h"

#include <gtest/gtest.h>

namespace {

using binding::IsCarrierLock;
using binding::SimFacts;
using binding::SimStatusOf;

constexpr std::int64_t kFailed = -1;
constexpr std::int64_t kInitializing = 1;
constexpr std::int64_t kLocked = 2;
constexpr std::int64_t kDisabled = 3;
constexpr std::int64_t kRegistered = 8;

std::optional<sys_sim_status_e> WithLock(std::int64_t lock) {
    return SimStatusOf({kLocked, 0, lock, true});
}

TEST(SimState, AFailedModemTellsWhatIsWrongWithTheSim) {
    const struct {
        std::int64_t reason;
        sys_sim_status_e status;
    } rows[] = {
        {0, SYS_SIM_FAILURE}, {1, SYS_SIM_FAILURE},   {2, SYS_SIM_NOT_FOUND}, {3, SYS_SIM_ERROR},
        {4, SYS_SIM_FAILURE}, {5, SYS_SIM_NOT_FOUND}, {99, SYS_SIM_FAILURE},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(SimStatusOf({kFailed, row.reason, 0, false}), row.status) << row.reason;
    }
}

TEST(SimState, EachLockHasItsState) {
    EXPECT_EQ(WithLock(1), SYS_SIM_READY);
    EXPECT_EQ(WithLock(2), SYS_SIM_PIN_LOCKED);
    EXPECT_EQ(WithLock(4), SYS_SIM_PUK_LOCKED);
    for (const std::int64_t toOneSim : {10, 13, 14}) {
        EXPECT_EQ(WithLock(toOneSim), SYS_SIM_LOCKED) << toOneSim;
    }
    for (const std::int64_t toCarrier : {6, 7, 8, 9, 11, 12, 15, 16}) {
        EXPECT_EQ(WithLock(toCarrier), SYS_SIM_RESTRICTED) << toCarrier;
        EXPECT_TRUE(IsCarrierLock(toCarrier)) << toCarrier;
    }
    for (const std::int64_t other : {0, 1, 2, 3, 4, 5, 10, 13, 14, 17, -1}) {
        EXPECT_FALSE(IsCarrierLock(other)) << other;
    }
}

TEST(SimState, TheSecondPinDoesNotMatter) {
    EXPECT_EQ(SimStatusOf({kRegistered, 0, 3, true}), SYS_SIM_READY);
    EXPECT_EQ(SimStatusOf({kRegistered, 0, 5, true}), SYS_SIM_READY);
}

TEST(SimState, WithoutSimThereIsNone) {
    EXPECT_EQ(SimStatusOf({kDisabled, 0, 0, false}), SYS_SIM_NOT_FOUND);
    EXPECT_EQ(SimStatusOf({kDisabled, 0, 1, false}), SYS_SIM_NOT_FOUND);
    EXPECT_EQ(SimStatusOf({kInitializing, 0, 0, false}), SYS_SIM_NOT_FOUND);
}

TEST(SimState, ALockProvesThatThereIsASim) {
    EXPECT_EQ(SimStatusOf({kLocked, 0, 2, false}), SYS_SIM_PIN_LOCKED);
}

TEST(SimState, AnUnknownLockIsThatOfTheModemsState) {
    for (const std::int64_t unknown : {0, 17, 4096}) {
        EXPECT_EQ(SimStatusOf({kLocked, 0, unknown, true}), SYS_SIM_LOCKED) << unknown;
        EXPECT_EQ(SimStatusOf({kRegistered, 0, unknown, true}), SYS_SIM_READY) << unknown;
        EXPECT_EQ(SimStatusOf({kInitializing, 0, unknown, true}), std::nullopt) << unknown;
    }
}

TEST(SimState, NothingToldIsNothingKnown) {
    EXPECT_EQ(SimStatusOf(SimFacts{}), std::nullopt);
}

}  // namespace
