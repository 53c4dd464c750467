// Whichever calls of the platform fail, alone or together, the service keeps running and answers.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "tests/faults/cases.h"
#include "tests/faults/expectations.h"
#include "tests/faults/serving.h"

namespace {

/// A kind of request: what it asks for, and from which device.
struct RequestKind {
    const char* name;
    const char* uri;
    /// The member that the answer has besides the login status.
    const char* member;
    Model model;
};

constexpr RequestKind kRequestKinds[] = {
    {"status, 5G", "/srv/status", "statusData", Model::kFiveGWithTwoSims},
    {"status, 3G", "/srv/status", "statusData", Model::kThreeGWithOneSim},
    {"notification", "/srv/notification", "notificationsList", Model::kFiveGWithTwoSims},
    {"connect", "/srv/connect", "", Model::kFiveGWithTwoSims},
    {"disconnect", "/srv/disconnect", "", Model::kFiveGWithTwoSims},
};

constexpr std::size_t kCasesPerLoop = 20;

/// The answer to a request without faults, and the calls that the service makes for it.
struct Healthy {
    std::string body;
    std::map<std::string, int> calls;
};

/// The fault of @p call among @p faults; null when there is none. With @p thrown, only faults that
/// throw an exception count, otherwise only those that do not.
const Fault* FaultIn(const std::vector<Fault>& faults, const std::string& call, bool thrown) {
    const auto found = std::find_if(faults.begin(), faults.end(), [&](const Fault& fault) {
        return fault.call == call && (fault.thrown != Thrown::kNothing) == thrown;
    });
    return found == faults.end() ? nullptr : &*found;
}

/// Returns what is wrong with the answer of @p exchange, or nothing.
std::string FaultOfExchange(const RequestKind& kind, const std::vector<Fault>& faults,
                            const Exchange& exchange) {
    if (FaultIn(faults, "CgiHelper::SendResponse", true) != nullptr) {
        return exchange.body.empty() ? "" : "something was written: " + exchange.body;
    }
    if (exchange.responses != 1) {
        return std::to_string(exchange.responses) + " responses";
    }
    // If the switch of the web UI cannot be read and the call writes nothing, it counts as off.
    const Fault* const webUi = FaultIn(faults, "sys_getWebUICarrierEnabled", false);
    if (webUi != nullptr && webUi->garbage == Garbage::kNone) {
        return exchange.status == 501 && exchange.body == "WebUI feature disabled"
                   ? ""
                   : "not disabled: " + exchange.body;
    }
    if (exchange.status != 200) {
        return "status " + std::to_string(exchange.status);
    }
    return FaultOfAnswer(exchange.body, kind.member);
}

/// Returns what is wrong with the log lines of @p exchange about @p fault, or nothing.
std::string FaultOfLog(const Exchange& exchange, const Fault& fault, bool alone) {
    bool failed = false;
    bool answered = false;
    bool loud = fault.thrown != Thrown::kNothing;
    for (const auto& [call, occurrence] : exchange.failed) {
        if (call == fault.call) {
            failed = true;
            answered = answered || IsAnswer(call, occurrence, fault.code);
            loud = loud || !(IsSilent(call, occurrence) || IsCovered(call, exchange.failed));
        }
    }
    if (!failed) {
        return alone ? "not called" : "";
    }
    if (answered) {
        return "";
    }
    if (loud) {
        return IsLogged(exchange, fault) ? "" : "not logged";
    }
    return alone && !exchange.errors.empty() ? "logged: " + exchange.errors.front() : "";
}

void Check(Report& report, const RequestKind& kind, const std::vector<Fault>& faults,
           const Exchange& exchange) {
    ++report.cases;
    const std::string wrong = FaultOfExchange(kind, faults, exchange);
    if (!wrong.empty()) {
        report.Problem(std::string(kind.name) + ": " + Describe(faults) + ": " + wrong);
    }
    for (const Fault& fault : faults) {
        const std::string log = FaultOfLog(exchange, fault, faults.size() == 1);
        if (!log.empty()) {
            report.Problem(std::string(kind.name) + ": " + Describe({fault}) + " in " +
                           Describe(faults) + ": " + log);
        }
    }
}

void CheckLaterAnswer(Report& report, const RequestKind& kind, const std::vector<Fault>& faults,
                      const std::string& body, const std::string& expected) {
    if (body != expected) {
        report.Problem(std::string(kind.name) + ": " + Describe(faults) + ": afterwards " + body +
                       " instead of " + expected);
    }
}

/// Serves requests without faults and returns the last one: later requests differ from the first,
/// because the service reads some values only once.
Healthy Settle(Report& report, const RequestKind& kind, Device& device) {
    const std::vector<Exchange> seen = Serve(device, kind.uri, {{}, {}, {}});
    report.Note(seen);
    const Exchange& last = seen.back();
    const std::string wrong = FaultOfExchange(kind, {Fault{}}, last);
    if (seen.size() != 4 || !wrong.empty() || !last.errors.empty() || last.body != seen[2].body) {
        report.Problem(std::string(kind.name) + ": wrong answer without faults: " + wrong +
                       last.body);
    }
    return {last.body, last.calls};
}

/// Tries each case in a process that has served requests before, followed by a request without
/// faults.
void CheckSettled(Report& report, const RequestKind& kind, Device& device, const Healthy& healthy,
                  const std::vector<std::vector<Fault>>& cases) {
    for (std::size_t first = 0; first < cases.size(); first += kCasesPerLoop) {
        const std::size_t end = std::min(first + kCasesPerLoop, cases.size());
        std::vector<std::vector<Fault>> plan = {{}};
        for (std::size_t i = first; i < end; ++i) {
            plan.push_back(cases[i]);
            plan.emplace_back();
        }
        const std::size_t requests = plan.size();
        const std::vector<Exchange> seen = Serve(device, kind.uri, std::move(plan));
        if (seen.size() != requests + 1) {
            report.Problem(std::string(kind.name) + ": the loop has ended in the cases from " +
                           Describe(cases[first]));
            return;
        }
        for (std::size_t i = first; i < end; ++i) {
            const std::size_t faulty = 2 + 2 * (i - first);
            Check(report, kind, cases[i], seen[faulty]);
            CheckLaterAnswer(report, kind, cases[i], seen[faulty + 1].body, healthy.body);
        }
    }
}

/// The faults among @p faults, in the first request, that affect all later requests, too.
std::vector<Fault> Lasting(const RequestKind& kind, const std::vector<Fault>& faults) {
    std::vector<Fault> lasting;
    if (kind.member == std::string("statusData")) {
        // If the subscriber cannot be read, the service does not read the SIM's group identifier.
        const bool noSim = FaultIn(faults, "sys_getSubscriberInfo", false) != nullptr;
        std::copy_if(
            faults.begin(), faults.end(), std::back_inserter(lasting), [&](const Fault& fault) {
                return IsReadOnce(fault.call) && !(noSim && fault.call == "sys_getSIMCarrierGID");
            });
    }
    return lasting;
}

/// The answer to later requests if @p faults have affected calls that the process makes only once:
/// the same as that for a device whose calls succeed with the values that the failed calls have
/// left.
std::string Remembered(const RequestKind& kind, const std::vector<Fault>& faults) {
    Device device(kind.model);
    for (const Fault& fault : faults) {
        const bool list = fault.call.starts_with("webui_");
        const Garbage zero = list ? Garbage::kNone : Garbage::kZero;
        // The service uses the value that a failed call has written only if it is a switch.
        const bool written = fault.call.ends_with("Enabled") && fault.garbage != Garbage::kNone;
        device.standing.push_back(
            {fault.call, SuccessOf(fault.call), written ? fault.garbage : zero});
    }
    return Serve(device, kind.uri, {{}, {}, {}}).back().body;
}

/// Whether @p exchange has read the active SIM slot, so that the next answer can show it.
bool KnowsSlot(const RequestKind& kind, const Exchange& exchange) {
    const std::string call = "sys_getActiveSimSlot";
    return std::string(kind.member) != "statusData" || kind.model == Model::kThreeGWithOneSim ||
           (exchange.calls.count(call) != 0 && exchange.failed.count({call, 1}) == 0);
}

/// Tries each case in the very first request of a process.
void CheckFirst(Report& report, const RequestKind& kind, const std::string& healthy,
                const std::vector<std::vector<Fault>>& cases) {
    for (const std::vector<Fault>& faults : cases) {
        std::string expected = healthy;
        if (const std::vector<Fault> lasting = Lasting(kind, faults); !lasting.empty()) {
            Report twin;
            InFreshProcess(twin, "twin",
                           [&](Report& own) { own.texts.push_back(Remembered(kind, lasting)); });
            expected = twin.texts.empty() ? "" : twin.texts.front();
        }
        const std::string wrong = FaultOfAnswer(expected, kind.member);
        if (!wrong.empty()) {
            report.Problem(std::string(kind.name) + ": " + Describe(faults) +
                           ": the expected answer is wrong: " + wrong);
        }
        InFreshProcess(report, Describe(faults), [&](Report& own) {
            Device device(kind.model);
            const std::vector<Exchange> seen = Serve(device, kind.uri, {faults, {}, {}});
            own.Note(seen);
            if (seen.size() != 4) {
                own.Problem(Describe(faults) + ": the loop has ended");
                return;
            }
            Check(own, kind, faults, seen[1]);
            if (KnowsSlot(kind, seen[1])) {
                CheckLaterAnswer(own, kind, faults, seen[2].body, expected);
            }
            CheckLaterAnswer(own, kind, faults, seen[3].body, expected);
        });
    }
}

/// The calls that the first request of a process makes.
std::map<std::string, int> CallsOfFirst(Report& report, const RequestKind& kind) {
    Report trace;
    InFreshProcess(trace, kind.name, [&](Report& own) {
        Device device(kind.model);
        own.Note(Serve(device, kind.uri, {{}}).back());
    });
    report.Add(trace);
    return trace.calls;
}

/// The answer and the calls of @p kind in a new process that has served requests before.
Healthy Settled(Report& report, const RequestKind& kind) {
    Healthy healthy;
    Report trace;
    InFreshProcess(trace, kind.name, [&](Report& own) {
        Device device(kind.model);
        healthy = Settle(own, kind, device);
        own.calls = healthy.calls;
        if (own.problems == 0) {
            own.texts.push_back(healthy.body);
        }
    });
    report.problems += trace.problems;
    healthy.body = trace.texts.empty() ? "" : trace.texts.front();
    healthy.calls = trace.calls;
    return healthy;
}

/// Runs the cases that @p make builds from the calls of a process that has served requests before.
template <typename Make>
void CheckAllSettled(Report& report, const RequestKind& kind, Make make) {
    InFreshProcess(report, kind.name, [&](Report& own) {
        Device device(kind.model);
        const Healthy healthy = Settle(own, kind, device);
        CheckSettled(own, kind, device, healthy, make(healthy.calls));
    });
}

TEST(FaultMatrix, EachCallFailingAloneInALaterRequest) {
    Report report;
    for (const RequestKind& kind : kRequestKinds) {
        CheckAllSettled(report, kind, [](const std::map<std::string, int>& calls) {
            return Sampled(Singles(calls), kSampled ? 3 : 1);
        });
    }
    Print("single calls", report);
}

TEST(FaultMatrix, EachPairOfCallsFailingTogether) {
    Report report;
    for (const RequestKind& kind : {kRequestKinds[0], kRequestKinds[1], kRequestKinds[2]}) {
        CheckAllSettled(report, kind, [](const std::map<std::string, int>& calls) {
            return Pairs(calls, kSampled ? 7 : 1);
        });
    }
    Print("pairs", report);
}

TEST(FaultMatrix, AllCallsFailingAtOnce) {
    Report report;
    for (const RequestKind& kind : kRequestKinds) {
        CheckAllSettled(report, kind, AllAtOnce);
    }
    Print("all at once", report);
}

TEST(FaultMatrix, EachCallFailingInTheFirstRequestOfAProcess) {
    Report report;
    for (const RequestKind& kind : {kRequestKinds[0], kRequestKinds[1], kRequestKinds[2]}) {
        const Healthy healthy = Settled(report, kind);
        std::vector<std::vector<Fault>> cases;
        for (const auto& [call, times] : CallsOfFirst(report, kind)) {
            const auto settled = healthy.calls.find(call);
            const std::vector<Fault> faults = FaultsOf(call, times);
            // For calls that later requests make as well, another test tries all ways.
            const bool known = settled != healthy.calls.end() && settled->second == times;
            for (std::size_t i = 0;
                 i < (known ? std::min<std::size_t>(2, faults.size()) : faults.size()); ++i) {
                cases.push_back({faults[i]});
            }
        }
        CheckFirst(report, kind, healthy.body, Sampled(cases, kSampled ? 11 : 1));
    }
    Print("first request", report);
}

TEST(FaultMatrix, AllCallsFailingInTheFirstRequestOfAProcess) {
    Report report;
    for (const RequestKind& kind : kRequestKinds) {
        CheckFirst(report, kind, Settled(report, kind).body,
                   Sampled(AllAtOnce(CallsOfFirst(report, kind)), kSampled ? 5 : 1));
    }
    Print("all at once, first request", report);
}

}  // namespace
