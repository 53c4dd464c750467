// Faults of the maintenance thread. A separate thread behaves wrongly in the way that the fault
// asks for.
#include <pthread.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "platform/maintenance_thread.h"
#include "tests/unit/conformance/wrong_binding.h"

using wrong::Has;

namespace {

MaintenanceThreadCallbackInterface* gCallback = nullptr;
std::jthread gThread;

/// Calls back without any pause, or at the right time with a signal mask of its own.
void CallBack(const std::stop_token& stop) {
    sigset_t none{};
    (void)sigemptyset(&none);
    if (Has("mask-not-inherited")) {
        (void)pthread_sigmask(SIG_SETMASK, &none, nullptr);
    }
    while (!stop.stop_requested()) {
        if (!Has("no-interval")) {
            std::this_thread::sleep_for(std::chrono::seconds(1));
        }
        gCallback->OnThreadNotify(0);
    }
}

}  // namespace

#define CONSTRUCT "_ZN17MaintenanceThreadC1EP34MaintenanceThreadCallbackInterfacejj"
void RealConstruct(MaintenanceThread* self, MaintenanceThreadCallbackInterface* callback,
                   unsigned int interval, unsigned int reserved) REAL(CONSTRUCT);
void WrongConstruct(MaintenanceThread* self, MaintenanceThreadCallbackInterface* callback,
                    unsigned int interval, unsigned int reserved) WRAPPED(CONSTRUCT);
void WrongConstruct(MaintenanceThread* self, MaintenanceThreadCallbackInterface* callback,
                    unsigned int interval, unsigned int reserved) {
    gCallback = callback;
    if (Has("thread-throws")) {
        throw std::runtime_error("no thread");
    }
    RealConstruct(self, callback, interval, reserved);
}

#define DESTROY "_ZN17MaintenanceThreadD1Ev"
void RealDestroy(MaintenanceThread* self) REAL(DESTROY);
void WrongDestroy(MaintenanceThread* self) WRAPPED(DESTROY);
void WrongDestroy(MaintenanceThread* self) {
    while (Has("thread-end-hangs")) {
        (void)pause();
    }
    RealDestroy(self);
}

#define RUN "_ZN17MaintenanceThread3RunEv"
int RealRun(MaintenanceThread* self) REAL(RUN);
int WrongRun(MaintenanceThread* self) WRAPPED(RUN);
int WrongRun(MaintenanceThread* self) {
    static int runs = 0;
    if (Has("no-callback")) {
        return 0;
    }
    if (Has("no-interval") || Has("mask-not-inherited")) {
        // No callback is expected of the second run.
        if (++runs == 1) {
            gThread = std::jthread(CallBack);
        }
        return 0;
    }
    return RealRun(self);
}

#define SHUTDOWN "_ZN17MaintenanceThread8ShutdownEv"
int RealShutdown(MaintenanceThread* self) REAL(SHUTDOWN);
int WrongShutdown(MaintenanceThread* self) WRAPPED(SHUTDOWN);
int WrongShutdown(MaintenanceThread* self) {
    static int ends = 0;
    // The first Shutdown finds no running thread; the second comes during a callback.
    if (Has("end-not-waited-for") && ++ends == 2) {
        return 0;
    }
    if (Has("shutdown-fails")) {
        (void)RealShutdown(self);
        return 3;
    }
    if (gThread.joinable()) {
        gThread.request_stop();
        gThread.join();
    }
    return RealShutdown(self);
}
