#include "bindings/device/device_clock.h"

#include <atomic>
#include <csignal>
#include <thread>

namespace binding {

namespace {

/// Whether a signal that asks the process to end is waiting to be taken. A service blocks these
/// signals while it serves a request; in a process that does not block them, they end the process.
bool IsAskedToEnd() {
    sigset_t pending;
    return sigpending(&pending) == 0 &&
           (sigismember(&pending, SIGTERM) == 1 || sigismember(&pending, SIGUSR1) == 1);
}

class RealTime : public DeviceClock {
  public:
    Steady Now() override { return std::chrono::steady_clock::now(); }

    Wall TimeOfDay() override {
        return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    }

    bool WaitUntil(Steady time) override {
        if (IsAskedToEnd()) {
            return false;
        }
        std::this_thread::sleep_until(time);
        return !IsAskedToEnd();
    }
};

std::atomic<DeviceClock*> otherClock = nullptr;

}  // namespace

DeviceClock& CurrentDeviceClock() {
    // cppcheck-suppress unassignedVariable ; it has nothing to assign
    static RealTime realTime;
    DeviceClock* const clock = otherClock;
    // cppcheck-suppress returnTempReference ; the object is static
    return clock == nullptr ? realTime : *clock;
}

void SetDeviceClock(DeviceClock* clock) {
    otherClock = clock;
}

}  // namespace binding
