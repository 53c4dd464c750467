// Changes of a device document.
#include "bindings/simulator/edit/device_edit.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <thread>

#include "bindings/simulator/edit/device_path.h"
#include "bindings/simulator/edit/notification_types.h"
#include "tests/support/fake_device_clock.h"
#include "tests/support/scratch.h"
#include "tests/unit/bindings/document/document_reading.h"

namespace {

using json = nlohmann::ordered_json;
using binding::AddNotification;
using binding::ChangeDevice;
using binding::ClearNotifications;
using binding::FailCall;
using binding::FailingCallOn;
using binding::HealCall;
using binding::KeyPath;
using binding::MoveNumber;
using binding::SetValue;
using binding::ValueAt;

const KeyPath kStatus = {"sys", "getSIMStatus"};
const KeyPath kPercent = {"sys", "getBatteryStatus", "chargePercent"};
const KeyPath kBattery = {"sys", "getBatteryStatus"};

/// The message of the exception that @p action throws.
template <typename Action>
std::string ErrorText(Action action) {
    try {
        action();
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

/// The document after @p change. Checks that the reader accepts it.
template <typename Change>
std::string After(const std::string& before, Change change) {
    json document = json::parse(before);
    change(document);
    EXPECT_EQ(Complaint(document.dump()), "");
    return document.dump();
}

TEST(SetValue, ReplacesOrCreatesObjectsOnThePath) {
    const auto set = [](const KeyPath& path, const json& value) {
        return [=](json& document) { SetValue(document, path, value); };
    };
    EXPECT_EQ(After(R"({"sys":{"getSIMStatus":7}})", set(kStatus, 6)),
              R"({"sys":{"getSIMStatus":6}})");
    EXPECT_EQ(After("{}", set(kPercent, 6)), R"({"sys":{"getBatteryStatus":{"chargePercent":6}}})");
    const KeyPath first = {"sys", "getConnectedDeviceList", std::size_t{0}, "connectionKind"};
    EXPECT_EQ(After("{}", set(first, 2)),
              R"({"sys":{"getConnectedDeviceList":[{"connectionKind":2}]}})");
}

TEST(SetValue, AddsToAListOnlyAtItsEnd) {
    json document = json::parse(R"({"a":[1]})");
    SetValue(document, {"a", std::size_t{1}}, 2);
    EXPECT_EQ(document.dump(), R"({"a":[1,2]})");
    const KeyPath beyond = {"a", std::size_t{3}};
    EXPECT_EQ(ErrorText([&] { SetValue(document, beyond, 2); }),
              "there is no a[3]: the list has 2");
    const KeyPath named = {"a", "b"};
    EXPECT_EQ(ErrorText([&] { SetValue(document, named, 2); }),
              "there is no a.b: 'b' would be a member of something that is not an object");
    EXPECT_EQ(ErrorText([&] { SetValue(document, {std::size_t{0}}, 2); }),
              "there is no [0]: it would be in something that is not a list");
}

TEST(MoveNumber, MovesAnInteger) {
    const auto moved = [](const json& number, std::int64_t by) {
        json document = {{"a", number}};
        MoveNumber(document, {"a"}, {.by = by});
        return document["a"].dump();
    };
    EXPECT_EQ(moved(5, 3), "8");
    EXPECT_EQ(moved(5, -8), "-3");
    EXPECT_EQ(moved(-5, -8), "-13");
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(moved(kMost - 1, 1), std::to_string(kMost));
    EXPECT_EQ(moved(kMost, -1), std::to_string(kMost - 1));
}

TEST(MoveNumber, StopsAtTheLimits) {
    const auto moved = [](const json& number, std::int64_t by) {
        json document = {{"a", number}};
        MoveNumber(document, {"a"}, {.by = by, .least = 2, .most = 10});
        return document["a"].get<std::int64_t>();
    };
    EXPECT_EQ(moved(5, -2), 3);
    EXPECT_EQ(moved(3, -2), 2);
    EXPECT_EQ(moved(9, 2), 10);
    EXPECT_EQ(moved(10, 2), 10);
}

TEST(MoveNumber, DoesNotChangeNumbersOutsideTheLimits) {
    const auto moved = [](const json& number, std::int64_t by) {
        json document = {{"a", number}};
        MoveNumber(document, {"a"}, {.by = by, .least = 2, .most = 10});
        return document["a"];
    };
    EXPECT_EQ(moved(1, 5), 1);
    EXPECT_EQ(moved(11, -5), 11);
    EXPECT_EQ(moved(-1, 5), -1);
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(moved(kMost, -5), kMost);
}

TEST(MoveNumber, RefusesValuesThatDoNotFitOrAreNotIntegers) {
    json document =
        json::parse(R"({"a":18446744073709551615,"b":"x","c":1.5,"d":-9223372036854775808})");
    EXPECT_EQ(ErrorText([&] { MoveNumber(document, {"a"}, {.by = 1}); }),
              "a: 18446744073709551615 cannot move by 1");
    EXPECT_EQ(ErrorText([&] { MoveNumber(document, {"d"}, {.by = -1}); }),
              "d: -9223372036854775808 cannot move by -1");
    EXPECT_EQ(ErrorText([&] { MoveNumber(document, {"b"}, {.by = 1}); }),
              "b: expected an integer to move, found \"x\"");
    EXPECT_EQ(ErrorText([&] { MoveNumber(document, {"c"}, {.by = 1}); }),
              "c: expected an integer to move, found 1.5");
    EXPECT_EQ(ErrorText([&] { MoveNumber(document, {"e"}, {.by = 1}); }),
              "e: expected an integer to move, found nothing");
}

TEST(FailCall, KeepsTheAnswerOfTheCall) {
    const auto fail = [](const KeyPath& call) {
        return [=](json& document) { FailCall(document, call, 5); };
    };
    EXPECT_EQ(After(R"({"sys":{"getSIMStatus":7}})", fail(kStatus)),
              R"({"sys":{"getSIMStatus":{"error":5,"healed":7}}})");
    EXPECT_EQ(After("{}", fail(kStatus)), R"({"sys":{"getSIMStatus":{"error":5,"healed":null}}})");
    EXPECT_EQ(After(R"({"sys":{"getSIMStatus":{"error":3}}})", fail(kStatus)),
              R"({"sys":{"getSIMStatus":{"error":5,"healed":{"error":3}}}})");
}

TEST(FailCall, AnotherCodeKeepsTheSameAnswer) {
    EXPECT_EQ(After(R"({"sys":{"getSIMStatus":7}})",
                    [](json& document) {
                        FailCall(document, kStatus, 5);
                        FailCall(document, kStatus, 6);
                    }),
              R"({"sys":{"getSIMStatus":{"error":6,"healed":7}}})");
}

TEST(FailCall, MakesACallFaultyAndKeepsItsAnswer) {
    FakeDeviceClock clock;
    const auto fault = [](const char* text) {
        return [=](json& document) { FailCall(document, kStatus, json::parse(text)); };
    };
    const std::string before = R"({"sys":{"getSIMStatus":7}})";
    EXPECT_EQ(After(before, fault(R"({"error":5,"times":3})")),
              R"({"sys":{"getSIMStatus":{"error":5,"times":3,)"
              R"("since":"2026-11-21T12:00:00.000Z","healed":7}}})");
    EXPECT_EQ(After(before, fault(R"({"delay":2})")),
              R"({"sys":{"getSIMStatus":{"error":null,"delay":2,"healed":7}}})");
    EXPECT_EQ(After(R"({"sys":{"getSIMStatus":{"error":null,"hang":true,"healed":7}}})",
                    fault(R"({"error":5,"probability":0.5})")),
              R"({"sys":{"getSIMStatus":{"error":5,"probability":0.5,)"
              R"("since":"2026-11-21T12:00:00.000Z","healed":7}}})");
}

TEST(FailCall, OfTheSameKindAgainIsAnotherFault) {
    FakeDeviceClock clock;
    const auto threeTimes = [](json& document) {
        FailCall(document, kStatus, json{{"error", 5}, {"times", 3}});
    };
    const std::string once = After(R"({"sys":{"getSIMStatus":7}})", threeTimes);
    clock.Pass(std::chrono::milliseconds(1));
    EXPECT_NE(After(once, threeTimes), once);
}

TEST(HealCall, RestoresEveryKindOfCall) {
    // Whatever the document holds, a call that fails and is healed answers as before.
    for (const auto& each : std::vector<std::pair<KeyPath, std::string>>{
             {kStatus, "7"},
             {kStatus, R"({"error":3})"},
             {kBattery, R"({"chargePercent":3})"},
             {{"sys", "getSIMCarrierGID"}, R"({"0":[1,2],"1":{"error":4}})"},
             {{"sys", "getSIMCarrierGID", "1"}, "[3]"},
             {{"sys", "getConnectedDeviceList"}, "[]"},
             {{"sys", "getWiFiGuestProfileEnabled"}, "1"},
             {{"sys", "cellularDataConnect"}, R"({"error":3})"},
             {{"webui", "uriData"}, R"({"sim":{"address":"/a"}})"},
             {{"webui", "uriData", "sim"}, R"({"address":"/a"})"},
             {{"webui", "softwareUpdateCustomMsgs", "en_US"}, R"({"download":"x"})"},
             {{"msgbus", "zelt.ans.notifications"}, R"([{"id":"dataOff"}])"},
             {{"msgbus", "zelt.ans.notifications"}, R"({"bytes":"00ff"})"}}) {
        const KeyPath& call = each.first;
        const std::string& value = each.second;
        SCOPED_TRACE(binding::PathText(call) + " " + value);
        json before = json::object();
        SetValue(before, call, json::parse(value));
        const std::string failing =
            After(before.dump(), [&](json& document) { FailCall(document, call, 5); });
        EXPECT_NE(failing, before.dump());
        const std::string faulty = After(before.dump(), [&](json& document) {
            FailCall(document, call, json{{"delay", 2}, {"times", 1}});
        });
        EXPECT_EQ(After(faulty, [&](json& document) { HealCall(document, call); }), before.dump());
        EXPECT_EQ(After(failing, [&](json& document) { HealCall(document, call); }), before.dump());
    }
}

TEST(HealCall, RemovesAnEntryThatTheDocumentDidNotHave) {
    EXPECT_EQ(After(R"({"sys":{"getNumSims":1}})",
                    [](json& document) {
                        FailCall(document, kStatus, 5);
                        HealCall(document, kStatus);
                    }),
              R"({"sys":{"getNumSims":1}})");
}

TEST(HealCall, DoesNotChangeACallThatWorks) {
    const auto heal = [](json& document) { HealCall(document, kStatus); };
    EXPECT_EQ(After("{}", heal), "{}");
    EXPECT_EQ(After(R"({"sys":{"getSIMStatus":7}})", heal), R"({"sys":{"getSIMStatus":7}})");
}

TEST(HealCall, RefusesWhatItCannotRestore) {
    json document = json::parse(R"({"sys":{"getSIMStatus":{"error":3}}})");
    EXPECT_EQ(
        ErrorText([&] { HealCall(document, kStatus); }),
        "sys.getSIMStatus: the document does not hold what it answered before it failed; set its "
        "value");
    EXPECT_THROW(HealCall(document, {"sys", "getSIMState"}), binding::UnknownName);
}

TEST(MadeToFail, ChangesApplyToTheKeptAnswer) {
    json document = json::parse(R"({"sys":{"getBatteryStatus":{"chargePercent":7}}})");
    FailCall(document, kBattery, 5);
    SetValue(document, kPercent, 9);
    MoveNumber(document, kPercent, {.by = -1});
    EXPECT_EQ(document.dump(),
              R"({"sys":{"getBatteryStatus":{"error":5,"healed":{"chargePercent":8}}}})");
    SetValue(document, kBattery, {{"chargePercent", 1}});
    EXPECT_EQ(FailingCallOn(document, kPercent), kBattery);
    EXPECT_EQ(FailingCallOn(document, kBattery), kBattery);
    EXPECT_EQ(FailingCallOn(document, kStatus), KeyPath());
    HealCall(document, kBattery);
    EXPECT_EQ(document.dump(), R"({"sys":{"getBatteryStatus":{"chargePercent":1}}})");
    EXPECT_EQ(FailingCallOn(document, kPercent), KeyPath());
}

TEST(MadeToFail, AFaultyCallHasTheValueThatItAnswersWithAtOtherTimes) {
    json document = json::parse(R"({"sys":{"getBatteryStatus":{"chargePercent":7}}})");
    EXPECT_EQ(*ValueAt(document, kPercent), 7);
    EXPECT_EQ(ValueAt(document, kStatus), nullptr);
    FailCall(document, kBattery, json{{"delay", 2}});
    SetValue(document, kPercent, 9);
    EXPECT_EQ(*ValueAt(document, kPercent), 9);
    EXPECT_EQ(FailingCallOn(document, kPercent), KeyPath());
    FailCall(document, kBattery, 5);
    EXPECT_EQ(ValueAt(document, kPercent), nullptr);
}

TEST(DataCall, IsChangedInTheDocumentWhenItsTimeHasCome) {
    FakeDeviceClock clock;
    const KeyPath status = {"sys", "getCellularDataConnectionStatus"};
    for (
        const std::string connecting :
        {R"({"now":4,"next":2,"at":"2026-11-21T12:00:01.000Z"})",
         R"({"error":null,"delay":1,"healed":{"now":4,"next":2,"at":"2026-11-21T12:00:01.000Z"}})"}) {
        clock.timeOfDay = FakeDeviceClock::kNoon;
        json document = json::object();
        document["sys"]["getCellularDataConnectionStatus"] = json::parse(connecting);
        const std::string before = document.dump();
        clock.Pass(std::chrono::milliseconds(999));
        binding::MakeDueChange(document);
        EXPECT_EQ(document.dump(), before);
        EXPECT_EQ(*ValueAt(document, status), 4);
        clock.Pass(std::chrono::milliseconds(1));
        binding::MakeDueChange(document);
        EXPECT_NE(document.dump(), before);
        EXPECT_EQ(*ValueAt(document, status), 2);
    }
}

TEST(DataCall, IsChangedToANameWhereTheDocumentHasOne) {
    FakeDeviceClock clock;
    json document =
        json::parse(R"({"sys":{"getCellularDataConnectionStatus":{"error":"not_answered",
        "times":3,"healed":{"now":"connecting","next":"connected",
        "at":"2026-11-21T12:00:00.000Z"}}}})");
    binding::MakeDueChange(document);
    EXPECT_EQ(document.dump(), R"({"sys":{"getCellularDataConnectionStatus":)"
                               R"({"error":"not_answered","times":3,"healed":"connected"}}})");
}

TEST(MadeToFail, AValueReplacesAFailureWrittenByHand) {
    EXPECT_EQ(After(R"({"sys":{"getSIMStatus":{"error":3}}})",
                    [](json& document) { SetValue(document, kStatus, 7); }),
              R"({"sys":{"getSIMStatus":7}})");
}

TEST(MadeToFail, TheKeptAnswerIsCheckedLikeAnAnswer) {
    EXPECT_EQ(SysComplaint("getNumSims", R"({"error": 5, "healed": "x"})"),
              "device.json:3: sys.getNumSims.healed: expected a 32-bit integer or {\"error\": N}, "
              "found a text");
    EXPECT_EQ(SysComplaint("getSIMCarrierGID", R"({"error": 5, "healed": {"256": []}})"),
              "device.json:3: sys.getSIMCarrierGID.healed.256: expected an index from 0 to 255, "
              "found an unknown name");
    EXPECT_EQ(SysComplaint("getSIMCarrierGID", R"({"error": 5, "healed": {"255": []}})"), "");
    EXPECT_EQ(SysComplaint("sdkInitialize", R"({"error": 5, "healed": null})"), "");
    EXPECT_EQ(SysComplaint("sdkInitialize", R"({"error": 5, "healed": 0})"),
              "device.json:3: sys.sdkInitialize.healed: expected {\"error\": N}, found 0");
    EXPECT_EQ(SysComplaint("getSIMStatus", R"({"error": 5, "healed": 1, "more": 1})"),
              "device.json:3: sys.getSIMStatus.more: expected one of error, times, probability, "
              "seed, delay, hang, since, healed, found an unknown name");
    EXPECT_EQ(ChannelComplaint(R"({"error": 5, "healed": [{"id": 1}]})"),
              "device.json:3: msgbus.a.healed[0].id: expected a text of at most 29 bytes, found 1");
}

TEST(MadeToFail, TheCallFailsWithTheCodeAndHasNoValue) {
    const binding::Device device = Read(R"({"sys":{"getSIMStatus":{"error":5,"healed":7},
        "getSIMCarrierGID":{"error":6,"healed":{"0":[1]}}}})");
    EXPECT_TRUE(device.getSIMStatus.named);
    EXPECT_EQ(device.getSIMStatus.error, 5);
    EXPECT_EQ(device.getSIMStatus.value, 0);
    EXPECT_TRUE(device.getSIMCarrierGID.At(0).named);
    EXPECT_EQ(device.getSIMCarrierGID.At(0).error, 6);
}

json Notification(const std::string& type) {
    return binding::MakeNotification(type, {});
}

TEST(Notifications, AreAddedAndReplaced) {
    json document = json::object();
    AddNotification(document, Notification("dataOff"));
    AddNotification(document, Notification("noService"));
    json other = Notification("dataOff");
    other["severity"] = "alert";
    AddNotification(document, other);
    EXPECT_EQ(
        document,
        (json{{"msgbus",
               {{"zelt.ans.notifications", json::array({other, Notification("noService")})}}}}));
}

TEST(Notifications, AreRemoved) {
    json document = json::object();
    for (const std::string type : {"dataOff", "noService", "PCO3"}) {
        AddNotification(document, Notification(type));
    }
    ClearNotifications(document, "noService");
    ClearNotifications(document, "smsReceived");
    EXPECT_EQ(binding::Notifications(document),
              json::array({Notification("dataOff"), Notification("PCO3")}));
    ClearNotifications(document, "");
    EXPECT_EQ(binding::Notifications(document), json::array());
    EXPECT_EQ(ErrorText([&] { ClearNotifications(document, "noServices"); }),
              "there is no notification 'noServices'; did you mean noService?");
}

TEST(Notifications, MayHaveNoId) {
    json document = json::parse(R"({"msgbus":{"zelt.ans.notifications":[{"severity":7}]}})");
    AddNotification(document, Notification("dataOff"));
    ClearNotifications(document, "dataOff");
    EXPECT_EQ(document.dump(), R"({"msgbus":{"zelt.ans.notifications":[{"severity":7}]}})");
}

TEST(Notifications, OfAFailingChannelAreChangedInItsKeptAnswer) {
    json document = json::object();
    FailCall(document, {"msgbus", "zelt.ans.notifications"}, 8);
    AddNotification(document, Notification("dataOff"));
    HealCall(document, {"msgbus", "zelt.ans.notifications"});
    EXPECT_EQ(binding::Notifications(document), json::array({Notification("dataOff")}));
}

TEST(Notifications, AreRefusedWhereTheChannelHoldsOtherBytes) {
    json document = json::parse(R"({"msgbus":{"zelt.ans.notifications":{"bytes":"00"}}})");
    EXPECT_EQ(ErrorText([&] { AddNotification(document, Notification("dataOff")); }),
              "msgbus.zelt.ans.notifications: expected a list of notifications, found "
              "{\"bytes\":\"00\"}");
}

class ChangeDeviceTest : public SimulatedDevice {};

TEST_F(ChangeDeviceTest, WritesTheChangedDocument) {
    Document("{\n  \"sys\" : {\"getSIMStatus\": 7}\n}\n");
    ChangeDevice(device, [](json& document) { SetValue(document, kStatus, 6); });
    EXPECT_EQ(ReadFile(device), "{\n  \"sys\" : {\"getSIMStatus\": 6}\n}\n");
}

TEST_F(ChangeDeviceTest, WritesNothingThatTheReaderRefuses) {
    const std::string before = R"({"sys":{"getSIMStatus":7}})";
    Document(before);
    const auto set = [this](const KeyPath& path, const json& value) {
        return ErrorText([&] {
            ChangeDevice(device, [&](json& document) { SetValue(document, path, value); });
        });
    };
    EXPECT_EQ(set(kStatus, "redy"),
              "sys.getSIMStatus: expected not_found, locked, restricted, error, failure, "
              "puk_locked, pin_locked, ready or a 32-bit integer or {\"error\": N}, found 'redy'; "
              "did you mean ready?");
    EXPECT_EQ(set({"sys", "getSimStatus"}, 1),
              "sys.getSimStatus: expected the name of a call, found an unknown name; did you mean "
              "sys.getSIMStatus?");
    EXPECT_EQ(set({"webui", "i18nSettings", "language"}, "\xff"),
              "a document can hold texts in UTF-8 only");
    EXPECT_EQ(ReadFile(device), before);
}

TEST_F(ChangeDeviceTest, LeavesADamagedDocumentAlone) {
    Document("{\"sys\": {\n\"getNumSims\": \"x\"}}");
    EXPECT_EQ(ErrorText([this] {
                  ChangeDevice(device, [](json& document) { SetValue(document, kStatus, 1); });
              }),
              device.string() +
                  ":2: sys.getNumSims: expected a 32-bit integer or {\"error\": N}, "
                  "found a text");
    EXPECT_EQ(ReadFile(device), "{\"sys\": {\n\"getNumSims\": \"x\"}}");
}

TEST_F(ChangeDeviceTest, LosesNothingOfOthers) {
    Document(R"({"sys":{"getSIMStatus":0}})");
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([this] {
            for (int round = 0; round < 25; ++round) {
                ChangeDevice(device,
                             [](json& document) { MoveNumber(document, kStatus, {.by = 1}); });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(ReadFile(device), R"({"sys":{"getSIMStatus":100}})");
}

}  // namespace
