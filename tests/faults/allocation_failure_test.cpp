// When an allocation fails, the service lives on, leaks nothing and answers later requests as
// usual.
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

/// A device in whose first request an allocation fails.
class ShortOfMemory : public Device {
  public:
    using Device::Device;

    /// The number of the allocation that fails; 0 for none.
    long failing = 0;
    /// Whether all later ones fail, too, until the end of the request.
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

struct Road {
    const char* uri;
    const char* member;
    bool loggedIn;
};

constexpr Road kRoads[] = {
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

/// What must hold after a failure: later requests are answered with this body, and no more blocks
/// are outstanding than without the failure.
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

std::string Name(const Road& road, long n, bool persistently) {
    return std::string(road.uri) + (road.loggedIn ? ", logged in, " : ", ") + "allocation " +
           std::to_string(n) + (persistently ? " and all behind it" : "");
}

/// Tries one case in a process that has served requests before. Returns whether the answer has the
/// member of its road.
bool CheckSettled(Report& report, const Road& road, ShortOfMemory& device, const Healthy& healthy) {
    ++report.cases;
    const std::string name = Name(road, device.failing, device.persistently);
    const long before = failing_memory::Outstanding();
    bool complete = false;
    {
        const std::vector<Exchange> seen = Serve(device, road.uri, {{}, {}});
        const long problems = report.problems;
        CheckAnswers(report, name, seen, 2, healthy.body);
        if (report.problems != problems) {
            return false;
        }
        complete = FaultOfAnswer(seen[1].body, road.member).empty();
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
        GTEST_SKIP() << "a CTPP2 text without memory for its value is a wild pointer";
#endif
    }
};

TEST_F(AllocationFailure, InAProcessThatHasSettledLeavesNothingBehind) {
    Report report;
    for (const Road& road : kRoads) {
        InFreshProcess(report, road.uri, [&](Report& own) {
            ShortOfMemory device(Model::kFiveGWithTwoSims);
            LogIn(device, road.loggedIn);
            Healthy healthy;
            for (int i = 0; i < 3; ++i) {
                healthy.body = Serve(device, road.uri, {{}, {}}).back().body;
            }
            healthy.allocations = device.count;
            own.Note(Serve(device, road.uri, {{}, {}}));
            if (healthy.allocations == 0 || !FaultOfAnswer(healthy.body, road.member).empty() ||
                healthy.body.find("notification_sms_received_text") != std::string::npos) {
                own.Problem(std::string(road.uri) + ": no healthy answer " + healthy.body);
            }
            const long stride = kSampled ? 5 : 1;
            for (const bool persistently : {false, true}) {
                device.persistently = persistently;
                long incomplete = 0;
                for (long n = 1; n <= healthy.allocations; n += stride) {
                    device.failing = n;
                    incomplete += CheckSettled(own, road, device, healthy) ? 0 : stride;
                }
                // When one group of the status fails, the others are still answered, and a list of
                // notifications is empty rather than missing. Only the few allocations that build
                // the answer itself leave it without its member.
                if (!persistently && incomplete > healthy.allocations / 10) {
                    own.Problem(std::to_string(incomplete) + " answers without " + road.member);
                }
            }
            own.calls[std::string("allocations:") + (road.uri + 5)] =
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

/// Makes the C library allocate its next list of functions to call at exit, which has room for 32.
/// Each static object whose construction a request brings about takes an entry. So no request
/// that is compared with another begins a list, which would count as a block that it has left.
void BeginListOfExitFunctions() {
    const long before = failing_memory::Outstanding();
    for (int i = 0; i < 32 && failing_memory::Outstanding() == before; ++i) {
        (void)std::atexit([] {});
    }
}

/// Tries one case in the first request of a process. Returns what the process holds at its end.
void CheckFirst(Report& report, const Road& road, long n, bool persistently,
                const Healthy* healthy) {
    BeginListOfExitFunctions();
    const long before = failing_memory::Outstanding();
    ShortOfMemory device(Model::kFiveGWithTwoSims);
    LogIn(device, road.loggedIn);
    device.failing = n;
    device.persistently = persistently;
    const std::string name = "first request, " + Name(road, n, persistently);
    Healthy own;
    bool remembered = false;
    {
        const std::vector<Exchange> seen = Serve(device, road.uri, {{}, {}, {}});
        // The C library treats a locale or a catalogue for which it had no memory as one that does
        // not exist, for the life of the process.
        remembered = failing_memory::FailedInCLibrary();
        own.body = seen.back().body;
        if (healthy != nullptr) {
            ++report.cases;
            const std::string wrong = FaultOfAnswer(own.body, road.member);
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

TEST_F(AllocationFailure, AtTheFirstRequestOfAProcessIsNotRememberedByTheService) {
    Report report;
    for (const Road& road : {kRoads[0], kRoads[2]}) {
        Report reference;
        InFreshProcess(reference, road.uri,
                       [&](Report& own) { CheckFirst(own, road, 0, false, nullptr); });
        const Healthy healthy = {reference.texts.empty() ? "" : reference.texts.front(),
                                 reference.calls["outstanding"], reference.calls["allocations"]};
        EXPECT_EQ(FaultOfAnswer(healthy.body, road.member), "");
        std::printf("[ faults   ]   first %s: %ld allocations\n", road.uri, healthy.allocations);
        long deaths = 0;
        for (const bool persistently : {false, true}) {
            const long stride = kSampled ? 23 : persistently ? 5 : 1;
            for (long n = 1; n <= healthy.allocations; n += stride) {
                watched_gettext::Start();
                InFreshProcess(
                    report, Name(road, n, persistently),
                    [&](Report& own) { CheckFirst(own, road, n, persistently, &healthy); },
                    [&](int status) {
                        // glibc copies the names of the character sets that a catalogue is
                        // converted between, and does not check whether it had memory for them.
                        const bool inGettext =
                            WTERMSIG(status) == SIGSEGV && watched_gettext::IsInside();
                        deaths += inGettext ? 1 : 0;
                        return inGettext;
                    });
            }
        }
        std::printf("[ faults   ]   first %s: gettext died %ld times\n", road.uri, deaths);
        // There are four names: each can fail alone, or together with the ones after it.
        EXPECT_LE(deaths, 8);
    }
    Print("allocations, first request", report);
}

/// Before the first locale is read.
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
