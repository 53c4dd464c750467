// Whichever calls fail at the start or the end of the process or between requests, the process does
// not crash.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>

#include "declared_calls.h"
#include "service/keepalive/keep_alive_handler.h"
#include "service/process.h"
#include "tests/faults/cases.h"
#include "tests/faults/expectations.h"
#include "tests/faults/serving.h"

int KestalMain(int argc, char** argv);

namespace {

constexpr const char* kUri = "/srv/notification";

int RunMain() {
    char name[] = "kestal.cgi";
    std::array<char*, 2> arguments = {name, nullptr};
    const int result = KestalMain(1, arguments.data());
    gOperationDeadline.End();
    if (result != 0) {
        (void)std::fprintf(stderr, "main returned %d\n", result);
        _exit(1);
    }
    return result;
}

/// The calls that are not made for a request.
std::map<std::string, int> CallsOfProcess(Report& report) {
    Report trace;
    InFreshProcess(trace, "process", [](Report& own) {
        Device device(Model::kFiveGWithTwoSims);
        const Exchange inLoop = Serve(device, kUri, {{}}).back();
        const std::vector<Exchange> whole = Serve(device, kUri, {{}}, RunMain);
        own.Note(whole.front());
        for (const auto& [call, times] : whole.back().calls) {
            if (inLoop.calls.count(call) == 0) {
                own.calls[call] = times + own.calls[call];
            }
        }
        own.texts.push_back(whole.back().body);
    });
    report.Add(trace);
    return trace.calls;
}

bool IsWithoutWriter(const Fault& fault) {
    return fault.call == "CgiHelper::GetInstance" &&
           (fault.code != 0 || fault.thrown != Thrown::kNothing);
}

void CheckProcess(Report& report, const Fault& fault, const std::string& healthy) {
    Device device(Model::kFiveGWithTwoSims);
    device.standing = {fault};
    const std::vector<Exchange> seen = Serve(device, kUri, {{}, {}}, RunMain);
    ++report.cases;
    Exchange all;
    for (const Exchange& exchange : seen) {
        all.errors.insert(all.errors.end(), exchange.errors.begin(), exchange.errors.end());
        all.failed.insert(exchange.failed.begin(), exchange.failed.end());
    }
    if (all.failed.empty()) {
        report.Problem(Describe({fault}) + ": not called");
    }
    // Without the response writer, no request can be answered. The process ends, and the web server
    // starts another one.
    const std::size_t answers = IsWithoutWriter(fault) ? 0 : 2;
    if (seen.size() != 1 + answers) {
        report.Problem(Describe({fault}) + ": " + std::to_string(seen.size() - 1) + " requests");
    }
    for (std::size_t i = 1; i < seen.size(); ++i) {
        if (seen[i].body != healthy) {
            report.Problem(Describe({fault}) + ": answer " + seen[i].body);
        }
    }
    const bool loud = fault.thrown != Thrown::kNothing || !IsSilent(fault.call, 0);
    if (loud && !IsLogged(all, fault)) {
        report.Problem(Describe({fault}) + ": not logged");
    }
    const bool failed = std::any_of(all.errors.begin(), all.errors.end(), [](const auto& line) {
        return line.find("failed") != std::string::npos;
    });
    if (!loud && failed) {
        report.Problem(Describe({fault}) + ": logged");
    }
}

TEST(ProcessFaults, EachCallFailingAlone) {
    Report report;
    const std::map<std::string, int> calls = CallsOfProcess(report);
    const std::string healthy = report.texts.empty() ? "" : report.texts.front();
    report.texts.clear();
    EXPECT_EQ(FaultOfAnswer(healthy, "notificationsList"), "");
    for (const auto& [call, times] : calls) {
        for (const Fault& fault : FaultsOf(call, 1)) {
            InFreshProcess(report, Describe({fault}),
                           [&](Report& own) { CheckProcess(own, fault, healthy); });
        }
    }
    Print("start and end of the process", report);
}

TEST(ProcessFaults, KeepAliveThatCannotBeSentIsFollowedByTheNext) {
    Report report;
    InFreshProcess(report, "keep-alive", [](Report& own) {
        Device device(Model::kFiveGWithTwoSims);
        recording::Direct(&device);
        gKeepAliveHandler.Initialize();
        for (const Fault& fault : FaultsOf("watchdog_application_send_keep_alive", 1)) {
            device.standing = {fault};
            ++own.cases;
            if (gKeepAliveHandler.OnThreadNotify(0) || !device.exchanges.front().errors.empty()) {
                own.Problem(Describe({fault}));
            }
        }
        recording::Direct(nullptr);
        own.Note(device.exchanges);
        const long sent = own.calls["watchdog_application_send_keep_alive"];
        if (sent != own.cases) {
            own.Problem(std::to_string(sent) + " keep-alives sent");
        }
    });
    Print("keep-alive", report);
}

TEST(DeclaredCalls, EachIsMadeByTheServiceOrHasAReasonWhyNot) {
    Report report;
    CallsOfProcess(report);
    for (const Model model : {Model::kFiveGWithTwoSims, Model::kThreeGWithOneSim}) {
        for (const char* uri :
             {"/srv/status", "/srv/notification", "/srv/connect", "/srv/disconnect"}) {
            InFreshProcess(report, uri, [&](Report& own) {
                Device device(model);
                own.Note(Serve(device, uri, {{}, {}}));
            });
        }
    }
    std::set<std::string> names = NamesInTables();
    for (const DeclaredCall& declared : kDeclaredCalls) {
        const std::string call = declared.name;
        names.erase(call);
        // A call that is made outside of requests, and an object that is made before main.
        const bool seen = report.calls.count(call) != 0 ||
                          call == "watchdog_application_send_keep_alive" ||
                          call == "MaintenanceThread::MaintenanceThread";
        EXPECT_NE(seen, ReasonNotToCall(call) != nullptr) << call;
    }
    EXPECT_TRUE(names.empty()) << "not declared: " << *names.begin();
    std::printf("[ faults   ] %zu calls declared\n", std::size(kDeclaredCalls));
}

}  // namespace
