// The clock by which calls are slow, hang, or change the device after some time.
#pragma once

#include <chrono>

namespace binding {

class DeviceClock {
  public:
    using Steady = std::chrono::steady_clock::time_point;
    using Wall = std::chrono::sys_time<std::chrono::milliseconds>;

    DeviceClock() = default;
    DeviceClock(const DeviceClock&) = delete;
    DeviceClock& operator=(const DeviceClock&) = delete;
    virtual ~DeviceClock() = default;

    /// The time that waiting is measured by. It never goes back.
    virtual Steady Now() = 0;

    /// The time of day, which every process that reads the device sees alike.
    virtual Wall TimeOfDay() = 0;

    /// Waits until @p time. Returns false if the process has been asked to end.
    virtual bool WaitUntil(Steady time) = 0;
};

/// Real time, unless SetDeviceClock has named another clock.
DeviceClock& CurrentDeviceClock();

/// Uses @p clock, which must stay; null means real time again. For tests.
void SetDeviceClock(DeviceClock* clock);

}  // namespace binding
