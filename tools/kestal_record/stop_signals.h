// Ending a long recording in good order.
#pragma once

#include <array>
#include <chrono>
#include <csignal>

/// While it exists, the first SIGINT, SIGTERM or SIGHUP only ends waiting. A second one, of
/// whichever kind, ends the process, for instance when a call of the device hangs. What the process
/// has been started to ignore stays ignored. One object at a time.
class StopSignals {
  public:
    using Time = std::chrono::steady_clock::time_point;

    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// Waits until @p time. Returns false at once when a signal has come.
    bool WaitUntil(Time time) const;

  private:
    std::array<struct sigaction, 3> before{};
    std::array<int, 2> pipe{-1, -1};
};
