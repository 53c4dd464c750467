#include "platform/maintenance_thread.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "bindings/log.h"
#include "bindings/posix/maintenance_clock.h"

namespace {

class Steady : public binding::MaintenanceClock {
  public:
    void Wait(std::chrono::milliseconds interval, const std::stop_token& stop) override {
        std::unique_lock lock(mutex);
        stopped.wait_for(lock, stop, interval, [] { return false; });
    }

  private:
    std::mutex mutex;
    std::condition_variable_any stopped;
};

std::shared_ptr<binding::MaintenanceClock>& CurrentClock() {
    static std::shared_ptr<binding::MaintenanceClock> clock = binding::SteadyClock();
    return clock;
}

/// Calls back. An exception is logged, so that it ends neither the thread nor the process.
void Notify(MaintenanceThreadCallbackInterface& callback) {
    try {
        callback.OnThreadNotify(0);
    } catch (const std::exception& error) {
        BINDING_LOG(TORU_DBG_ERROR, "maintenance thread: %s", error.what());
    } catch (...) {
        BINDING_LOG(TORU_DBG_ERROR, "maintenance thread: unknown exception");
    }
}

}  // namespace

namespace binding {

std::shared_ptr<MaintenanceClock> SteadyClock() {
    return std::make_shared<Steady>();
}

void SetMaintenanceClock(std::shared_ptr<MaintenanceClock> clock) {
    CurrentClock() = std::move(clock);
}

}  // namespace binding

bool MaintenanceThreadCallbackInterface::OnThreadNotify(unsigned int /*event*/) {
    return false;
}

MaintenanceThreadCallbackInterface::~MaintenanceThreadCallbackInterface() = default;

struct MaintenanceThread::State {
    std::mutex mutex;
    std::jthread thread;
};

MaintenanceThread::MaintenanceThread(MaintenanceThreadCallbackInterface* newCallback,
                                     unsigned int newInterval, unsigned int /*reserved*/)
    : callback(newCallback), interval(newInterval), state(std::make_unique<State>()) {}

MaintenanceThread::~MaintenanceThread() {
    Shutdown();
    if (state->thread.joinable()) {
        // This code runs in the thread itself, for example when its callback exits the process. A
        // thread cannot wait for its own end.
        state->thread.detach();
    }
}

int MaintenanceThread::Initialize() {
    return callback == nullptr ? EINVAL : 0;
}

int MaintenanceThread::Run() {
    if (callback == nullptr) {
        return EINVAL;
    }
    const std::scoped_lock lock(state->mutex);
    if (state->thread.joinable() && !state->thread.get_stop_token().stop_requested()) {
        return 0;
    }
    try {
        // With an interval of 0 the thread would call back without any pause.
        const std::chrono::seconds seconds(std::max(interval, 1U));
        // The thread holds its own reference to the clock, because a detached thread may outlive
        // this object.
        state->thread = std::jthread(
            [clock = CurrentClock(), called = callback, seconds](const std::stop_token& stop) {
                clock->Wait(seconds, stop);
                while (!stop.stop_requested()) {
                    Notify(*called);
                    clock->Wait(seconds, stop);
                }
            });
        return 0;
    } catch (const std::exception& error) {
        BINDING_LOG(TORU_DBG_ERROR, "maintenance thread: %s", error.what());
        return EAGAIN;
    }
}

int MaintenanceThread::Shutdown() {
    std::jthread ending;
    {
        const std::scoped_lock lock(state->mutex);
        state->thread.request_stop();
        if (state->thread.get_id() != std::this_thread::get_id()) {
            ending = std::move(state->thread);
        }
    }
    return 0;
}
