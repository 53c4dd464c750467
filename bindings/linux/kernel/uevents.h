// Events of the kernel about devices: something was plugged in, taken out or has changed.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "bindings/linux/event.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

/// The subsystem that an event of the kernel is about, such as "block"; empty when it does not say.
std::string_view SubsystemIn(std::string_view datagram);

class Uevents {
  public:
    /// Calls @p newOnEvent after events of @p newSubsystem; once for those that come together.
    /// Throws std::system_error.
    Uevents(sd_event* newEvent, std::string newSubsystem, std::function<void()> newOnEvent);
    ~Uevents() = default;
    Uevents(const Uevents&) = delete;
    Uevents& operator=(const Uevents&) = delete;

  private:
    void Receive();

    sd_event* event;
    std::string subsystem;
    std::function<void()> onEvent;
    FileDescriptor socket;
    EventSource incoming;
    EventSource telling;
};

}  // namespace binding
