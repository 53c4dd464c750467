// The clock by which maintenance threads wait.
#pragma once

#include <chrono>
#include <memory>
#include <stop_token>

namespace binding {

class MaintenanceClock {
  public:
    MaintenanceClock() = default;
    MaintenanceClock(const MaintenanceClock&) = delete;
    MaintenanceClock& operator=(const MaintenanceClock&) = delete;
    virtual ~MaintenanceClock() = default;

    /// Returns after @p interval, or as soon as @p stop is requested. Several threads may wait.
    virtual void Wait(std::chrono::milliseconds interval, const std::stop_token& stop) = 0;
};

/// A clock that runs in real time.
std::shared_ptr<MaintenanceClock> SteadyClock();

/// Threads that are started from now on wait by @p clock. Until this is called, they use
/// SteadyClock().
void SetMaintenanceClock(std::shared_ptr<MaintenanceClock> clock);

}  // namespace binding
