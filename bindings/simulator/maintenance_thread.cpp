#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include "bindings/simulator/log.h"
#include "platform/web_common.h"

namespace {

/// What the thread needs; the thread keeps it alive when its owner goes first.
struct Loop {
    std::mutex mutex;
    std::condition_variable_any stopped;

    void Run(const std::stop_token& stop, MaintenanceThreadCallbackInterface& callback,
             std::chrono::seconds interval) {
        while (!StoppedWithin(interval, stop)) {
            Notify(callback);
        }
    }

  private:
    /// A callback that fails must end neither the thread nor the process.
    static void Notify(MaintenanceThreadCallbackInterface& callback) {
        try {
            callback.OnThreadNotify(0);
        } catch (const std::exception& error) {
            SIMULATOR_LOG(TORU_DBG_ERROR, "maintenance thread: %s", error.what());
        } catch (...) {
            SIMULATOR_LOG(TORU_DBG_ERROR, "maintenance thread: unknown exception");
        }
    }

    bool StoppedWithin(std::chrono::seconds interval, const std::stop_token& stop) {
        std::unique_lock lock(mutex);
        stopped.wait_for(lock, stop, interval, [] { return false; });
        return stop.stop_requested();
    }
};

}  // namespace

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
        // The thread destroys its own owner, at exit for instance.
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
        // An interval of 0 would never let the thread rest.
        const std::chrono::seconds seconds(std::max(interval, 1U));
        state->thread =
            std::jthread([loop = std::make_shared<Loop>(), called = callback, seconds](
                             const std::stop_token& stop) { loop->Run(stop, *called, seconds); });
        return 0;
    } catch (const std::exception& error) {
        SIMULATOR_LOG(TORU_DBG_ERROR, "maintenance thread: %s", error.what());
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
