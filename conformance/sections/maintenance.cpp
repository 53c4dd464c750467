// platform/maintenance_thread.h.
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <thread>

#include "conformance/object.h"
#include "conformance/sections/sections.h"
#include "platform/maintenance_thread.h"

namespace conformance {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kInitialize = "MaintenanceThread::Initialize";
constexpr const char* kSetInterval = "MaintenanceThread::SetInterval";
constexpr const char* kRun = "MaintenanceThread::Run";
constexpr const char* kShutdown = "MaintenanceThread::Shutdown";
constexpr unsigned int kInterval = 1;
constexpr unsigned int kLongInterval = 86400;

/// Counts its callbacks. From the second on, a callback does not return before the thread is being
/// shut down.
class Counter : public MaintenanceThreadCallbackInterface {
  public:
    bool OnThreadNotify(unsigned int /*event*/) override {
        std::unique_lock lock(mutex);
        ++callbacks;
        thread = std::this_thread::get_id();
        sigset_t mask{};
        (void)pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        hasMask = sigismember(&mask, SIGUSR2) == 1;
        inside = true;
        changed.notify_all();
        if (callbacks >= 2) {
            changed.wait(lock, [this] { return ending; });
            // Gives a wrong Shutdown, which does not wait for the callback, the time to return
            // first.
            lock.unlock();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            lock.lock();
        }
        inside = false;
        return false;
    }

    /// Waits until there have been @p wanted callbacks; false when they do not come within @p
    /// limit.
    bool WaitFor(unsigned int wanted, std::chrono::seconds limit) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, limit, [&] { return callbacks >= wanted; });
    }

    void End() {
        const std::scoped_lock lock(mutex);
        ending = true;
        changed.notify_all();
    }

    unsigned int Callbacks() {
        const std::scoped_lock lock(mutex);
        return callbacks;
    }
    bool IsInside() {
        const std::scoped_lock lock(mutex);
        return inside;
    }
    bool HasMask() {
        const std::scoped_lock lock(mutex);
        return hasMask;
    }
    std::thread::id Thread() {
        const std::scoped_lock lock(mutex);
        return thread;
    }

  private:
    std::mutex mutex;
    std::condition_variable changed;
    unsigned int callbacks = 0;
    bool inside = false;
    bool ending = false;
    bool hasMask = false;
    std::thread::id thread;
};

/// Runs the thread while SIGUSR2 is blocked here, which shows whether the thread inherits the
/// signal mask.
int RunWithMask(MaintenanceThread& thread) {
    sigset_t blocked{};
    sigset_t previous{};
    (void)sigemptyset(&blocked);
    (void)sigaddset(&blocked, SIGUSR2);
    (void)pthread_sigmask(SIG_BLOCK, &blocked, &previous);
    const int code = thread.Run();
    (void)pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    return code;
}

int Shutdown(Probe& probe, MaintenanceThread& thread) {
    const int code = probe.Code(kShutdown, "", [&] { return thread.Shutdown(); });
    if (code != 0) {
        probe.Told().Fail(kShutdown, "returns " + std::to_string(code));
    }
    return code;
}

void ExamineCallbacks(Probe& probe, Counter& counter, Clock::time_point begun) {
    Report& report = probe.Told();
    // The second callback is due after two intervals; the limit is for what comes on top.
    const std::chrono::seconds patience = 2 * std::chrono::seconds(kInterval) + probe.Limit();
    if (!counter.WaitFor(2, patience)) {
        report.Fail(kRun, "makes " + Counted(counter.Callbacks(), "callback") + " in " +
                              std::to_string(patience.count()) + " s, with an interval of " +
                              std::to_string(kInterval) + " s");
        return;
    }
    const auto elapsed = Clock::now() - begun;
    report.Note("two callbacks within " + TimeText(elapsed) + " of MaintenanceThread::Run");
    // The first may come at once, the second not before its interval is over.
    if (elapsed < std::chrono::seconds(kInterval)) {
        report.Fail(kRun, "the second callback comes " + TimeText(elapsed) +
                              " after the start, with an interval of " + std::to_string(kInterval) +
                              " s");
    }
    if (counter.Thread() == std::this_thread::get_id()) {
        report.Fail(kRun, "calls back on the thread of its caller");
    }
    if (!counter.HasMask()) {
        report.Fail(kRun, "the thread has not inherited the signal mask of the caller");
    }
}

/// Examines one run, which is shut down during a callback.
void ExamineRun(Probe& probe, MaintenanceThread& thread, Counter& counter) {
    const Clock::time_point begun = Clock::now();
    const int running = probe.Code(kRun, "", [&] { return RunWithMask(thread); });
    if (running == 0) {
        ExamineCallbacks(probe, counter, begun);
    }
    counter.End();
    (void)Shutdown(probe, thread);
    if (counter.IsInside()) {
        probe.Told().Fail(kShutdown, "returns before the callback does");
    }
}

void ExamineBase(Probe& probe, MaintenanceThreadCallbackInterface& base) {
    constexpr const char* kCall = "MaintenanceThreadCallbackInterface::OnThreadNotify";
    bool answer = true;
    probe.Tell(
        kCall, "0", [&] { answer = base.OnThreadNotify(0); },
        [&] { return std::string(answer ? "true" : "false"); });
    if (answer) {
        probe.Told().Fail(kCall, "the base returns true");
    }
}

void SetInterval(Probe& probe, MaintenanceThread& thread, unsigned int interval) {
    probe.Tell(
        kSetInterval, std::to_string(interval), [&] { thread.SetInterval(interval); },
        [] { return std::string(); });
}

}  // namespace

void ExamineMaintenance(Probe& probe, const Options& /*options*/) {
    constexpr const char* kInterface = "MaintenanceThreadCallbackInterface";
    const auto base = Own(probe, kInterface, new MaintenanceThreadCallbackInterface);
    ExamineBase(probe, *base);
    const auto counter = Own(probe, kInterface, new Counter);
    const auto thread =
        TellObject<MaintenanceThread>(probe, "MaintenanceThread", std::to_string(kLongInterval),
                                      counter.get(), kLongInterval, 0U);
    if (thread == nullptr) {
        for (const char* const call : {kInitialize, kSetInterval, kRun, kShutdown}) {
            probe.Skip(call, "there is no thread");
        }
        return;
    }
    (void)Shutdown(probe, *thread);
    (void)probe.Code(kInitialize, "", [&] { return thread->Initialize(); });
    SetInterval(probe, *thread, kInterval);
    ExamineRun(probe, *thread, *counter);
    // Shutdown must not wait for the end of a long interval.
    SetInterval(probe, *thread, kLongInterval);
    (void)probe.Code(kRun, "", [&] { return thread->Run(); });
    (void)Shutdown(probe, *thread);
    (void)Shutdown(probe, *thread);
}

}  // namespace conformance
