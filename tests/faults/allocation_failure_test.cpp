// No allocation of the service that fails takes it down, leaks or is remembered.
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

    /// The n-th; none for 0.
    long failing = 0;
    /// All behind it, too, to the end of the request.
    bool persistently = false;
    /// How many there were in the first request.
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

/// What must be left behind a failure: the answers of the requests behind it, and no more blocks
/// than without it.
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

/// One case in a process that has settled. Returns whether the answer has the member of its road.
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
                // One group of the status does not cost the others, and a notification list is
                // empty rather than missing; what builds the answer itself costs it all, and that
                // is the smallest part.
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

/// One case as the first request of a process; returns what is left at its end.
void CheckFirst(Report& report, const Road& road, long n, bool persistently,
                const Healthy* healthy) {
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
        // For the life of the process, the C library takes a locale or a catalogue that it has no
        // memory for as one that is not there.
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
                        // glibc names the character sets of a catalogue's conversion and does not
                        // look whether it had memory for the names.
                        const bool inGettext =
                            WTERMSIG(status) == SIGSEGV && watched_gettext::IsInside();
                        deaths += inGettext ? 1 : 0;
                        return inGettext;
                    });
            }
        }
        std::printf("[ faults   ]   first %s: gettext died %ld times\n", road.uri, deaths);
        // Four names, each alone, and all behind one of them.
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
