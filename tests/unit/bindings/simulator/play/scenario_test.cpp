// What a scenario may contain, when each change happens, and the error messages for everything
// else.
#include "bindings/simulator/play/scenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tests/support/fake_device_clock.h"

namespace {

using json = nlohmann::ordered_json;
using binding::Milliseconds;
using binding::ReadScenario;
using binding::Scenario;
using ::testing::ElementsAre;
using ::testing::Pair;

Scenario Events(const std::string& events) {
    return ReadScenario("a.json", "{\"events\": [\n" + events + "\n]}");
}

/// The times of all instants, in milliseconds, and the document after each.
std::vector<std::pair<std::int64_t, std::string>> Played(const Scenario& scenario,
                                                         const std::string& before = "{}") {
    json document = json::parse(before);
    std::vector<std::pair<std::int64_t, std::string>> states;
    for (const auto& [time, instant] : scenario.instants) {
        instant.Apply(document);
        states.emplace_back(time.count(), document.dump());
    }
    return states;
}

std::string Complaint(const std::string& text) {
    try {
        ReadScenario("a.json", text);
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

/// The error message for the only event, which is in line 2.
std::string EventComplaint(const std::string& event) {
    return Complaint("{\"events\": [\n" + event + "\n]}");
}

/// The error message for the event when it is tried on a device.
std::string ComplaintOnDevice(const std::string& event, const std::string& device = "{}") {
    try {
        MustBePlayable(Events(event), json::parse(device));
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(Scenario, SetsValuesAtTheirTimes) {
    EXPECT_THAT(
        Played(Events(R"({"at": 0, "say": "a", "set": {"sys.getSIMStatus": 7, "sys.getNumSims": 1}},
                         {"at": 1.5, "say": "b", "set": {"getSIMStatus": 6}})")),
        ElementsAre(Pair(0, R"({"sys":{"getSIMStatus":7,"getNumSims":1}})"),
                    Pair(1500, R"({"sys":{"getSIMStatus":6,"getNumSims":1}})")));
}

TEST(Scenario, EventsAtOneTimeAreOneChange) {
    const Scenario scenario = Events(
        R"({"at": 2, "say": "a", "set": {"sys.getSIMStatus": 7}},
           {"at": 2, "say": "b", "set": {"sys.getSIMStatus": 6}, "for": 1,
            "ramp": {"sys.getNumSims": {"from": 1, "to": 2}}},
           {"at": 3, "say": "c", "set": {"sys.getGPSStatus": 2}})");
    EXPECT_THAT(
        Played(scenario),
        ElementsAre(Pair(2000, R"({"sys":{"getSIMStatus":6,"getNumSims":1}})"),
                    Pair(3000, R"({"sys":{"getSIMStatus":6,"getNumSims":2,"getGPSStatus":2}})")));
    EXPECT_THAT(scenario.instants.at(Milliseconds(2000)).said, ElementsAre("a", "b"));
    EXPECT_THAT(scenario.instants.at(Milliseconds(3000)).said, ElementsAre("c"));
}

TEST(Scenario, RampsUseIntegersFromTheFirstToTheLast) {
    EXPECT_THAT(Played(Events(R"({"at": 1, "say": "a", "for": 4, "every": 1,
                                  "ramp": {"sys.getSIMStatus": {"from": 10, "to": 0}}})")),
                ElementsAre(Pair(1000, R"({"sys":{"getSIMStatus":10}})"),
                            Pair(2000, R"({"sys":{"getSIMStatus":8}})"),
                            Pair(3000, R"({"sys":{"getSIMStatus":5}})"),
                            Pair(4000, R"({"sys":{"getSIMStatus":3}})"),
                            Pair(5000, R"({"sys":{"getSIMStatus":0}})")));
}

TEST(Scenario, RampsEndInTimeWhateverTheirInterval) {
    EXPECT_THAT(Played(Events(R"({"at": 0, "say": "a", "for": 2.5, "every": 2,
                                  "ramp": {"sys.getSIMStatus": {"from": 0, "to": 4}}})")),
                ElementsAre(Pair(0, R"({"sys":{"getSIMStatus":0}})"),
                            Pair(2000, R"({"sys":{"getSIMStatus":2}})"),
                            Pair(2500, R"({"sys":{"getSIMStatus":4}})")));
    EXPECT_THAT(Played(Events(R"({"at": 0, "say": "a", "for": 1, "every": 5,
                                  "ramp": {"sys.getSIMStatus": {"from": 0, "to": 4}}})")),
                ElementsAre(Pair(0, R"({"sys":{"getSIMStatus":0}})"),
                            Pair(1000, R"({"sys":{"getSIMStatus":4}})")));
}

TEST(Scenario, RampsWriteOnlyWhatChanges) {
    EXPECT_THAT(Played(Events(R"({"at": 0, "say": "a", "for": 10,
                                  "ramp": {"sys.getSIMStatus": {"from": 1, "to": 2}}})")),
                ElementsAre(Pair(0, R"({"sys":{"getSIMStatus":1}})"),
                            Pair(10'000, R"({"sys":{"getSIMStatus":2}})")));
}

TEST(Scenario, LargeNumbersRampExactly) {
    const auto states =
        Played(Events(R"({"at": 0, "say": "a", "for": 9999, "ramp": {"sys.getSIMStatus":
                          {"from": -1000000000000000, "to": 1000000000000000}}})"));
    EXPECT_EQ(states.size(), 10'000U);
    EXPECT_EQ(states.back().second, R"({"sys":{"getSIMStatus":1000000000000000}})");
}

TEST(Scenario, RampsByAnAmountStartFromThePresentNumber) {
    EXPECT_THAT(Played(Events(R"({"at": 1, "say": "a", "for": 3,
                                  "ramp": {"sys.getSIMStatus": {"by": 10}}})"),
                       R"({"sys":{"getSIMStatus":100}})"),
                ElementsAre(Pair(1000, R"({"sys":{"getSIMStatus":100}})"),
                            Pair(2000, R"({"sys":{"getSIMStatus":103}})"),
                            Pair(3000, R"({"sys":{"getSIMStatus":106}})"),
                            Pair(4000, R"({"sys":{"getSIMStatus":110}})")));
    EXPECT_EQ(Played(Events(R"({"at": 1, "say": "a", "for": 3, "ramp":
                                {"sys.getSIMStatus": {"by": 10, "min": 0, "max": 104}}})"),
                     R"({"sys":{"getSIMStatus":100}})")
                  .back()
                  .second,
              R"({"sys":{"getSIMStatus":104}})");
}

TEST(Scenario, RampsPauseWhileTheirConditionDoesNotHold) {
    const std::string ramp = R"({"at": 0, "say": "a", "for": 5,
        "while": {"sys.getSIMStatus": 7, "webui.i18nSettings.language": "en_US"},
        "ramp": {"sys.getSMSUnreadCount": {"by": 5}}})";
    const auto count = [&](const std::string& events, const std::string& before) {
        return json::parse(Played(Events(ramp + events), before).back().second)
            .at("sys")
            .at("getSMSUnreadCount");
    };
    const std::string ready =
        R"({"sys":{"getSIMStatus":7,"getSMSUnreadCount":0},"webui":{"i18nSettings":{"language":"en_US"}}})";
    EXPECT_EQ(count("", ready), 5);
    // A step that was left out is not made later.
    EXPECT_EQ(count(R"(, {"at": 1.5, "say": "b", "set": {"sys.getSIMStatus": 6}},
                         {"at": 3.5, "say": "c", "set": {"sys.getSIMStatus": 7}})",
                    ready),
              3);
    EXPECT_EQ(count(R"(, {"at": 2.5, "say": "b", "set": {"webui.i18nSettings.language": "de_DE"}})",
                    ready),
              2);
    // The condition does not hold while the call fails, because its value is not known.
    EXPECT_EQ(count(R"(, {"at": 1.5, "say": "b", "fail": {"sys.getSIMStatus": 5}},
                         {"at": 4.5, "say": "c", "heal": ["sys.getSIMStatus"]})",
                    ready),
              2);
    EXPECT_EQ(
        count(R"(, {"at": 1.5, "say": "b", "fail": {"sys.getSIMStatus": {"delay": 5}}})", ready),
        5);
    EXPECT_EQ(count("", R"({"sys":{"getSMSUnreadCount":0}})"), 0);
}

TEST(Scenario, AConditionHoldsForANameAndForItsNumber) {
    for (const std::string condition : {"7", "\"ready\""}) {
        const std::string ramp =
            R"({"at": 0, "say": "a", "for": 1, "while": {"sys.getSIMStatus": )" + condition +
            R"(}, "ramp": {"sys.getNumSims": {"by": 1}}})";
        for (const std::string status : {"7", "\"ready\""}) {
            const std::string before = R"({"sys":{"getNumSims":0,"getSIMStatus":)" + status + "}}";
            EXPECT_EQ(Played(Events(ramp), before).back().second,
                      R"({"sys":{"getNumSims":1,"getSIMStatus":)" + status + "}}");
        }
        EXPECT_EQ(Played(Events(ramp), R"({"sys":{"getNumSims":0,"getSIMStatus":"pin_locked"}})")
                      .back()
                      .second,
                  R"({"sys":{"getNumSims":0,"getSIMStatus":"pin_locked"}})");
    }
}

TEST(Scenario, NamesCodesOfFailures) {
    EXPECT_EQ(
        Played(
            Events(R"({"at": 0, "say": "a", "fail": {"sys.getSDCardInfo": "error_no_sd_card"}})"),
            "{}")
            .back()
            .second,
        R"({"sys":{"getSDCardInfo":{"error":"error_no_sd_card","healed":null}}})");
    EXPECT_THAT(ComplaintOnDevice(
                    "{\"at\": 0, \"say\": \"a\",\n\"fail\": {\"sys.getSDCardInfo\": \"no_card\"}}"),
                ::testing::StartsWith(
                    "a.json:3: events[0].fail.sys.getSDCardInfo: sys.getSDCardInfo.error: expected "
                    "error_buffer_needed, error_no_sd_card, "));
}

TEST(Scenario, RampsToANumberCanHaveAConditionToo) {
    EXPECT_THAT(Played(Events(R"({"at": 0, "say": "a", "for": 2, "while": {"sys.getNumSims": 1},
                                  "ramp": {"sys.getSIMStatus": {"from": 4, "to": 6}}},
                                 {"at": 0.5, "say": "b", "set": {"sys.getNumSims": 0}},
                                 {"at": 1.5, "say": "c", "set": {"sys.getNumSims": 1}})"),
                       R"({"sys":{"getNumSims":1}})"),
                ElementsAre(Pair(0, R"({"sys":{"getNumSims":1,"getSIMStatus":4}})"),
                            Pair(500, R"({"sys":{"getNumSims":0,"getSIMStatus":4}})"),
                            Pair(1000, R"({"sys":{"getNumSims":0,"getSIMStatus":4}})"),
                            Pair(1500, R"({"sys":{"getNumSims":1,"getSIMStatus":4}})"),
                            Pair(2000, R"({"sys":{"getNumSims":1,"getSIMStatus":6}})")));
}

TEST(Scenario, CallsFailAndAreHealed) {
    EXPECT_THAT(Played(Events(R"({"at": 0, "say": "a", "fail": {"sys.getSIMStatus": 5}},
                         {"at": 1, "say": "b", "set": {"sys.getSIMStatus": 6}},
                         {"at": 2, "say": "c", "heal": ["sys.getSIMStatus"],
                          "fail": {"webui.i18nSettings": 6}})"),
                       R"({"sys":{"getSIMStatus":7}})"),
                ElementsAre(Pair(0, R"({"sys":{"getSIMStatus":{"error":5,"healed":7}}})"),
                            Pair(1000, R"({"sys":{"getSIMStatus":{"error":5,"healed":6}}})"),
                            Pair(2000, R"({"sys":{"getSIMStatus":6},)"
                                       R"("webui":{"i18nSettings":{"error":6,"healed":null}}})")));
}

TEST(Scenario, CallsAreMadeFaulty) {
    FakeDeviceClock clock;
    const std::string since = R"("since":"2026-11-21T12:00:00.000Z")";
    EXPECT_THAT(
        Played(Events(R"({"at": 0, "say": "a",
                          "fail": {"sys.getSIMStatus": {"error": 5, "times": 3}}},
                         {"at": 1, "say": "b", "fail": {"sys.getSIMStatus": {"hang": true}}},
                         {"at": 2, "say": "c", "heal": ["sys.getSIMStatus"],
                          "set": {"sys.cellularDataConnect.takes": 4}})"),
               R"({"sys":{"getSIMStatus":7}})"),
        ElementsAre(Pair(0, R"({"sys":{"getSIMStatus":{"error":5,"times":3,)" + since +
                                R"(,"healed":7}}})"),
                    Pair(1000, R"({"sys":{"getSIMStatus":{"error":null,"hang":true,"healed":7}}})"),
                    Pair(2000, R"({"sys":{"getSIMStatus":7,"cellularDataConnect":{"takes":4}}})")));
}

TEST(Scenario, FaultsMayNameTheCodesOfTheirCalls) {
    FakeDeviceClock clock;
    EXPECT_EQ(Played(Events(R"({"at": 0, "say": "a",
                                "fail": {"webui.commonFeatures":
                                             {"error": "buffer_needed", "delay": 2}}})"),
                     "{}")
                  .back()
                  .second,
              R"({"webui":{"commonFeatures":{"error":"buffer_needed","delay":2,"healed":null}}})");
    EXPECT_THAT(ComplaintOnDevice("{\"at\": 0, \"say\": \"a\",\n\"fail\": {\"sys.getSDCardInfo\": "
                                  "{\"error\": \"buffer_needed\", \"times\": 3}}}"),
                ::testing::StartsWith(
                    "a.json:3: events[0].fail.sys.getSDCardInfo: sys.getSDCardInfo.error: expected "
                    "error_buffer_needed, error_no_sd_card, "));
}

TEST(Scenario, AConditionHoldsWhileTheDeviceIsConnecting) {
    FakeDeviceClock clock;
    const std::string before =
        R"({"sys":{"getNumSims":0,"getCellularDataConnectionStatus":)"
        R"({"now":"connecting","next":"connected","at":"2026-11-21T12:00:09.000Z"}}})";
    for (const std::string condition : {"4", "\"connecting\""}) {
        const std::string ramp = R"({"at": 0, "say": "a", "for": 1,
            "while": {"sys.getCellularDataConnectionStatus": )" +
                                 condition + R"(}, "ramp": {"sys.getNumSims": {"by": 1}}})";
        EXPECT_THAT(Played(Events(ramp), before).back().second,
                    ::testing::HasSubstr(R"("getNumSims":1)"));
    }
}

TEST(Scenario, FaultsAreCheckedWhereTheyAreWritten) {
    const auto complaint = [](const std::string& fault) {
        return EventComplaint(
            "{\"at\": 1, \"say\": \"a\",\n\"fail\": {\"sys.getSIMStatus\": " + fault + "}}");
    };
    const std::string place = "a.json:3: events[0].fail.sys.getSIMStatus";
    EXPECT_EQ(complaint(R"({"error": 5, "times": 0})"),
              place + ".times: expected a number from 1 to 1000000000, found 0");
    EXPECT_EQ(complaint(R"({"error": 5, "tims": 3})"),
              place +
                  ".tims: expected one of error, times, probability, seed, delay, hang, found "
                  "an unknown name; did you mean events[0].fail.sys.getSIMStatus.times?");
    EXPECT_EQ(complaint(R"({"times": 3})"),
              place +
                  ": expected an object with \"error\", \"delay\" or \"hang\", found one "
                  "without");
    EXPECT_THAT(complaint(R"({"error": 5, "healed": 3})"), ::testing::HasSubstr(".healed: "));
    EXPECT_EQ(complaint(R"({"error": true})"),
              place + ".error: expected a 32-bit integer or the name of a code, found true");
    EXPECT_EQ(
        complaint(R"({"error": "not_answered", "hang": true})"),
        place + ".hang: expected neither an error nor \"delay\" beside it, found one of them");
    EXPECT_EQ(complaint(R"({"delay": 2})"), "");
}

TEST(Scenario, NotificationsComeAndGo) {
    const auto states = Played(
        Events(R"({"at": 0, "say": "a", "notify": ["dataOff", {"type": "PCO3", "severity": "info",
                   "category": "c", "labelId": "l", "titleId": "t", "textId": "x",
                   "active": false}]},
                  {"at": 1, "say": "b", "clear": ["dataOff"]},
                  {"at": 2, "say": "c", "clear": "all", "notify": ["noService"]})"));
    const auto ids = [&](std::size_t index) {
        std::string text;
        const json document = json::parse(states.at(index).second);
        for (const json& one : document["msgbus"]["zelt.ans.notifications"]) {
            text += one["id"].get<std::string>() + " ";
        }
        return text;
    };
    EXPECT_EQ(ids(0), "dataOff PCO3 ");
    EXPECT_EQ(ids(1), "PCO3 ");
    EXPECT_EQ(ids(2), "noService ");
    EXPECT_EQ(json::parse(states.at(1).second)["msgbus"]["zelt.ans.notifications"][0].dump(),
              R"({"id":"PCO3","category":"c","severity":"info","labelId":"l","titleId":"t",)"
              R"("textId":"x","active":false})");
}

TEST(Scenario, LastsUntilItsEndOrLonger) {
    EXPECT_EQ(Events(R"({"at": 3, "say": "a"})").duration, Milliseconds(3000));
    EXPECT_EQ(Events(R"({"at": 1, "say": "a", "for": 4, "ramp": {"sys.getSIMStatus": {"by": 1}}},
                        {"at": 2, "say": "b"})")
                  .duration,
              Milliseconds(5000));
    const Scenario scenario = ReadScenario(
        "a.json", R"({"title": "t", "duration": 7, "events": [{"at": 3, "say": "a"}]})");
    EXPECT_EQ(scenario.duration, Milliseconds(7000));
    EXPECT_EQ(scenario.title, "t");
    EXPECT_TRUE(ReadScenario("a.json", R"({"events": []})").instants.empty());
}

TEST(Scenario, ErrorsAreReportedWithFileLineAndKey) {
    EXPECT_EQ(Complaint("{"),
              "a.json:1:1: syntax error while parsing object key - unexpected end "
              "of input; expected string literal");
    EXPECT_EQ(Complaint("[]"), "a.json:1: expected an object, found a list");
    EXPECT_EQ(Complaint("{}"), "a.json:1: expected an object with \"events\", found one without");
    EXPECT_EQ(Complaint(R"({"events": 1})"), "a.json:1: events: expected a list, found 1");
    EXPECT_EQ(Complaint("{\"events\": [],\n\"event\": 1}"),
              "a.json:2: event: expected one of title, events, duration, found an unknown name; "
              "did you mean events?");
    EXPECT_EQ(Complaint(R"({"events": [], "title": ""})"),
              "a.json:1: title: expected a text that is not empty, found a text");
    EXPECT_EQ(Complaint("{\"events\": [{\"at\": 3, \"say\": \"a\"}],\n\"duration\": 2}"),
              "a.json:2: duration: expected the time at which the last event ends, or a later one, "
              "found 2");
}

TEST(Scenario, WrongEventsAreReported) {
    const std::string place = "a.json:2: events[0]";
    EXPECT_EQ(EventComplaint("1"), place + ": expected an object, found 1");
    EXPECT_EQ(EventComplaint(R"({"say": "a"})"),
              place + ": expected an event with \"at\", found one without");
    EXPECT_EQ(EventComplaint(R"({"at": 1})"),
              place + ": expected an event with \"say\", found one without");
    EXPECT_EQ(EventComplaint(R"({"at": 1, "say": "a", "sett": {}})"),
              place +
                  ".sett: expected one of at, for, every, while, say, heal, set, ramp, fail, "
                  "clear, notify, found an unknown name; did you mean events[0].set?");
    for (const std::string at : {"-1", "604800.1", "null", "\"1\"", "1e300"}) {
        EXPECT_THAT(EventComplaint(R"({"say": "a", "at": )" + at + "}"),
                    ::testing::StartsWith(
                        place + ".at: expected a number of seconds from 0 to 604800, found "));
    }
    EXPECT_EQ(EventComplaint("{\"at\": 2, \"say\": \"a\"},\n{\"at\": 1, \"say\": \"b\"}"),
              "a.json:3: events[1].at: expected a time that is not before that of the event above, "
              "found 1");
}

TEST(Scenario, WrongChangesAreReported) {
    const auto complaint = [](const std::string& members) {
        return EventComplaint("{\"at\": 1, \"say\": \"a\",\n" + members + "}");
    };
    const std::string place = "a.json:3: events[0].";
    EXPECT_EQ(complaint(R"("set": [])"), place + "set: expected an object, found a list");
    EXPECT_EQ(complaint(R"("fail": {"sys.getSIMStatus": true})"),
              place +
                  "fail.sys.getSIMStatus: expected a 32-bit integer, the name of a code or an "
                  "object, found true");
    EXPECT_EQ(complaint(R"("heal": {})"), place + "heal: expected a list, found an object");
    EXPECT_EQ(complaint(R"("heal": [1])"), place + "heal[0]: expected the name of a call, found 1");
    EXPECT_EQ(complaint(R"("clear": "some")"),
              place + "clear: expected a list of notification types, \"all\", found a text");
    EXPECT_EQ(complaint(R"("clear": [""])"),
              place + "clear[0]: expected a type of notification, found a text");
    EXPECT_EQ(complaint(R"("notify": ["dataOf"])"),
              place +
                  "notify[0]: there is no type of notification 'dataOf', and for one of your own "
                  "these are missing: category, severity, labelId, titleId, textId; did you mean "
                  "dataOff?");
    EXPECT_EQ(complaint(R"("notify": [{}])"),
              place + "notify[0]: expected a notification with \"type\", found one without");
    EXPECT_EQ(complaint(R"("notify": [{"type": "PCO3", "actve": false}])"),
              place +
                  "notify[0].actve: expected one of type, category, severity, labelId, titleId, "
                  "textId, active, found an unknown name; did you mean "
                  "events[0].notify[0].active?");
}

TEST(Scenario, WrongRampsAreReported) {
    const auto complaint = [](const std::string& times, const std::string& ramp) {
        return EventComplaint("{\"at\": 1, \"say\": \"a\"" + times +
                              ", \"ramp\": {\n\"a\": " + ramp + "}}");
    };
    const std::string place = "a.json:3: events[0].ramp.a";
    const std::string times = R"(, "for": 5)";
    EXPECT_EQ(complaint(times, "1"), place + ": expected an object, found 1");
    EXPECT_EQ(complaint(times, R"({"from": 1})"),
              place + ": expected \"from\" and \"to\", or \"by\", found neither");
    EXPECT_EQ(complaint(times, R"({"from": 1, "to": 1.5})"),
              place + ".to: expected an integer of at most 15 digits, found 1.5");
    EXPECT_EQ(complaint(times, R"({"from": 1, "to": 1000000000000001})"),
              place + ".to: expected an integer of at most 15 digits, found 1000000000000001");
    EXPECT_EQ(complaint(times, R"({"from": 1, "to": 2, "max": 2})"),
              place + ".max: expected one of by, from, to, found an unknown name");
    EXPECT_EQ(complaint(times, R"({"by": 1, "to": 2})"),
              place + ".to: expected one of by, min, max, found an unknown name");
    EXPECT_EQ(complaint(times, R"({"by": 1, "min": 3, "max": 2})"),
              place + ".max: expected a number that is not below \"min\", found 2");
    EXPECT_EQ(complaint("", R"({"by": 1})"),
              "a.json:2: events[0].ramp: expected \"for\", the seconds that it takes, beside it, "
              "found none");
    EXPECT_EQ(complaint(R"(, "every": 1)", R"({"by": 1})"),
              "a.json:2: events[0].every: expected \"for\" beside it, found none");
    EXPECT_EQ(complaint(R"(, "for": 0.05)", R"({"by": 1})"),
              "a.json:2: events[0].for: expected a number of seconds from 0.1 to 604800, found "
              "0.05");
    EXPECT_EQ(EventComplaint(R"({"at": 1, "say": "a", "for": 1})"),
              "a.json:2: events[0]: expected a \"ramp\" beside \"for\", found none");
}

TEST(Scenario, WrongConditionsAreReported) {
    const auto complaint = [](const std::string& condition) {
        return EventComplaint("{\"at\": 1, \"say\": \"a\", \"for\": 5,\n\"while\": " + condition +
                              ", \"ramp\": {\"a\": {\"by\": 1}}}");
    };
    const std::string place = "a.json:3: events[0].while";
    EXPECT_EQ(complaint("{\"a\": 1}"), "");
    EXPECT_EQ(complaint("[]"), place + ": expected an object, found a list");
    EXPECT_EQ(complaint("{}"), place + ": expected an object with at least one path, found none");
    for (const auto& [value, found] :
         {std::pair{"{}", "an object"}, {"[7]", "a list"}, {"null", "null"}}) {
        EXPECT_EQ(complaint(std::string("{\"a\": ") + value + "}"),
                  place + ".a: expected a number, a text, true or false, found " + found);
    }
    EXPECT_EQ(EventComplaint("{\"at\": 1, \"say\": \"a\",\n\"while\": {\"a\": 1}}"),
              place + ": expected \"for\" beside it, found none");
}

TEST(Scenario, HasAGreatestNumberOfChanges) {
    EXPECT_EQ(EventComplaint(R"({"at": 0, "say": "a", "for": 604800, "every": 0.1,
                                 "ramp": {"a": {"from": 0, "to": 1000000000000000}}})"),
              "a.json:3: events[0].ramp.a: expected at most 100000 changes in a scenario, found "
              "more");
}

TEST(ScenarioOnADevice, ConditionsThatTheDeviceCannotMeetAreRefused) {
    const auto misfit = [](const std::string& path, const std::string& value) {
        return ComplaintOnDevice("{\"at\": 0, \"say\": \"a\", \"for\": 1,\n\"while\": {\"" + path +
                                     "\": " + value +
                                     "}, \"ramp\": {\"sys.getNumSims\": {\"by\": 1}}}",
                                 R"({"sys": {"getNumSims": 1}})");
    };
    const std::string place = "a.json:3: events[0].while.";
    EXPECT_EQ(misfit("sys.getSIMStatus", "7"), "");
    EXPECT_EQ(misfit("getSIMStatus", "7"), "");
    EXPECT_EQ(misfit("sys.getSimStatus", "7"),
              place +
                  "sys.getSimStatus: sys.getSimStatus: expected the name of a call, found an "
                  "unknown name; did you mean sys.getSIMStatus?");
    EXPECT_EQ(misfit("getSimStatus", "7"),
              place + "getSimStatus: there is no call 'getSimStatus'; did you mean getSIMStatus?");
    EXPECT_EQ(misfit("sys.getSIMStatus", "\"Ready\""),
              place +
                  "sys.getSIMStatus: sys.getSIMStatus: expected not_found, locked, restricted, "
                  "error, failure, puk_locked, pin_locked, ready or a 32-bit integer or "
                  "{\"error\": N}, found 'Ready'; did you mean ready?");
    EXPECT_EQ(misfit("sys.getSIMStatus", "\"ready\""), "");
    EXPECT_EQ(misfit("sys..", "7"),
              place +
                  "sys..: 'sys..' is not a path, such as sys.getBatteryStatus.chargePercent or "
                  "sys.getConnectedDeviceList[0]");
}

TEST(ScenarioOnADevice, RampsAreCheckedEvenIfTheirConditionsDoNotHold) {
    EXPECT_EQ(ComplaintOnDevice(
                  "{\"at\": 0, \"say\": \"a\", \"for\": 1, \"while\": {\"sys.getSIMStatus\": 7},\n"
                  "\"ramp\": {\"sys.getNumSms\": {\"from\": 1, \"to\": 2}}}"),
              "a.json:3: events[0].ramp.sys.getNumSms: sys.getNumSms: expected the name of a "
              "call, found an unknown name; did you mean sys.getNumSims?");
}

TEST(ScenarioOnADevice, ChangesThatDoNotFitAreReported) {
    EXPECT_EQ(ComplaintOnDevice(R"({"at": 0, "say": "a", "set": {"sys.getSIMStatus": 1}})"), "");
    EXPECT_EQ(ComplaintOnDevice("{\"at\": 0, \"say\": \"a\",\n\"set\": {\"sys.getSimStatus\": 1}}"),
              "a.json:3: events[0].set.sys.getSimStatus: sys.getSimStatus: expected the name of a "
              "call, found an unknown name; did you mean sys.getSIMStatus?");
    EXPECT_EQ(
        ComplaintOnDevice("{\"at\": 0, \"say\": \"a\", \"set\": {\"sys.getNumSims\": \"x\"}}"),
        "a.json:2: events[0].set.sys.getNumSims: sys.getNumSims: expected a 32-bit "
        "integer or {\"error\": N}, found a text");
    EXPECT_EQ(ComplaintOnDevice(
                  "{\"at\": 0, \"say\": \"a\",\n\"set\": {\"sys.getGPSStatus\": \"gotfix\"}}"),
              "a.json:3: events[0].set.sys.getGPSStatus: sys.getGPSStatus: expected off, "
              "searching, got_fix or a 32-bit integer or {\"error\": N}, found 'gotfix'; did you "
              "mean got_fix?");
    EXPECT_EQ(ComplaintOnDevice("{\"at\": 0, \"say\": \"a\", \"heal\": [\"sys.getSIMState\"]}"),
              "a.json:2: events[0].heal[0]: sys.getSIMState: expected the name of a call, found an "
              "unknown name; did you mean sys.getSIMStatus?");
    EXPECT_EQ(
        ComplaintOnDevice("{\"at\": 0, \"say\": \"a\", \"fail\": {\"sys.getSIMStatus\": 0}}"),
        "a.json:2: events[0].fail.sys.getSIMStatus: sys.getSIMStatus.error: expected a 32-bit "
        "integer other than 0 and 983040, found 0");
    EXPECT_EQ(ComplaintOnDevice("{\"at\": 0, \"say\": \"a\", \"clear\": [\"dataOf\"]}"),
              "a.json:2: events[0].clear[0]: there is no notification 'dataOf'; did you mean "
              "dataOff?");
    EXPECT_EQ(ComplaintOnDevice(
                  R"({"at": 0, "say": "a", "for": 1, "ramp": {"sys.getSIMStatus": {"by": 1}}})"),
              "a.json:2: events[0].ramp.sys.getSIMStatus: sys.getSIMStatus: expected an integer to "
              "move, found nothing");
    EXPECT_EQ(ComplaintOnDevice(R"({"at": 0, "say": "a", "for": 9, "ramp":
                         {"sys.getSIMStatus": {"from": 1, "to": 3000000000}}})"),
              "a.json:3: events[0].ramp.sys.getSIMStatus: sys.getSIMStatus: expected not_found, "
              "locked, restricted, error, failure, puk_locked, pin_locked, ready or a 32-bit "
              "integer or {\"error\": N}, found 3000000000");
}

}  // namespace
