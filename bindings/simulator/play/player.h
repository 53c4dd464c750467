// Playing a scenario on a device.
#pragma once

#include <chrono>
#include <string>

#include "bindings/simulator/play/scenario.h"

namespace binding {

/// The time that a scenario is played by.
class Clock {
  public:
    using Time = std::chrono::nanoseconds;

    virtual ~Clock() = default;

    /// Time since some moment of the past.
    virtual Time Now() = 0;

    /// Waits until @p time, which may be over. Returns false, at once, when the playing is to end.
    virtual bool WaitUntil(Time time) = 0;
};

/// Who is told what happens. Times are the scenario's own.
class Audience {
  public:
    virtual ~Audience() = default;

    virtual void Happens(Milliseconds time, const std::string& what) = 0;
    /// About once a second of the clock.
    virtual void TimePasses(Milliseconds time, Milliseconds duration) = 0;
    virtual void GoesWrong(const std::string& what) = 0;
};

struct Pace {
    double speed = 1;  ///< seconds of the scenario in one of the clock, more than 0
    bool loops = false;
};

/// Plays @p scenario on the document at @p path: one replacement for each of its instants. What
/// goes wrong on the way, such as a document that somebody has just damaged, is told once, and the
/// scenario goes on. Returns whether everything went well; being stopped by the clock is well.
bool Play(const Scenario& scenario, const std::string& path, const Pace& pace, Clock& clock,
          Audience& audience);

}  // namespace binding
