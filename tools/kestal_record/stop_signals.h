// Ending a long recording in good order.
#pragma once

#include <array>
#include <chrono>
#include <csignal>

/// While it exists, the first SIGINT, SIGTERM or SIGHUP only ends waiting. A second one ends the
/// process, for instance when a call of the device hangs. One object at a time.
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
    static constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, kSignals.size()> before{};
    std::array<int, 2> pipe{-1, -1};
};
