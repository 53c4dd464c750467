// Owners of what sd-event hands out, and registration of callbacks with a loop.
#pragma once

#include <systemd/sd-event.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace binding {

struct EventDeleter {
    void operator()(sd_event* event) const { sd_event_unref(event); }
};
using EventPointer = std::unique_ptr<sd_event, EventDeleter>;

/// A callback that is registered with a loop for as long as this object lives. An exception in a
/// callback is logged. The object stays where it is, because the loop refers to it.
class EventSource {
  public:
    EventSource() = default;
    ~EventSource() { Reset(); }
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;

    // Each throws std::system_error, and replaces what was registered before.

    /// Calls @p callback with the events (EPOLLIN, ...) of @p descriptor.
    void WatchDescriptor(sd_event* event, int descriptor, std::uint32_t events,
                         std::function<void(std::uint32_t events)> callback);
    /// Calls @p callback once, @p microseconds from now; it may be late by @p accuracy
    /// microseconds, so that several wake-ups become one.
    void After(sd_event* event, std::uint64_t microseconds, std::uint64_t accuracy,
               std::function<void()> callback);
    /// Calls @p callback once, after all other events that are at hand, but soon also if these have
    /// no end.
    void Defer(sd_event* event, std::function<void()> callback);
    /// Calls @p callback for changes in the folder @p path; @p name is the changed entry, which may
    /// be null. @p mask is that of inotify.
    void WatchFolder(sd_event* event, const char* path, std::uint32_t mask,
                     std::function<void(const char* name)> callback);

    /// Whether something is registered that has not been called yet (After, Defer) or is watched.
    bool IsArmed() const;
    void Reset();

  private:
    struct Callbacks;

    sd_event_source* source = nullptr;
    sd_event_source* deferralEnd = nullptr;
    std::function<void(std::uint32_t)> onEvents;
    std::function<void()> onTime;
    std::function<void(const char*)> onName;
};

}  // namespace binding
