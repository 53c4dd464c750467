// A thread of your own that calls back at an interval, instead of that in bindings/posix.
#include "platform/maintenance_thread.h"

#include "../not_supported.h"

bool MaintenanceThreadCallbackInterface::OnThreadNotify(unsigned int /*event*/) {
    return false;
}

MaintenanceThreadCallbackInterface::~MaintenanceThreadCallbackInterface() = default;

// The thread, and the means of telling it to end.
struct MaintenanceThread::State {};

MaintenanceThread::MaintenanceThread(MaintenanceThreadCallbackInterface* newCallback,
                                     unsigned int newInterval, unsigned int /*reserved*/)
    : callback(newCallback), interval(newInterval), state(std::make_unique<State>()) {}

// Shut the thread down.
MaintenanceThread::~MaintenanceThread() = default;

// Prepare what the thread needs. Without a callback, the thread has nothing to do.
int MaintenanceThread::Initialize() {
    return callback == nullptr ? 0 : kNotSupported;
}

// Start a thread that calls callback->OnThreadNotify(0) every interval seconds.
int MaintenanceThread::Run() {
    return kNotSupported;
}

// Stop the thread. Do not wait for the end of its interval, but wait for a callback that is
// running.
int MaintenanceThread::Shutdown() {
    return 0;
}
