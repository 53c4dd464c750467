#include "bindings/simulator/play/waiting_clock.h"

#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace binding {

WaitingClock::WaitingClock() {
    (void)sigemptyset(&signals);
    for (const int signo : {SIGINT, SIGTERM, SIGHUP}) {
        (void)sigaddset(&signals, signo);
    }
    (void)pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

Clock::Time WaitingClock::Now() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

bool WaitingClock::WaitUntil(Time time) {
    while (true) {
        const Time rest = std::max(time - Now(), Time(0));
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(rest);
        const auto below = static_cast<decltype(timespec::tv_nsec)>((rest - seconds).count());
        const timespec timeout = {.tv_sec = seconds.count(), .tv_nsec = below};
        if (sigtimedwait(&signals, nullptr, &timeout) > 0) {
            return false;
        }
        if (errno == EAGAIN) {
            return true;
        }
    }
}

}  // namespace binding
