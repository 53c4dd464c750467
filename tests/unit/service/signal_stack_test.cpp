#include "service/signal_stack.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>

#include <csignal>
#include <memory>
#include <thread>

namespace {

stack_t InForce() {
    stack_t stack{};
    sigaltstack(nullptr, &stack);
    return stack;
}

TEST(SignalStackTest, IsInForceForTheLifetimeOfItsObject) {
    const stack_t before = InForce();
    {
        const SignalStack stack;
        EXPECT_EQ(InForce().ss_flags, 0);
        EXPECT_NE(InForce().ss_sp, before.ss_sp);
    }
    EXPECT_EQ(InForce().ss_flags, SS_DISABLE);
    sigaltstack(&before, nullptr);
}

TEST(SignalStackTest, StaysWithItsThreadWhenAnotherDestroysIt) {
    const stack_t before = InForce();
    auto stack = std::make_unique<SignalStack>();
    const stack_t own = InForce();
    std::thread([&] { stack.reset(); }).join();
    EXPECT_EQ(InForce().ss_sp, own.ss_sp);
    auto* bytes = static_cast<volatile char*>(own.ss_sp);
    bytes[0] = 1;
    EXPECT_EQ(bytes[0], 1);
    sigaltstack(&before, nullptr);
}

TEST(SignalStackTest, WithoutMemoryTheThreadKeepsItsFormerStack) {
    const stack_t before = InForce();
    rlimit memory{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &memory), 0);
    rlimit none = memory;
    none.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_AS, &none), 0);
    stack_t during{};
    void* const page = mmap(nullptr, 1, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    {
        const SignalStack stack;
        during = InForce();
    }
    ASSERT_EQ(setrlimit(RLIMIT_AS, &memory), 0);
    if (page != MAP_FAILED) {
        munmap(page, 1);
        GTEST_SKIP() << "memory has no limit in this emulator";
    }
    EXPECT_EQ(during.ss_sp, before.ss_sp);
    EXPECT_EQ(during.ss_flags, before.ss_flags);
    EXPECT_EQ(InForce().ss_sp, before.ss_sp);
}

}  // namespace
