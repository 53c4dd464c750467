// When an allocation fails, the service keeps running, leaks nothing and answers later requests as
// before.
#include <gtest/gtest.h>
#include <libintl.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "framework/text_domain.h"
#include "tests/faults/cases.h"
#include "tests/faults/failing_memory.h"
#include "tests/faults/serving.h"
#include "tests/faults/watched_gettext.h"

namespace {

/// A device during whose first request an allocation fails.
class ShortOfMemory : public Device {
  public:
    using Device::Device;

    /// The number of the allocation that fails; 0 for none.
    long failing = 0;
    /// Whether all later allocations fail, too, until the end of the request.
    bool persistently = false;
    /// The number of allocations in the first request.
    long count = 0;

    void See(const std::string& line) override {
        Device::See(line);
        if (exchanges.size() == 2) {
            if (line == "FCGX_Accept_r()") {
                failing_memory::FailAt(failing, persistently);
            } else if (line == "FCGX_Finish_r()") {
                count = failing_memory::Stop();
            }
        }
    }
};

struct RequestKind {
    const char* uri;
    const char* member;
    bool loggedIn;
};

constexpr RequestKind kRequestKinds[] = {
    {"/srv/status", "statusData", true},
    {"/srv/status", "statusData", false},
    {"/srv/notification", "notificationsList", true},
    {"/srv/connect", "", true},
    {"/srv/connect", "", false},
    {"/srv/disconnect", "", true},
};

void LogIn(Device& device, bool loggedIn) {
    device.standing.clear();
    if (!loggedIn) {
        device.standing = {{"AuthSession::Init", 9101}};
    }
}

/// The results without a failure. After a failure, later answers must have the same body, and no
/// more blocks may be outstanding.
struct Healthy {
    std::string body;
    long outstanding = 0;
    long allocations = 0;
};

void CheckAnswers(Report& report, const std::string& name, const std::vector<Exchange>& seen,
                  std::size_t requests, const std::string& body) {
    if (seen.size() != requests + 1) {
        report.Problem(name + ": the loop has ended");
        return;
    }
    const Exchange& hungry = seen[1];
    const std::string wrong = FaultOfAnswer(hungry.body, "");
    if (hungry.responses != 1 || hungry.status != 200 || !wrong.empty()) {
        report.Problem(name + ": " + std::to_string(hungry.responses) + " responses, status " +
                       std::to_string(hungry.status) + ": " + wrong);
    }
    if (seen.back().body != body) {
        report.Problem(name + ": afterwards " + seen.back().body + " instead of " + body);
    }
}

std::string Name(const RequestKind& kind, long n, bool persistently) {
    return std::string(kind.uri) + (kind.loggedIn ? ", logged in, " : ", ") + "allocation " +
           std::to_string(n) + (persistently ? " and all later ones" : "");
}

/// Tries one case in a process that has served requests before. Returns whether the answer has its
/// member besides the login status.
bool CheckSettled(Report& report, const RequestKind& kind, ShortOfMemory& device,
                  const Healthy& healthy) {
    ++report.cases;
    const std::string name = Name(kind, device.failing, device.persistently);
    const long before = failing_memory::Outstanding();
    bool complete = false;
    {
        const std::vector<Exchange> seen = Serve(device, kind.uri, {{}, {}});
        const long problems = report.problems;
        CheckAnswers(report, name, seen, 2, healthy.body);
        if (report.problems != problems) {
            return false;
        }
        complete = FaultOfAnswer(seen[1].body, kind.member).empty();
    }
    const long after = failing_memory::Outstanding();
    if (after != before) {
        report.Problem(name + ": " + std::to_string(after - before) + " blocks left");
    }
    return complete;
}

class AllocationFailure : public testing::Test {
  protected:
    void SetUp() override {
#ifdef KESTAL_SYSTEM_CTPP2
        GTEST_SKIP() << "CTPP2 follows an invalid pointer if it gets no memory for a text";
#endif
    }
};

TEST_F(AllocationFailure, InALaterRequestLeavesNothingBehind) {
    Report report;
    for (const RequestKind& kind : kRequestKinds) {
        InFreshProcess(report, kind.uri, [&](Report& own) {
            ShortOfMemory device(Model::kFiveGWithTwoSims);
            LogIn(device, kind.loggedIn);
            Healthy healthy;
            for (int i = 0; i < 3; ++i) {
                healthy.body = Serve(device, kind.uri, {{}, {}}).back().body;
            }
            healthy.allocations = device.count;
            own.Note(Serve(device, kind.uri, {{}, {}}));
            if (healthy.allocations == 0 || !FaultOfAnswer(healthy.body, kind.member).empty() ||
                healthy.body.find("notification_sms_received_text") != std::string::npos) {
                own.Problem(std::string(kind.uri) +
                            ": wrong answer without a failure: " + healthy.body);
            }
            const long stride = kSampled ? 5 : 1;
            for (const bool persistently : {false, true}) {
                device.persistently = persistently;
                long incomplete = 0;
                for (long n = 1; n <= healthy.allocations; n += stride) {
                    device.failing = n;
                    incomplete += CheckSettled(own, kind, device, healthy) ? 0 : stride;
                }
                // If one group of the status fails, the answer has the others, and a list of
                // notifications is empty rather than missing. Only if one of the few allocations
                // for the answer itself fails, its member is missing.
                if (!persistently && incomplete > healthy.allocations / 10) {
                    own.Problem(std::to_string(incomplete) + " answers without " + kind.member);
                }
            }
            own.calls[std::string("allocations:") + (kind.uri + 5)] =
                static_cast<int>(healthy.allocations);
        });
    }
    Print("allocations, settled", report);
    for (const auto& [name, count] : report.calls) {
        if (name.starts_with("allocations:")) {
            std::printf("[ faults   ]   %s %d\n", name.c_str(), count);
        }
    }
}

/// Makes the C library allocate its next list of exit functions, which has room for 32. Each static
/// object that is constructed during a request needs an entry. Without this, one of the requests
/// that are compared could begin a new list, which would count as a block that it has leaked.
void BeginListOfExitFunctions() {
    const long before = failing_memory::Outstanding();
    for (int i = 0; i < 32 && failing_memory::Outstanding() == before; ++i) {
        (void)std::atexit([] {});
    }
}

/// Tries one case in the first request of a process. Returns what the process holds at its end.
void CheckFirst(Report& report, const RequestKind& kind, long n, bool persistently,
                const Healthy* healthy) {
    BeginListOfExitFunctions();
    const long before = failing_memory::Outstanding();
    ShortOfMemory device(Model::kFiveGWithTwoSims);
    LogIn(device, kind.loggedIn);
    device.failing = n;
    device.persistently = persistently;
    const std::string name = "first request, " + Name(kind, n, persistently);
    Healthy own;
    bool remembered = false;
    {
        const std::vector<Exchange> seen = Serve(device, kind.uri, {{}, {}, {}});
        // If the C library gets no memory for a locale or a catalogue, it treats it as missing
        // until the process ends.
        remembered = failing_memory::FailedInCLibrary();
        own.body = seen.back().body;
        if (healthy != nullptr) {
            ++report.cases;
            const std::string wrong = FaultOfAnswer(own.body, kind.member);
            CheckAnswers(report, name, seen, 3,
                         remembered && wrong.empty() ? own.body : healthy->body);
        }
    }
    own.allocations = device.count;
    if (report.problems != 0) {
        return;
    }
    own.outstanding = failing_memory::Outstanding() - before;
    if (healthy == nullptr) {
        report.texts.push_back(own.body);
        report.calls["outstanding"] = static_cast<int>(own.outstanding);
        report.calls["allocations"] = static_cast<int>(own.allocations);
    } else if (own.outstanding > healthy->outstanding + (remembered ? 1 : 0)) {
        report.Problem(name + ": " + std::to_string(own.outstanding - healthy->outstanding) +
                       " blocks left");
    }
}

TEST_F(AllocationFailure, InTheFirstRequestOfAProcessDoesNotAffectLaterRequests) {
    Report report;
    for (const RequestKind& kind : {kRequestKinds[0], kRequestKinds[2]}) {
        Report reference;
        InFreshProcess(reference, kind.uri,
                       [&](Report& own) { CheckFirst(own, kind, 0, false, nullptr); });
        const Healthy healthy = {reference.texts.empty() ? "" : reference.texts.front(),
                                 reference.calls["outstanding"], reference.calls["allocations"]};
        EXPECT_EQ(FaultOfAnswer(healthy.body, kind.member), "");
        std::printf("[ faults   ]   first %s: %ld allocations\n", kind.uri, healthy.allocations);
        long deaths = 0;
        for (const bool persistently : {false, true}) {
            const long stride = kSampled ? 23 : persistently ? 5 : 1;
            for (long n = 1; n <= healthy.allocations; n += stride) {
                watched_gettext::Start();
                InFreshProcess(
                    report, Name(kind, n, persistently),
                    [&](Report& own) { CheckFirst(own, kind, n, persistently, &healthy); },
                    [&](int status) {
                        // glibc copies the names of the two character sets between which it
                        // converts a catalogue, and does not check whether it got memory for the
                        // copies.
                        const bool inGettext =
                            WTERMSIG(status) == SIGSEGV && watched_gettext::IsInside();
                        deaths += inGettext ? 1 : 0;
                        return inGettext;
                    });
            }
        }
        std::printf("[ faults   ]   first %s: gettext died %ld times\n", kind.uri, deaths);
        // There are four copies. Each can fail alone or together with all later ones.
        EXPECT_LE(deaths, 8);
    }
    Print("allocations, first request", report);
}

/// Must run before the first locale is read.
class Texts : public testing::Environment {
  public:
    void SetUp() override {
        ASSERT_EQ(setenv("LOCPATH", KESTAL_LOCALES, 1), 0);
        ASSERT_EQ(unsetenv("LANGUAGE"), 0);
        ASSERT_NE(bindtextdomain(kTextDomain, KESTAL_CATALOGUE), nullptr);
        ASSERT_NE(bind_textdomain_codeset(kTextDomain, "UTF-8"), nullptr);
    }
};

const testing::Environment* const kTexts = testing::AddGlobalTestEnvironment(new Texts);

}  // namespace
