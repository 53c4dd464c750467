// A clock for devices on which waiting takes no time.
#pragma once

#include <functional>

#include "bindings/device/device_clock.h"

class FakeDeviceClock : public binding::DeviceClock {
  public:
    /// 2026-11-21T12:00:00.000Z.
    static constexpr Wall kNoon{std::chrono::sys_days(std::chrono::year(2026) / 11 / 21) +
                                std::chrono::hours(12)};

    FakeDeviceClock() { binding::SetDeviceClock(this); }
    ~FakeDeviceClock() override { binding::SetDeviceClock(nullptr); }
    FakeDeviceClock(const FakeDeviceClock&) = delete;
    FakeDeviceClock& operator=(const FakeDeviceClock&) = delete;

    Steady Now() override { return now; }
    Wall TimeOfDay() override { return timeOfDay; }

    bool WaitUntil(Steady time) override {
        Pass(std::chrono::ceil<std::chrono::milliseconds>(time - now));
        if (whileWaiting) {
            whileWaiting();
        }
        // A call that never returns is to fail its test, not to keep it from ending.
        return !isAskedToEnd && passed < std::chrono::minutes(10);
    }

    void Pass(std::chrono::milliseconds time) {
        now += time;
        timeOfDay += time;
        passed += time;
    }

    std::chrono::milliseconds passed{0};  ///< since the beginning
    std::function<void()> whileWaiting;   ///< called in each wait
    bool isAskedToEnd = false;
    Wall timeOfDay = kNoon;

  private:
    Steady now;
};
