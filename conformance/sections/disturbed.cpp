// Calls that are made by two threads at a time, and while signals arrive.
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <barrier>
#include <csignal>
#include <functional>
#include <thread>

#include "conformance/sections/sections.h"

namespace conformance {

namespace {

using Outcomes = std::vector<Outcome>;

/// Makes a call several times under the circumstances to be examined.
using Disturbance = std::function<Outcomes(const Repeatable&)>;

/// How often a call is compared whose values differ, because the device may have changed.
constexpr int kTries = 5;

/// Makes the call @p times, undisturbed.
void MakeAlone(const Repeatable& call, int times, Outcomes& outcomes) {
    for (int time = 0; time < times; ++time) {
        outcomes.push_back(call.make());
    }
}

/// The first of @p outcomes that differs from @p usual in @p part; null if none does.
const Outcome* FindOther(const Outcomes& outcomes, const Outcome& usual,
                         std::string Outcome::*part) {
    const auto found = std::find_if(outcomes.begin(), outcomes.end(), [&](const Outcome& outcome) {
        return outcome.*part != usual.*part;
    });
    return found == outcomes.end() ? nullptr : &*found;
}

std::string Difference(const Outcome& other, const std::string& circumstances,
                       const Outcome& usual) {
    return "answers " + other.Text() + " " + circumstances + ", otherwise " + usual.Text();
}

/// Makes @p call undisturbed, then as @p disturbance makes it, and then undisturbed again. All
/// codes must be the same. Values may change on a device that is in use. They are compared only if
/// those of the undisturbed calls are the same, and they are wrong only if they differ each time.
void Compare(Probe& probe, const Repeatable& call, const std::string& circumstances,
             const Disturbance& disturbance) {
    Report& report = probe.Told();
    const std::string what = call.call + " " + circumstances + ": ";
    std::string difference;
    int differing = 0;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        // As many undisturbed calls as disturbed ones show a value that changes with every call.
        // The first attempt does without them, because it finds no difference in most cases.
        const int alone = attempt == 0 ? 1 : 20;
        Outcomes undisturbed;
        MakeAlone(call, alone, undisturbed);
        const auto begun = std::chrono::steady_clock::now();
        const Outcomes disturbed = disturbance(call);
        const auto time = std::chrono::steady_clock::now() - begun;
        MakeAlone(call, alone, undisturbed);
        const Outcome& usual = undisturbed.front();
        if (FindOther(undisturbed, usual, &Outcome::code) != nullptr) {
            continue;
        }
        if (const Outcome* other = FindOther(disturbed, usual, &Outcome::code)) {
            report.Fail(call.call, Difference(*other, circumstances, usual));
            return;
        }
        if (FindOther(undisturbed, usual, &Outcome::values) != nullptr) {
            continue;
        }
        const Outcome* const other = FindOther(disturbed, usual, &Outcome::values);
        if (other == nullptr) {
            report.Note(what + std::to_string(disturbed.size()) + " calls in " + TimeText(time) +
                        ", all alike");
            return;
        }
        difference = Difference(*other, circumstances, usual);
        ++differing;
    }
    if (differing == kTries) {
        report.Fail(call.call, difference);
    } else {
        report.Note(what + "its answer changes by itself");
    }
}

Outcomes FromTwoThreads(const Repeatable& call) {
    constexpr int kRounds = 20;
    std::barrier together(2);
    const auto make = [&](Outcomes& outcomes) {
        for (int round = 0; round < kRounds; ++round) {
            together.arrive_and_wait();
            outcomes.push_back(call.make());
        }
    };
    Outcomes outcomes;
    Outcomes others;
    {
        const std::jthread other(make, std::ref(others));
        make(outcomes);
    }
    outcomes.insert(outcomes.end(), others.begin(), others.end());
    return outcomes;
}

std::atomic<int> gSignals = 0;

extern "C" void Count(int /*signal*/) {
    ++gSignals;
}

/// Counts SIGUSR1 for the lifetime of the object. System calls that the signal interrupts fail (no
/// SA_RESTART).
class CountedSignal {
  public:
    CountedSignal() {
        struct sigaction action {};
        action.sa_handler = Count;
        (void)sigaction(SIGUSR1, &action, &previous);
    }
    ~CountedSignal() { (void)sigaction(SIGUSR1, &previous, nullptr); }
    CountedSignal(const CountedSignal&) = delete;
    CountedSignal& operator=(const CountedSignal&) = delete;

  private:
    struct sigaction previous {};
};

Outcomes UnderSignals(const Repeatable& call) {
    constexpr int kSignals = 10;
    constexpr int kMostCalls = 100'000;
    const CountedSignal counted;
    const pthread_t caller = pthread_self();
    const int before = gSignals;
    Outcomes outcomes;
    {
        const std::jthread sender([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                (void)pthread_kill(caller, SIGUSR1);
                // Gives a call that starts again after an interruption the time to finish.
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            }
        });
        for (int made = 0; gSignals - before < kSignals && made < kMostCalls; ++made) {
            outcomes.push_back(call.make());
        }
    }
    return outcomes;
}

void CompareAll(Probe& probe, const std::string& circumstances, const Disturbance& disturbance) {
    for (const Repeatable& call : probe.Kept()) {
        Compare(probe, call, circumstances, disturbance);
    }
}

}  // namespace

void ExamineThreads(Probe& probe, const Options& /*options*/) {
    CompareAll(probe, "from two threads at a time", FromTwoThreads);
}

void ExamineSignals(Probe& probe, const Options& /*options*/) {
    CompareAll(probe, "while signals arrive", UnderSignals);
}

}  // namespace conformance
