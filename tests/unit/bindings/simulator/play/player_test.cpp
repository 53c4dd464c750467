// Playing scenarios by a fake clock, which never waits.
#include "bindings/simulator/play/player.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>

#include "tests/support/scratch.h"

namespace {

using binding::Milliseconds;
using binding::Pace;
using binding::ReadScenario;
using binding::Scenario;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A clock on which time passes only when somebody waits.
class FakeClock : public binding::Clock {
  public:
    Time Now() override { return now; }

    bool WaitUntil(Time time) override {
        if (time > end) {
            return false;
        }
        longest = std::max(longest, time - now);
        now = std::max(now, time);
        if (onWait) {
            onWait();
        }
        return true;
    }

    Time now = std::chrono::hours(1000);
    Time end = Time::max();
    Time longest{0};
    std::function<void()> onWait;
};

/// Records each report together with the time of the clock, in milliseconds.
class Notebook : public binding::Audience {
  public:
    explicit Notebook(FakeClock& newClock) : clock(newClock), begin(newClock.now) {}

    void Happens(Milliseconds time, const std::string& what) override {
        const auto real = std::chrono::duration_cast<Milliseconds>(clock.now - begin);
        told.push_back(std::to_string(real.count()) + " " + std::to_string(time.count()) + " " +
                       what);
    }
    void TimePasses(Milliseconds time, Milliseconds duration) override {
        EXPECT_LE(time, duration);
        EXPECT_GE(time, Milliseconds(0));
        ++passed;
    }
    void GoesWrong(const std::string& what) override { problems.push_back(what); }

    FakeClock& clock;
    FakeClock::Time begin;
    std::vector<std::string> told;
    std::vector<std::string> problems;
    int passed = 0;
};

class Playing : public SimulatedDevice {
  protected:
    Playing() {
        Document(R"({"sys":{"getSIMStatus":0}})");
        clock.onWait = [this] {
            const std::string text = ReadFile(device);
            if (states.empty() || states.back() != text) {
                states.push_back(text);
            }
        };
    }

    static Scenario Events(const std::string& events) {
        return ReadScenario("a.json", "{\"events\": [" + events + "]}");
    }

    bool Play(const Scenario& scenario, Pace pace = {}) {
        return binding::Play(scenario, device, pace, clock, notebook);
    }

    FakeClock clock;
    Notebook notebook{clock};
    std::vector<std::string> states;
};

constexpr const char* kThree =
    R"({"at": 0, "say": "a", "set": {"sys.getSIMStatus": 1}},
       {"at": 2, "say": "b", "set": {"sys.getSIMStatus": 2, "sys.getNumSims": 1}},
       {"at": 4.5, "say": "c", "set": {"sys.getSIMStatus": 3}})";

TEST_F(Playing, ReportsAndMakesEveryChangeAtItsTime) {
    EXPECT_TRUE(Play(Events(kThree)));
    EXPECT_THAT(notebook.told, ElementsAre("0 0 a", "2000 2000 b", "4500 4500 c"));
    EXPECT_EQ(ReadFile(device), R"({"sys":{"getNumSims": 1,"getSIMStatus":3}})");
    EXPECT_THAT(notebook.problems, IsEmpty());
}

TEST_F(Playing, WritesTheValuesOfOneTimeAtOnce) {
    EXPECT_TRUE(Play(Events(kThree)));
    EXPECT_THAT(states,
                ElementsAre(R"({"sys":{"getSIMStatus":0}})", R"({"sys":{"getSIMStatus":1}})",
                            R"({"sys":{"getNumSims": 1,"getSIMStatus":2}})",
                            R"({"sys":{"getNumSims": 1,"getSIMStatus":3}})"));
}

TEST_F(Playing, GoesFasterOrSlower) {
    EXPECT_TRUE(Play(Events(kThree), {.speed = 10}));
    EXPECT_THAT(notebook.told, ElementsAre("0 0 a", "200 2000 b", "450 4500 c"));
    notebook.told.clear();
    notebook.begin = clock.now;
    EXPECT_TRUE(Play(Events(kThree), {.speed = 0.5}));
    EXPECT_THAT(notebook.told, ElementsAre("0 0 a", "4000 2000 b", "9000 4500 c"));
}

TEST_F(Playing, ReportsTheTimeOnceASecondOfTheClock) {
    EXPECT_TRUE(Play(Events(R"({"at": 100, "say": "a"})"), {.speed = 10}));
    EXPECT_EQ(clock.longest, std::chrono::seconds(1));
    EXPECT_GE(notebook.passed, 10);
    EXPECT_LE(notebook.passed, 13);
}

TEST_F(Playing, BeginsAgainAtTheEnd) {
    const Scenario scenario =
        ReadScenario("a.json", R"({"duration": 3, "events": [{"at": 1, "say": "a", "for": 1,
                      "ramp": {"sys.getSIMStatus": {"by": 2}}}]})");
    clock.end = clock.now + std::chrono::seconds(8);
    EXPECT_TRUE(Play(scenario, {.loops = true}));
    EXPECT_THAT(notebook.told, ElementsAre("1000 1000 a", "4000 1000 a", "7000 1000 a"));
    EXPECT_EQ(ReadFile(device), R"({"sys":{"getSIMStatus":6}})");
}

TEST_F(Playing, SkipsWhatItMissedDuringAPause) {
    const Scenario scenario =
        ReadScenario("a.json", R"({"duration": 2, "events": [{"at": 1, "say": "a"}]})");
    clock.onWait = [this, isFirst = true]() mutable {
        if (isFirst) {
            clock.now += std::chrono::seconds(100);
            isFirst = false;
        }
    };
    clock.end = clock.now + std::chrono::seconds(105);
    EXPECT_TRUE(Play(scenario, {.loops = true}));
    EXPECT_THAT(notebook.told, ElementsAre("101000 1000 a", "102000 1000 a", "104000 1000 a"));
}

TEST_F(Playing, EndsWhenItIsStopped) {
    clock.end = clock.now + std::chrono::seconds(3);
    EXPECT_TRUE(Play(Events(kThree)));
    EXPECT_THAT(notebook.told, ElementsAre("0 0 a", "2000 2000 b"));
    EXPECT_EQ(ReadFile(device), R"({"sys":{"getNumSims": 1,"getSIMStatus":2}})");
}

TEST_F(Playing, WaitsUntilItsEnd) {
    const auto begin = clock.now;
    EXPECT_TRUE(
        Play(ReadScenario("a.json", R"({"duration": 9, "events": [{"at": 1, "say": "a"}]})")));
    EXPECT_EQ(clock.now - begin, std::chrono::seconds(9));
}

TEST_F(Playing, ContinuesWhileOthersChangeTheDevice) {
    clock.onWait = [this, rounds = 0]() mutable {
        if (++rounds == 2) {
            Document(R"({"sys":{"getSIMStatus":50,"getGPSStatus":2}})");
        }
    };
    EXPECT_TRUE(Play(Events(R"({"at": 0, "say": "a", "for": 10,
                                "ramp": {"sys.getSIMStatus": {"by": 10}}})")));
    EXPECT_EQ(ReadFile(device), R"({"sys":{"getSIMStatus":60,"getGPSStatus":2}})");
}

TEST_F(Playing, ReportsADamagedDocumentOnceAndContinues) {
    clock.onWait = [this, rounds = 0]() mutable {
        ++rounds;
        if (rounds == 2) {
            Document("{");
        } else if (rounds == 6) {
            Document(R"({"sys":{"getSIMStatus":0}})");
        }
    };
    EXPECT_FALSE(Play(Events(R"({"at": 0, "say": "a", "for": 10,
                                 "ramp": {"sys.getSIMStatus": {"from": 0, "to": 10}}})")));
    ASSERT_EQ(notebook.problems.size(), 1U);
    EXPECT_THAT(notebook.problems.front(), ::testing::StartsWith(device.string() + ":1:"));
    EXPECT_EQ(ReadFile(device), R"({"sys":{"getSIMStatus":10}})");
}

}  // namespace
