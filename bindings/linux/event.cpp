#include "bindings/linux/event.h"

#include <sys/inotify.h>

#include <exception>
#include <system_error>
#include <utility>

#include "bindings/linux/log.h"

namespace binding {

namespace {

/// Microseconds. The loop turns to what is deferred only when nothing else is at hand, which may
/// never be while messages come in a flood.
constexpr std::uint64_t kLongestDeferral = 100'000;

void Check(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), what);
    }
}

sd_event_source* Timer(sd_event* event, std::uint64_t microseconds, std::uint64_t accuracy,
                       sd_event_time_handler_t callback, void* owner) {
    // sd_event_add_time_relative does both, but older releases of libelogind do not have it.
    std::uint64_t now = 0;
    Check(sd_event_now(event, CLOCK_MONOTONIC, &now), "event loop: clock");
    sd_event_source* timer = nullptr;
    Check(sd_event_add_time(event, &timer, CLOCK_MONOTONIC, now + microseconds, accuracy, callback,
                            owner),
          "event loop: timer");
    return timer;
}

template <typename Call>
int Guard(Call call) {
    try {
        call();
    } catch (const std::exception& error) {
        LINUX_LOG(TORU_DBG_ERROR, "event: %s", error.what());
    }
    // A negative number would disable the event source.
    return 0;
}

}  // namespace

/// The functions that the loop calls. Each calls a copy, because a callback may replace itself.
struct EventSource::Callbacks {
    static int OnDescriptor(sd_event_source* /*source*/, int /*descriptor*/, std::uint32_t events,
                            void* owner) {
        const auto callback = static_cast<EventSource*>(owner)->onEvents;
        return Guard([&] { callback(events); });
    }

    static int OnTime(sd_event_source* /*source*/, std::uint64_t /*time*/, void* owner) {
        const auto callback = static_cast<EventSource*>(owner)->onTime;
        return Guard([&] { callback(); });
    }

    static int OnDefer(sd_event_source* /*source*/, void* owner) {
        return CallOnce(static_cast<EventSource*>(owner));
    }

    static int OnDeferralEnd(sd_event_source* /*source*/, std::uint64_t /*time*/, void* owner) {
        return CallOnce(static_cast<EventSource*>(owner));
    }

    static int CallOnce(EventSource* owner) {
        const auto callback = owner->onTime;
        owner->Reset();
        return Guard([&] { callback(); });
    }

    static int OnFolder(sd_event_source* /*source*/, const inotify_event* change, void* owner) {
        const auto callback = static_cast<EventSource*>(owner)->onName;
        return Guard([&] { callback(change->len > 0 ? change->name : nullptr); });
    }
};

void EventSource::WatchDescriptor(sd_event* event, int descriptor, std::uint32_t events,
                                  std::function<void(std::uint32_t)> callback) {
    Reset();
    onEvents = std::move(callback);
    Check(sd_event_add_io(event, &source, descriptor, events, Callbacks::OnDescriptor, this),
          "event loop: descriptor");
}

void EventSource::After(sd_event* event, std::uint64_t microseconds, std::uint64_t accuracy,
                        std::function<void()> callback) {
    Reset();
    onTime = std::move(callback);
    source = Timer(event, microseconds, accuracy, Callbacks::OnTime, this);
}

void EventSource::Defer(sd_event* event, std::function<void()> callback) {
    Reset();
    onTime = std::move(callback);
    Check(sd_event_add_defer(event, &source, Callbacks::OnDefer, this), "event loop: deferred");
    Check(sd_event_source_set_priority(source, SD_EVENT_PRIORITY_NORMAL + 1),
          "event loop: priority");
    deferralEnd = Timer(event, kLongestDeferral, 0, Callbacks::OnDeferralEnd, this);
}

void EventSource::WatchFolder(sd_event* event, const char* path, std::uint32_t mask,
                              std::function<void(const char*)> callback) {
    Reset();
    onName = std::move(callback);
    Check(sd_event_add_inotify(event, &source, path, mask, Callbacks::OnFolder, this), path);
}

bool EventSource::IsArmed() const {
    int enabled = SD_EVENT_OFF;
    return source != nullptr && sd_event_source_get_enabled(source, &enabled) >= 0 &&
           enabled != SD_EVENT_OFF;
}

void EventSource::Reset() {
    source = sd_event_source_disable_unref(source);
    deferralEnd = sd_event_source_disable_unref(deferralEnd);
}

}  // namespace binding
