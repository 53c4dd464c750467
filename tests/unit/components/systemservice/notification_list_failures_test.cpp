#include <gmock/gmock.h>

#include <limits>
#include <new>
#include <stdexcept>

#include "tests/unit/components/systemservice/notification_list_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;
using translations::Give;

namespace {

const std::string kGetData = "MsgbusHandler::GetData";
const std::string kGetSize = "MsgbusHandler::GetData(zelt.ans.notifications, no buffer)";
const std::string kGetBlock = "MsgbusHandler::GetData(zelt.ans.notifications, room for 468)";

const Step kStart = std::vector<std::string>{Log(7, kGetList + " - BEGIN"),
                                             "MsgbusHandler::MsgbusHandler(no callback)",
                                             "MsgbusHandler::Initialize()"};
const Step kEnd = std::vector<std::string>{"MsgbusHandler::Uninitialize()",
                                           Log(7, kGetList + " - END returning 0")};
const Step kReadFailure =
    Failure(kGetList +
            " - msgbus failed to read notification data. Try msgbus_cli MsgBusGet "
            "zelt.ans.notifications");

/// The transcript of a list with one notification, of a type without a link, which is handled by
/// @p steps.
std::string OneNotification(std::initializer_list<Step> steps) {
    return Steps({kStart, kGetSize, kGetBlock,
                  Log(7, kGetList + " - [1] notifications received on msgbus")}) +
           Steps(steps) + Steps({Log(7, kGetLink + " - BEGIN"), Log(7, kGetLink + " - END"), kEnd});
}

const Step kNoneUnread =
    std::vector<std::string>{kUnreadCall + "()", Log(7, kGetList + " - sms unread count 0")};

class NotificationListFailuresTest : public NotificationListTest {};

TEST_F(NotificationListFailuresTest, FirstAnswerOtherThanTheSizeIsAReadFailure) {
    for (const int result : {0, 1, 5, -1}) {
        StartRequest();
        Given(kGetData).Returns(result).WritesNothing().Writes(468U);
        EXPECT_EQ(Json(), kNoNotifications);
        EXPECT_EQ(TranscriptText(), Steps({kStart, kGetSize, kReadFailure, kEnd})) << result;
    }
}

TEST_F(NotificationListFailuresTest, FirstAnswerWithoutASizeIsAReadFailure) {
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED);
    EXPECT_EQ(Json(), kNoNotifications);
    EXPECT_EQ(TranscriptText(), Steps({kStart, kGetSize, kReadFailure, kEnd}));
}

TEST_F(NotificationListFailuresTest, SecondAnswerOtherThanSuccessIsAReadFailure) {
    for (const int result : {1, -1}) {
        StartRequest();
        Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(468U);
        Given(kGetData).Returns(result).WritesRecords(NotificationList({Notification("a")}));
        EXPECT_EQ(Json(), kNoNotifications);
        EXPECT_EQ(TranscriptText(), Steps({kStart, kGetSize, kGetBlock, kReadFailure, kEnd}));
    }
}

TEST_F(NotificationListFailuresTest, ListThatGrowsBetweenTheTwoAnswersIsAReadFailure) {
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(468U);
    Given(kGetData).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(932U);
    EXPECT_EQ(Json(), kNoNotifications);
    EXPECT_EQ(TranscriptText(), Steps({kStart, kGetSize, kGetBlock, kReadFailure, kEnd}));
}

TEST_F(NotificationListFailuresTest, ListThatDoesNotFitIntoMemoryIsAFailure) {
    Given(kGetData)
        .Returns(MSGBUS_BUFFER_NEEDED)
        .WritesNothing()
        .Writes(std::numeric_limits<unsigned int>::max());
    EXPECT_EQ(Json(), kNoNotifications);
    EXPECT_EQ(
        TranscriptText(),
        Steps({kStart, kGetSize,
               Failure(kGetList + " - Failed to allocate memory for notification list"), kEnd}));
}

TEST_F(NotificationListFailuresTest, BusThatCannotBeJoinedIsStillRead) {
    Given("MsgbusHandler::Initialize").Returns(1);
    Given("MsgbusHandler::Uninitialize").Returns(1);
    Json({Notification("a")});
    EXPECT_EQ(out.GetCDT("notificationsList").Size(), 1U);
    EXPECT_EQ(TranscriptText("log 3"), "");
}

TEST_F(NotificationListFailuresTest, ExceptionWhileTheListIsBuiltLeavesTheBusAndAnEmptyList) {
    recording::Reset();
    Given(kPin1Call).Does([] { throw std::runtime_error("no pin"); });
    EXPECT_EQ(Json({Notification("a"), Notification("b")}), kNoNotifications);
    EXPECT_EQ(
        TranscriptText(),
        Steps({kStart, kGetSize, "MsgbusHandler::GetData(zelt.ans.notifications, room for 932)",
               Log(7, kGetList + " - [2] notifications received on msgbus"), kPin1Call + "()",
               Failure(kGetList + " - notification list failed: no pin"), kEnd}));
}

TEST_F(NotificationListFailuresTest, ExceptionAfterTheFirstNotificationLeavesNoneInTheList) {
    recording::Reset();
    Given(kUnreadCall).Writes(0);
    Given(kUnreadCall).Does([] { throw std::bad_alloc(); });
    EXPECT_EQ(Json({Notification("a"), Notification("b")}), kNoNotifications);
    EXPECT_EQ(TranscriptText("MsgbusHandler::Uninitialize"),
              Steps({"MsgbusHandler::Uninitialize()"}));
}

TEST_F(NotificationListFailuresTest, BusThatThrowsIsLeftAndGivesAnEmptyList) {
    for (const std::string call : {"MsgbusHandler::Initialize", "MsgbusHandler::GetData"}) {
        StartRequest();
        Given(call).Does([] { throw std::runtime_error("no bus"); });
        EXPECT_EQ(Json(), kNoNotifications) << call;
        const std::string transcript = TranscriptText();
        EXPECT_THAT(transcript,
                    testing::EndsWith(
                        Steps({Failure(kGetList + " - notification list failed: no bus"), kEnd})));
    }
}

TEST_F(NotificationListFailuresTest, BusThatCannotBeEnteredGivesAnEmptyList) {
    Given("MsgbusHandler::MsgbusHandler").Does([] { throw std::runtime_error("no bus"); });
    EXPECT_EQ(Json(), kNoNotifications);
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGetList + " - BEGIN"), "MsgbusHandler::MsgbusHandler(no callback)",
                     Failure(kGetList + " - message bus failed: no bus"),
                     Log(7, kGetList + " - END returning 0")}));
}

TEST_F(NotificationListFailuresTest, ListIsCompleteEvenIfTheBusCannotBeLeft) {
    Given("MsgbusHandler::Uninitialize").Does([] { throw std::runtime_error("no way out"); });
    Json({Notification("a")});
    EXPECT_EQ(out.GetCDT("notificationsList").Size(), 1U);
    EXPECT_THAT(TranscriptText(),
                testing::EndsWith(Steps({"MsgbusHandler::Uninitialize()",
                                         Failure(kGetList + " - message bus failed: no way out"),
                                         Log(7, kGetList + " - END returning 0")})));
}

TEST_F(NotificationListFailuresTest, Pin1ThatCannotBeReadHasNoText) {
    Give("webui", "t", "[%4]");
    recording::Reset();
    GpioCustomSettings settings{};
    SetText(settings.name, "Door");
    Given(kPin1Call).Returns(21).Writes(settings);
    Given(kPin2Call);
    Given(kUnreadCall).Writes(0);
    EXPECT_EQ(TextOf(NotificationWithText("gpioPin1StateChangeToLow", "t")), "[]");
    EXPECT_EQ(
        TranscriptText(),
        OneNotification(
            {kPin1Call + "()",
             Failure(kGetList + " - sys_getGpioPin1CustomSettings failed with error code: 21, try "
                                "sysintcli getGpioPin1CustomSettings from command line."),
             kPin2Call + "()", kNoneUnread}));
}

TEST_F(NotificationListFailuresTest, Pin2ThatCannotBeReadHasNoText) {
    Give("webui", "t", "[%4]");
    recording::Reset();
    Given(kPin1Call);
    Given(kPin2Call).Returns(-22);
    Given(kUnreadCall).Writes(0);
    EXPECT_EQ(TextOf(NotificationWithText("gpioPin2StateChangeToHigh", "t")), "[]");
    EXPECT_EQ(
        TranscriptText(),
        OneNotification(
            {kPin1Call + "()", kPin2Call + "()",
             Failure(kGetList + " - sys_getGpioPin2CustomSettings failed with error code: -22, try "
                                "sysintcli getGpioPin2CustomSettings from command line."),
             kNoneUnread}));
}

TEST_F(NotificationListFailuresTest, OnePinThatCannotBeReadDoesNotHideTheOther) {
    Give("webui", "t", "[%4]");
    GpioCustomSettings settings{};
    SetText(settings.name, "Door");
    SetText(settings.lowState, "Closed");
    recording::Reset();
    Given(kPin1Call).Returns(1);
    Given(kPin2Call).Writes(settings);
    EXPECT_EQ(TextOf(NotificationWithText("gpioPin2StateChangeToLow", "t")), "[Door Closed]");
    recording::Reset();
    Given(kPin1Call).Writes(settings);
    Given(kPin2Call).Returns(1);
    EXPECT_EQ(TextOf(NotificationWithText("gpioPin1StateChangeToLow", "t")), "[Door Closed]");
}

TEST_F(NotificationListFailuresTest, UnreadMessagesThatCannotBeCountedAreNone) {
    Give("webui", "t", "[%3]");
    recording::Reset();
    Given(kPin1Call);
    Given(kPin2Call);
    Given(kUnreadCall).Returns(33);
    EXPECT_EQ(TextOf(NotificationWithText("a", "t")), "[0]");
    EXPECT_EQ(
        TranscriptText(),
        OneNotification(
            {kPin1Call + "()", kPin2Call + "()", kUnreadCall + "()",
             Failure(kGetList + " sys_getSMSUnreadCount failed, returned error code [33]. Try "
                                "sysintcli getSMSUnreadCount from command line.")}));
}

TEST_F(NotificationListFailuresTest, CountOfOneNotificationIsNotThatOfTheNext) {
    Give("webui", "t", "[%3]");
    recording::Reset();
    Given(kUnreadCall).Writes(4);
    Given(kUnreadCall).Returns(33);
    Json({NotificationWithText("a", "t"), NotificationWithText("a", "t")});
    EXPECT_EQ(out.GetCDT("notificationsList").GetCDT(0).GetCDT("text").GetString(), "[4]");
    EXPECT_EQ(out.GetCDT("notificationsList").GetCDT(1).GetCDT("text").GetString(), "[0]");
}

TEST_F(NotificationListFailuresTest, CountThatAFailingCallWroteIsShown) {
    Give("webui", "t", "[%3]");
    recording::Reset();
    Given(kUnreadCall).Returns(33).Writes(6);
    EXPECT_EQ(TextOf(NotificationWithText("a", "t")), "[6]");
}

TEST_F(NotificationListFailuresTest, DeviceOnWhichEverythingElseFailsStillShowsItsNotifications) {
    Give("webui", "t", "text");
    recording::Reset();
    EXPECT_EQ(Json({NotificationWithText("softwareUpdate", "t"),
                    NotificationWithText("simPINLocked", "t")}),
              R"({"notificationsList":[)"
              R"({"category":"","id":"softwareUpdate","label":"","severity":"info",)"
              R"("text":"text","title":""},)"
              R"({"category":"","id":"simPINLocked","label":"","severity":"info",)"
              R"("text":"text","title":""}]})");
}

}  // namespace
