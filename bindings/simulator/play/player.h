// Playing a scenario on a device.
#pragma once

#include <chrono>
#include <string>

#include "bindings/simulator/play/scenario.h"

namespace binding {

/// The clock that paces a scenario.
class Clock {
  public:
    using Time = std::chrono::nanoseconds;

    virtual ~Clock() = default;

    /// Time since some fixed moment in the past.
    virtual Time Now() = 0;

    /// Waits until @p time, which may have passed. Returns false at once when the player is to
    /// stop.
    virtual bool WaitUntil(Time time) = 0;
};

/// Receives reports of what happens. Times count from the beginning of the scenario.
class Audience {
  public:
    virtual ~Audience() = default;

    virtual void Happens(Milliseconds time, const std::string& what) = 0;
    /// Called about once per second of the clock.
    virtual void TimePasses(Milliseconds time, Milliseconds duration) = 0;
    virtual void GoesWrong(const std::string& what) = 0;
};

struct Pace {
    double speed = 1;  ///< seconds of the scenario per second of the clock; more than 0
    bool loops = false;
};

/// Plays @p scenario on the document at @p path: the document is replaced once for each instant. An
/// error meanwhile, such as a document that somebody has just damaged, is reported once, and the
/// scenario continues. Returns whether there was no error; being stopped by the clock is not one.
bool Play(const Scenario& scenario, const std::string& path, const Pace& pace, Clock& clock,
          Audience& audience);

}  // namespace binding
