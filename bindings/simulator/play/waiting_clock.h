// The clock of a scenario that people watch: real time.
#pragma once

#include <csignal>

#include "bindings/simulator/play/player.h"

namespace binding {

/// Runs in real time and stops the player at SIGINT, SIGTERM or SIGHUP. It blocks these signals
/// except while it waits, so that no change is interrupted. For processes with one thread only.
class WaitingClock : public Clock {
  public:
    WaitingClock();

    Time Now() override;
    bool WaitUntil(Time time) override;

  private:
    sigset_t signals{};
};

}  // namespace binding
