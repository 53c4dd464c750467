// Calls that are made by two threads at a time, and while signals arrive.
#include <pthread.h>

#include <atomic>
#include <barrier>
#include <csignal>
#include <functional>
#include <thread>

#include "conformance/sections/sections.h"

namespace conformance {

namespace {

using Answers = std::vector<std::string>;

/// How often a call is compared again when its answer has changed meanwhile.
constexpr int kTries = 5;

/// Makes @p call undisturbed, then as @p disturbed makes it, and then undisturbed again. All
/// answers must be the same. If the two undisturbed answers differ, the device has changed and the
/// comparison starts again.
void Compare(Probe& probe, const Repeatable& call, const std::string& circumstances,
             const std::function<Answers(const Repeatable&)>& disturbed) {
    Report& report = probe.Told();
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const std::string before = call.answer();
        const auto begun = std::chrono::steady_clock::now();
        const Answers answers = disturbed(call);
        const auto time = std::chrono::steady_clock::now() - begun;
        if (call.answer() != before) {
            continue;
        }
        for (const std::string& answer : answers) {
            if (answer != before) {
                std::string reason = "answers " + answer;
                reason.append(" ").append(circumstances).append(", otherwise ").append(before);
                report.Fail(call.call, reason);
                return;
            }
        }
        report.Note(call.call + " " + circumstances + ": " + std::to_string(answers.size()) +
                    " calls in " + TimeText(time) + ", all alike");
        return;
    }
    report.Note(call.call + " " + circumstances + ": its answer changes by itself");
}

Answers FromTwoThreads(const Repeatable& call) {
    constexpr int kRounds = 20;
    std::barrier together(2);
    const auto make = [&](Answers& answers) {
        for (int round = 0; round < kRounds; ++round) {
            together.arrive_and_wait();
            answers.push_back(call.answer());
        }
    };
    Answers answers;
    Answers others;
    {
        const std::jthread other(make, std::ref(others));
        make(answers);
    }
    answers.insert(answers.end(), others.begin(), others.end());
    return answers;
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

Answers UnderSignals(const Repeatable& call) {
    constexpr int kSignals = 10;
    constexpr int kMostCalls = 100'000;
    const CountedSignal counted;
    const pthread_t caller = pthread_self();
    const int before = gSignals;
    Answers answers;
    {
        const std::jthread sender([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                (void)pthread_kill(caller, SIGUSR1);
                // Gives a call that starts again after an interruption the time to finish.
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            }
        });
        for (int made = 0; gSignals - before < kSignals && made < kMostCalls; ++made) {
            answers.push_back(call.answer());
        }
    }
    return answers;
}

void CompareAll(Probe& probe, const std::string& circumstances,
                const std::function<Answers(const Repeatable&)>& disturbed) {
    for (const Repeatable& call : probe.Kept()) {
        Compare(probe, call, circumstances, disturbed);
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
