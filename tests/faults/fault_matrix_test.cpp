// Whichever calls of the platform fail, alone or together, the service lives on and answers.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "tests/faults/cases.h"
#include "tests/faults/expectations.h"
#include "tests/faults/serving.h"

namespace {

/// A kind of request: a way through the service.
struct Road {
    const char* name;
    const char* uri;
    /// Member of the answer beside the login status.
    const char* member;
    Model model;
};

constexpr Road kRoads[] = {
    {"status, 5G", "/srv/status", "statusData", Model::kFiveGWithTwoSims},
    {"status, 3G", "/srv/status", "statusData", Model::kThreeGWithOneSim},
    {"notification", "/srv/notification", "notificationsList", Model::kFiveGWithTwoSims},
    {"connect", "/srv/connect", "", Model::kFiveGWithTwoSims},
    {"disconnect", "/srv/disconnect", "", Model::kFiveGWithTwoSims},
};

constexpr std::size_t kCasesPerLoop = 20;

/// What a request without faults is answered, and the calls that are made for it.
struct Healthy {
    std::string body;
    std::map<std::string, int> calls;
};

/// The fault of @p call among @p faults, by exception or by result; null when there is none.
const Fault* FaultIn(const std::vector<Fault>& faults, const std::string& call, bool thrown) {
    const auto found = std::find_if(faults.begin(), faults.end(), [&](const Fault& fault) {
        return fault.call == call && (fault.thrown != Thrown::kNothing) == thrown;
    });
    return found == faults.end() ? nullptr : &*found;
}

/// What is wrong with the answer of @p exchange; empty when nothing is.
std::string FaultOfExchange(const Road& road, const std::vector<Fault>& faults,
                            const Exchange& exchange) {
    if (FaultIn(faults, "CgiHelper::SendResponse", true) != nullptr) {
        return exchange.body.empty() ? "" : "something was written: " + exchange.body;
    }
    if (exchange.responses != 1) {
        return std::to_string(exchange.responses) + " responses";
    }
    // The switch of the web UI is off when it cannot be read and nothing was written.
    const Fault* const webUi = FaultIn(faults, "sys_getWebUICarrierEnabled", false);
    if (webUi != nullptr && webUi->garbage == Garbage::kNone) {
        return exchange.status == 501 && exchange.body == "WebUI feature disabled"
                   ? ""
                   : "not disabled: " + exchange.body;
    }
    if (exchange.status != 200) {
        return "status " + std::to_string(exchange.status);
    }
    return FaultOfAnswer(exchange.body, road.member);
}

/// What is wrong with what the log of @p exchange tells of @p fault; empty when nothing is.
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

void Check(Report& report, const Road& road, const std::vector<Fault>& faults,
           const Exchange& exchange) {
    ++report.cases;
    const std::string wrong = FaultOfExchange(road, faults, exchange);
    if (!wrong.empty()) {
        report.Problem(std::string(road.name) + ": " + Describe(faults) + ": " + wrong);
    }
    for (const Fault& fault : faults) {
        const std::string log = FaultOfLog(exchange, fault, faults.size() == 1);
        if (!log.empty()) {
            report.Problem(std::string(road.name) + ": " + Describe({fault}) + " in " +
                           Describe(faults) + ": " + log);
        }
    }
}

void CheckMended(Report& report, const Road& road, const std::vector<Fault>& faults,
                 const std::string& body, const std::string& expected) {
    if (body != expected) {
        report.Problem(std::string(road.name) + ": " + Describe(faults) + ": afterwards " + body +
                       " instead of " + expected);
    }
}

/// The answer without faults in a process that has served requests before.
Healthy Settle(Report& report, const Road& road, Device& device) {
    const std::vector<Exchange> seen = Serve(device, road.uri, {{}, {}, {}});
    report.Note(seen);
    const Exchange& last = seen.back();
    const std::string wrong = FaultOfExchange(road, {Fault{}}, last);
    if (seen.size() != 4 || !wrong.empty() || !last.errors.empty() || last.body != seen[2].body) {
        report.Problem(std::string(road.name) + ": no healthy answer: " + wrong + last.body);
    }
    return {last.body, last.calls};
}

/// Tries each case in a process that has served requests before, followed by a request without
/// faults.
void CheckSettled(Report& report, const Road& road, Device& device, const Healthy& healthy,
                  const std::vector<std::vector<Fault>>& cases) {
    for (std::size_t first = 0; first < cases.size(); first += kCasesPerLoop) {
        const std::size_t end = std::min(first + kCasesPerLoop, cases.size());
        std::vector<std::vector<Fault>> plan = {{}};
        for (std::size_t i = first; i < end; ++i) {
            plan.push_back(cases[i]);
            plan.emplace_back();
        }
        const std::size_t requests = plan.size();
        const std::vector<Exchange> seen = Serve(device, road.uri, std::move(plan));
        if (seen.size() != requests + 1) {
            report.Problem(std::string(road.name) + ": the loop has ended in the cases from " +
                           Describe(cases[first]));
            return;
        }
        for (std::size_t i = first; i < end; ++i) {
            const std::size_t faulty = 2 + 2 * (i - first);
            Check(report, road, cases[i], seen[faulty]);
            CheckMended(report, road, cases[i], seen[faulty + 1].body, healthy.body);
        }
    }
}

/// Those of @p faults in the first request whose effect lasts as long as the process.
std::vector<Fault> Lasting(const Road& road, const std::vector<Fault>& faults) {
    std::vector<Fault> lasting;
    if (road.member == std::string("statusData")) {
        // Without a subscriber, nobody asks for the group identifier of the SIM.
        const bool noSim = FaultIn(faults, "sys_getSubscriberInfo", false) != nullptr;
        std::copy_if(
            faults.begin(), faults.end(), std::back_inserter(lasting), [&](const Fault& fault) {
                return IsReadOnce(fault.call) && !(noSim && fault.call == "sys_getSIMCarrierGID");
            });
    }
    return lasting;
}

/// What the process answers from then on when @p faults have hit calls that it makes only once: the
/// same as on a device whose calls succeed with what the failed calls have left.
std::string Remembered(const Road& road, const std::vector<Fault>& faults) {
    Device device(road.model);
    for (const Fault& fault : faults) {
        const bool list = fault.call.starts_with("webui_");
        const Garbage zero = list ? Garbage::kNone : Garbage::kZero;
        // Only a switch takes the value that a failed call has written.
        const bool written = fault.call.ends_with("Enabled") && fault.garbage != Garbage::kNone;
        device.standing.push_back(
            {fault.call, SuccessOf(fault.call), written ? fault.garbage : zero});
    }
    return Serve(device, road.uri, {{}, {}, {}}).back().body;
}

/// Whether the slot in use is known after @p exchange: it shows one request later.
bool KnowsSlot(const Road& road, const Exchange& exchange) {
    const std::string call = "sys_getActiveSimSlot";
    return std::string(road.member) != "statusData" || road.model == Model::kThreeGWithOneSim ||
           (exchange.calls.count(call) != 0 && exchange.failed.count({call, 1}) == 0);
}

/// Tries each case in the very first request of a process.
void CheckFirst(Report& report, const Road& road, const std::string& healthy,
                const std::vector<std::vector<Fault>>& cases) {
    for (const std::vector<Fault>& faults : cases) {
        std::string expected = healthy;
        if (const std::vector<Fault> lasting = Lasting(road, faults); !lasting.empty()) {
            Report twin;
            InFreshProcess(twin, "twin",
                           [&](Report& own) { own.texts.push_back(Remembered(road, lasting)); });
            expected = twin.texts.empty() ? "" : twin.texts.front();
        }
        const std::string wrong = FaultOfAnswer(expected, road.member);
        if (!wrong.empty()) {
            report.Problem(std::string(road.name) + ": " + Describe(faults) +
                           ": no answer to expect: " + wrong);
        }
        InFreshProcess(report, Describe(faults), [&](Report& own) {
            Device device(road.model);
            const std::vector<Exchange> seen = Serve(device, road.uri, {faults, {}, {}});
            own.Note(seen);
            if (seen.size() != 4) {
                own.Problem(Describe(faults) + ": the loop has ended");
                return;
            }
            Check(own, road, faults, seen[1]);
            if (KnowsSlot(road, seen[1])) {
                CheckMended(own, road, faults, seen[2].body, expected);
            }
            CheckMended(own, road, faults, seen[3].body, expected);
        });
    }
}

/// The calls that the first request of a process makes.
std::map<std::string, int> CallsOfFirst(Report& report, const Road& road) {
    Report trace;
    InFreshProcess(trace, road.name, [&](Report& own) {
        Device device(road.model);
        own.Note(Serve(device, road.uri, {{}}).back());
    });
    report.Add(trace);
    return trace.calls;
}

/// The calls that @p road makes in a process that has served requests before.
Healthy Settled(Report& report, const Road& road) {
    Healthy healthy;
    Report trace;
    InFreshProcess(trace, road.name, [&](Report& own) {
        Device device(road.model);
        healthy = Settle(own, road, device);
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
void CheckAllSettled(Report& report, const Road& road, Make make) {
    InFreshProcess(report, road.name, [&](Report& own) {
        Device device(road.model);
        const Healthy healthy = Settle(own, road, device);
        CheckSettled(own, road, device, healthy, make(healthy.calls));
    });
}

TEST(FaultMatrix, EachCallFailingAloneInAProcessThatHasSettled) {
    Report report;
    for (const Road& road : kRoads) {
        CheckAllSettled(report, road, [](const std::map<std::string, int>& calls) {
            return Sampled(Singles(calls), kSampled ? 3 : 1);
        });
    }
    Print("single calls", report);
}

TEST(FaultMatrix, EachPairOfCallsFailingTogether) {
    Report report;
    for (const Road& road : {kRoads[0], kRoads[1], kRoads[2]}) {
        CheckAllSettled(report, road, [](const std::map<std::string, int>& calls) {
            return Pairs(calls, kSampled ? 7 : 1);
        });
    }
    Print("pairs", report);
}

TEST(FaultMatrix, AllCallsFailingAtOnce) {
    Report report;
    for (const Road& road : kRoads) {
        CheckAllSettled(report, road, AllAtOnce);
    }
    Print("all at once", report);
}

TEST(FaultMatrix, EachCallFailingAtTheFirstRequestOfAProcess) {
    Report report;
    for (const Road& road : {kRoads[0], kRoads[1], kRoads[2]}) {
        const Healthy healthy = Settled(report, road);
        std::vector<std::vector<Fault>> cases;
        for (const auto& [call, times] : CallsOfFirst(report, road)) {
            const auto settled = healthy.calls.find(call);
            const std::vector<Fault> faults = FaultsOf(call, times);
            // Calls that later requests make as well are tried in all ways there.
            const bool known = settled != healthy.calls.end() && settled->second == times;
            for (std::size_t i = 0;
                 i < (known ? std::min<std::size_t>(2, faults.size()) : faults.size()); ++i) {
                cases.push_back({faults[i]});
            }
        }
        CheckFirst(report, road, healthy.body, Sampled(cases, kSampled ? 11 : 1));
    }
    Print("first request", report);
}

TEST(FaultMatrix, AllCallsFailingAtTheFirstRequestOfAProcess) {
    Report report;
    for (const Road& road : kRoads) {
        CheckFirst(report, road, Settled(report, road).body,
                   Sampled(AllAtOnce(CallsOfFirst(report, road)), kSampled ? 5 : 1));
    }
    Print("all at once, first request", report);
}

}  // namespace
