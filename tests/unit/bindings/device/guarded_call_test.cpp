// No exception leaves a call of a binding, because its callers are C functions.
#include <new>
#include <stdexcept>

#include "bindings/device/calls.h"
#include "bindings/posix/log/repeated_lines.h"
#include "platform/toru_dbg.h"
#include "tests/support/scratch.h"

namespace {

using binding::kBindingFailed;
using binding::kWebuiCodeBase;
using ::testing::ElementsAre;

class GuardedCall : public SimulatedDevice {};

TEST_F(GuardedCall, ReturnsItsOwnCode) {
    EXPECT_EQ(binding::Guarded(kWebuiCodeBase, [] { return 42; }), 42);
    EXPECT_TRUE(Log().empty());
}

TEST_F(GuardedCall, ExceptionIsACodeAndALogLine) {
    binding::SetLogClock([] { return binding::RepeatedLines::TimePoint(); });
    const auto fail = []() -> int { throw std::runtime_error("out of order"); };
    EXPECT_EQ(binding::Guarded(0, fail), kBindingFailed);
    EXPECT_EQ(binding::Guarded(kWebuiCodeBase, fail), kWebuiCodeBase + kBindingFailed);
    toru_dbg_stop();
    binding::SetLogClock(nullptr);
    EXPECT_THAT(Log(), ElementsAre("[BINDING]:[ERROR] - out of order",
                                   "[BINDING]:[ERROR] - out of order [1 times, last 0 s ago]"));
}

TEST_F(GuardedCall, ExceptionWhileReadingTheDeviceIsACodeToo) {
    Document("{}");
    EXPECT_EQ(binding::WithDevice(
                  0, [](const binding::Device& /*device*/) -> int { throw std::bad_alloc(); }),
              kBindingFailed);
}

}  // namespace
