// Callbacks of the event loop.
#include "bindings/linux/event.h"

#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <cstdint>
#include <string>

#include "bindings/posix/files/file_io.h"

namespace {

class EventLoop : public ::testing::Test {
  protected:
    EventLoop() {
        sd_event* made = nullptr;
        EXPECT_GE(sd_event_new(&made), 0);
        event.reset(made);
    }

    binding::EventPointer event;
};

TEST_F(EventLoop, WhatIsDeferredIsCalledOnceAfterWhatIsAtHand) {
    const binding::FileDescriptor ready(eventfd(1, EFD_CLOEXEC));
    std::string order;
    binding::EventSource watch;
    binding::EventSource deferred;
    deferred.Defer(event.get(), [&] { order += "deferred "; });
    watch.WatchDescriptor(event.get(), ready.Number(), EPOLLIN, [&](std::uint32_t) {
        order += "event ";
        watch.Reset();
    });
    while (sd_event_run(event.get(), 0) > 0) {
    }
    EXPECT_EQ(order, "event deferred ");
    EXPECT_FALSE(deferred.IsArmed());
}

TEST_F(EventLoop, WhatIsDeferredIsAlsoCalledWhileEventsHaveNoEnd) {
    const binding::FileDescriptor ready(eventfd(1, EFD_CLOEXEC));
    int calls = 0;
    int events = 0;
    binding::EventSource watch;
    binding::EventSource deferred;
    deferred.Defer(event.get(), [&] { ++calls; });
    watch.WatchDescriptor(event.get(), ready.Number(), EPOLLIN, [&](std::uint32_t) { ++events; });
    while (calls == 0 && events < 10'000'000) {
        ASSERT_GE(sd_event_run(event.get(), 0), 0);
    }
    EXPECT_EQ(calls, 1);
}

}  // namespace
