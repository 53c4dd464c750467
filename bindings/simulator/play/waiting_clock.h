// The clock that scenarios are really played by.
#pragma once

#include <csignal>

#include "bindings/simulator/play/player.h"

namespace binding {

/// Runs as time does and ends the playing at SIGINT, SIGTERM or SIGHUP. These signals are taken
/// only while it waits, so that no change is interrupted. For the only thread of a process.
class WaitingClock : public Clock {
  public:
    WaitingClock();

    Time Now() override;
    bool WaitUntil(Time time) override;

  private:
    sigset_t signals{};
};

}  // namespace binding
