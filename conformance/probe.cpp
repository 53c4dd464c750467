#include "conformance/probe.h"

#include <unistd.h>

#include <exception>

#include "conformance/crash.h"
#include "declared_calls.h"

namespace conformance {

Probe::Probe(Report& newReport, std::chrono::seconds newLimit)
    : report(newReport),
      limit(newLimit),
      watcher([this](const std::stop_token& stop) { Watch(stop); }) {}

Duration Probe::Make(const std::string& name, const std::function<void()>& call) {
    std::list<Running>::iterator entry;
    {
        const std::scoped_lock lock(mutex);
        made.insert(name);
        entry = running.insert(running.end(), {name, Clock::now()});
    }
    changed.notify_all();
    const CrashName crashName(name.c_str());
    const Clock::time_point begun = Clock::now();
    try {
        call();
    } catch (const std::exception& error) {
        report.Fail(name, "an exception has left it: " + std::string(error.what()));
    }
    const Duration time = Clock::now() - begun;
    const std::scoped_lock lock(mutex);
    running.erase(entry);
    return time;
}

void Probe::Tell(const std::string& name, const std::string& arguments,
                 const std::function<void()>& call, const std::function<std::string()>& seen) {
    const Duration time = Make(name, call);
    report.Answered(name + "(" + arguments + ")", seen(), time);
}

int Probe::Code(const std::string& name, const std::string& arguments,
                const std::function<int()>& call) {
    int code = 0;
    Tell(
        name, arguments, [&] { code = call(); }, [&] { return std::to_string(code); });
    return code;
}

void Probe::Skip(const std::string& name, const std::string& reason) {
    made.insert(name);
    report.Note(name + " is left out: " + reason);
}

void Probe::CheckThatAllWereMade() {
    for (const DeclaredCall& call : kDeclaredCalls) {
        if (!made.contains(call.name)) {
            report.Fail(call.name, "declared in platform/, but this program does not call it");
        }
    }
}

void Probe::Watch(const std::stop_token& stop) {
    std::unique_lock lock(mutex);
    while (!stop.stop_requested()) {
        if (running.empty()) {
            changed.wait(lock, stop, [this] { return !running.empty(); });
            continue;
        }
        const Clock::time_point end = running.front().begun + limit;
        if (Clock::now() >= end) {
            report.Fail(running.front().name,
                        "has not returned within " + std::to_string(limit.count()) + " s");
            (void)report.Summarize();
            // The call cannot be stopped, so the process ends at once, without destructors and
            // other threads.
            _exit(1);
        }
        // Sleeps until the oldest call reaches its limit; it may have returned by then.
        changed.wait_until(lock, stop, end, [] { return false; });
    }
}

}  // namespace conformance
