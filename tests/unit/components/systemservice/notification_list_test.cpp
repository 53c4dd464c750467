#include "tests/unit/components/systemservice/notification_list_test.h"

#include <gmock/gmock.h>

#include <cstring>
#include <limits>

#include "components/systemservice/service_api.h"

using recording::CallCount;
using recording::Given;
using recording::Log;
using recording::TranscriptText;
using translations::Give;

namespace {

AnsNotificationRecord Inactive(std::string_view id) {
    AnsNotificationRecord record = Notification(id);
    record.flags = ~std::uint32_t{ANS_NOTIFICATION_ACTIVE};
    return record;
}

/// A notification in which every field that is shown has a value.
AnsNotificationRecord Full(std::string_view id, std::uint32_t severity) {
    AnsNotificationRecord record = Notification(id);
    SetText(record.category, "category of it");
    SetText(record.labelId, "label_id");
    SetText(record.titleId, "title_id");
    SetText(record.textId, "text_id");
    record.severity = severity;
    return record;
}

/// The transcript of the calls that are made for each shown notification, with @p unread messages,
/// before its texts are looked up.
Step ReadsPinsAndUnread(int unread) {
    return std::vector<std::string>{
        kPin1Call + "()", kPin2Call + "()", kUnreadCall + "()",
        Log(7, kGetList + " - sms unread count " + std::to_string(unread))};
}

Step LooksUpPage(const std::string& id, const std::string& url, const std::string& title) {
    return std::vector<std::string>{
        Log(7, kGetLink + " - BEGIN"),
        Log(7, kGetPage + " - BEGIN"),
        kPageCall + "(" + id + ")",
        Log(7, kGetPage + " - page id is " + id + ", url is " + url + " and url title is " + title),
        Log(7, kGetPage + " - END"),
        Log(7, kGetLink + " - END")};
}

webui_uri_data_t PageAt(std::string_view address, std::string_view titleId) {
    webui_uri_data_t data{};
    SetText(data.address, address);
    SetText(data.titleId, titleId);
    return data;
}

TEST_F(NotificationListTest, WholeListIsReadTranslatedAndLinkedInOneFixedOrder) {
    Give("webui", "webui_product_name", "Kestal");
    Give("webui", "webui_product_number", "K1");
    Give("webui", "title_id", "Title");
    Give("webui", "label_id", "Label");
    Give("webui", "text_id", "%1 %2: %3 unread%4");
    Give("webui", "update_title", "Update");
    Give("webui", "system_service_extra_text", " extra");
    Give("webui", "webui_app_dot_text", ".");

    StartRequest(2);
    SoftwareUpdateCustomMessages messages{};
    SetText(messages.description, "Update %1 now");
    Given(kLanguageCall).Returns(WEBUI_SUCCESS).Writes(Language("de_DE"));
    Given(kMessagesCall).Returns(WEBUI_SUCCESS).Writes(messages);
    Given(kPageCall).Returns(WEBUI_SUCCESS).Writes(PageAt("/update", "update_title"));
    Given(kPageCall).Returns(WEBUI_SUCCESS).Writes(PageAt("/sms", "sms_title"));

    EXPECT_EQ(Json({Full("softwareUpdate", ANS_SEVERITY_ALERT), Inactive("dataOff"),
                    Full("smsReceived", ANS_SEVERITY_INFO)}),
              R"({"notificationsList":[)"
              R"({"category":"category of it","id":"softwareUpdate","label":"Label",)"
              R"("severity":"alert","text":"Update %1 now\u003ca href=\"\/update\"\u003e)"
              R"(webui_install_now_text.\u003c\/a\u003e extra","title":"Title"},)"
              R"({"category":"category of it","id":"smsReceived","label":"Label",)"
              R"("severity":"info","text":"Kestal K1: 2 unread\u003ca href=\"\/sms\"\u003e)"
              R"(webui_view_messages_link_text.\u003c\/a\u003e","title":"Title"}]})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGetList + " - BEGIN"), "MsgbusHandler::MsgbusHandler(no callback)",
                     "MsgbusHandler::Initialize()",
                     "MsgbusHandler::GetData(zelt.ans.notifications, no buffer)",
                     "MsgbusHandler::GetData(zelt.ans.notifications, room for 1396)",
                     Log(7, kGetList + " - [3] notifications received on msgbus"),
                     ReadsPinsAndUnread(2), kLanguageCall + "()", kMessagesCall + "(de_DE)",
                     Log(7, kGetList + " - Replace SU_READY []-->[Update %1 now]"),
                     LooksUpPage("software_update", "/update", "Update"), ReadsPinsAndUnread(2),
                     LooksUpPage("sms", "/sms", "sms_title"), "MsgbusHandler::Uninitialize()",
                     Log(7, kGetList + " - END returning 0")}));
}

TEST_F(NotificationListTest, NoNotificationsGiveAnEmptyArray) {
    EXPECT_EQ(Json(std::vector<AnsNotificationRecord>{}), kNoNotifications);
    EXPECT_EQ(TranscriptText("log 7"),
              Steps({Log(7, kGetList + " - BEGIN"),
                     Log(7, kGetList + " - [0] notifications received on msgbus"),
                     Log(7, kGetList + " - END returning 0")}));
}

TEST_F(NotificationListTest, OnlyInactiveNotificationsGiveAnEmptyArrayAndAskTheDeviceNothing) {
    EXPECT_EQ(Json({Inactive("softwareUpdate"), Inactive("dataOff")}), kNoNotifications);
    EXPECT_EQ(TranscriptText("sys_"), "");
    EXPECT_EQ(TranscriptText("webui_"), "");
}

TEST_F(NotificationListTest, InactiveNotificationLeavesNoGap) {
    EXPECT_EQ(Json({Notification("a"), Inactive("b"), Notification("c")}),
              R"({"notificationsList":[)"
              R"({"category":"","id":"a","label":"","severity":"info","text":"","title":""},)"
              R"({"category":"","id":"c","label":"","severity":"info","text":"","title":""}]})");
}

TEST_F(NotificationListTest, PinsAndUnreadMessagesAreReadForEveryActiveNotification) {
    Json({Notification("a"), Inactive("b"), Notification("gpioPin1StateChangeToLow")});
    EXPECT_EQ(TranscriptText("sys_"),
              Steps({kPin1Call + "()", kPin2Call + "()", kUnreadCall + "()", kPin1Call + "()",
                     kPin2Call + "()", kUnreadCall + "()"}));
}

TEST_F(NotificationListTest, EachSeverityHasItsWordAndAnUnknownOneNone) {
    const std::pair<std::uint32_t, std::string> cases[] = {
        {0, "info"}, {1, "warning"}, {2, "alert"},      {3, "critical"},
        {4, ""},     {7, ""},        {0x80000000U, ""}, {0xffffffffU, ""},
    };
    for (const auto& [severity, word] : cases) {
        StartRequest();
        EXPECT_EQ(Only(Full("a", severity)).GetCDT("severity").GetString(), word) << severity;
    }
}

TEST_F(NotificationListTest, IdsWithoutTranslationAreShownAsTheyAre) {
    const CTPP::CDT only = Only(Full("a", 0));
    EXPECT_EQ(only.GetCDT("title").GetString(), "title_id");
    EXPECT_EQ(only.GetCDT("text").GetString(), "text_id");
    EXPECT_EQ(only.GetCDT("label").GetString(), "label_id");
}

TEST_F(NotificationListTest, IdAndCategoryAreNotTranslated) {
    Give("webui", "a", "translated");
    Give("webui", "category of it", "translated");
    const CTPP::CDT only = Only(Full("a", 0));
    EXPECT_EQ(only.GetCDT("id").GetString(), "a");
    EXPECT_EQ(only.GetCDT("category").GetString(), "category of it");
}

TEST_F(NotificationListTest, EmptyMessageIdDoesNotShowTheHeaderOfTheCatalogue) {
    Give("webui", "", "Content-Type: text/plain");
    const CTPP::CDT only = Only(Notification("a"));
    EXPECT_EQ(only.GetCDT("title").GetString(), "");
    EXPECT_EQ(only.GetCDT("text").GetString(), "");
    EXPECT_EQ(only.GetCDT("label").GetString(), "");
}

TEST_F(NotificationListTest, FieldsWithoutTerminatorEndWithTheField) {
    AnsNotificationRecord record = Notification(std::string(30, 'i'));
    SetText(record.category, std::string(20, 'c'));
    SetText(record.labelId, std::string(50, 'l'));
    SetText(record.titleId, std::string(50, 't'));
    SetText(record.textId, std::string(286, 'x'));
    std::memset(record.reserved440, 'r', sizeof(record.reserved440));
    const CTPP::CDT only = Only(record);
    EXPECT_EQ(only.GetCDT("id").GetString(), std::string(30, 'i'));
    EXPECT_EQ(only.GetCDT("category").GetString(), std::string(20, 'c'));
    EXPECT_EQ(only.GetCDT("label").GetString(), std::string(50, 'l'));
    EXPECT_EQ(only.GetCDT("title").GetString(), std::string(50, 't'));
    EXPECT_EQ(only.GetCDT("text").GetString(), std::string(286, 'x'));
}

TEST_F(NotificationListTest, PlaceholdersStandForProductUnreadMessagesAndPin) {
    Give("webui", "webui_product_name", "Kestal");
    Give("webui", "webui_product_number", "K1");
    Give("webui", "notification_gpio_pin1_state_change_to_low_text", "went low");
    Give("webui", "t", "%4|%3|%2|%1|%1");
    EXPECT_EQ(TextOf(NotificationWithText("gpioPin1StateChangeToLow", "t")),
              "went low|0|K1|Kestal|Kestal");
}

TEST_F(NotificationListTest, PinTextOfOneNotificationDoesNotReachTheNext) {
    Give("webui", "t", "[%4]");
    Json({NotificationWithText("gpioPin1StateChangeToLow", "t"), NotificationWithText("a", "t")});
    EXPECT_EQ(out.GetCDT("notificationsList").GetCDT(1).GetCDT("text").GetString(), "[]");
}

TEST_F(NotificationListTest, PlaceholderWithoutArgumentIsNotReplacedAndNothingIsLogged) {
    Give("webui", "t", "%3 and %5");
    StartRequest(2);
    EXPECT_EQ(TextOf(NotificationWithText("a", "t")), "2 and %5");
    EXPECT_EQ(TranscriptText("log 3"), "");
    EXPECT_EQ(TranscriptText("syslog"), "");
}

TEST_F(NotificationListTest, TextWithoutPlaceholdersIsUnchanged) {
    Give("webui", "t", "100 % <b>done</b>");
    EXPECT_EQ(TextOf(NotificationWithText("a", "t")), "100 % <b>done</b>");
}

TEST_F(NotificationListTest, TextOfOneBlankIsShownWithTheLinkAndReported) {
    Give("webui", "t", " ");
    Given(kPageCall).Returns(WEBUI_SUCCESS).Writes(PageAt("/data", ""));
    EXPECT_EQ(TextOf(NotificationWithText("dataOff", "t")),
              " <a href=\"/data\">webui_app_turnon_text</a>");
    EXPECT_THAT(TranscriptText(),
                testing::HasSubstr(
                    Steps({ReadsPinsAndUnread(0),
                           "syslog 138 [WEBUI]:[ERROR] - po string is empty or no arguments passed",
                           "log 3 [WEBUI]:[ERROR] - po string is empty or no arguments passed",
                           LooksUpPage("wwan_settings", "/data", "")})));
}

TEST_F(NotificationListTest, TextThatTheCarrierReplacesIsNotReported) {
    Give("webui", "t", " ");
    Given(kLanguageCall).Returns(WEBUI_SUCCESS).Writes(Language("fr"));
    SoftwareUpdateCustomMessages messages{};
    SetText(messages.description, "ready");
    Given(kMessagesCall).Returns(WEBUI_SUCCESS).Writes(messages);
    EXPECT_EQ(TextOf(NotificationWithText("softwareUpdate", "t")), "ready");
    EXPECT_EQ(TranscriptText("log 3"), "");
    EXPECT_EQ(TranscriptText("syslog"), "");
}

TEST_F(NotificationListTest, EmptyTextAndTwoBlanksAreNotReported) {
    for (const std::string text : {"", "  "}) {
        StartRequest();
        Give("webui", "t", text);
        EXPECT_EQ(TextOf(NotificationWithText("a", "t")), text);
        EXPECT_EQ(TranscriptText("log 3"), "");
    }
}

TEST_F(NotificationListTest, LastUnreadCountIsTheOneShown) {
    Give("webui", "t", "%3");
    recording::Reset();
    Given(kPin1Call);
    Given(kPin2Call);
    Given(kUnreadCall).Writes(4);
    Given(kUnreadCall).Writes(-5);
    Json({NotificationWithText("a", "t"), NotificationWithText("a", "t")});
    EXPECT_EQ(out.GetCDT("notificationsList").GetCDT(0).GetCDT("text").GetString(), "4");
    EXPECT_EQ(out.GetCDT("notificationsList").GetCDT(1).GetCDT("text").GetString(), "-5");
}

TEST_F(NotificationListTest, DispatchAndTheReadOperationReachTheList) {
    Publish({Notification("a")});
    EXPECT_EQ(component.Dispatch(out, SERVICE_API_NOTIFICATION), PAGE_ERROR_NONE);
    EXPECT_EQ(out.GetCDT("notificationsList").Size(), 1U);
    StartRequest();
    Publish({Notification("a"), Notification("b")});
    CTPP::CDT in;
    in["api"] = "notification";
    EXPECT_EQ(component.GetDynamicData(out, in), PAGE_ERROR_NONE);
    EXPECT_EQ(out.GetCDT("notificationsList").Size(), 2U);
}

TEST_F(NotificationListTest, OtherKeysOfTheAnswerStay) {
    out["other"] = "x";
    Publish(std::vector<AnsNotificationRecord>{});
    component.GetNotificationStatus(out);
    EXPECT_EQ(ToJson(out), R"({"notificationsList":[],"other":"x"})");
}

TEST_F(NotificationListTest, CountIsLoggedAsReceivedAndOnlyWholeRecordsAreShown) {
    const std::pair<std::int32_t, std::uint32_t> cases[] = {
        {3, 2},  {std::numeric_limits<std::int32_t>::max(), 2}, {1, 1}, {0, 0},
        {-7, 0}, {std::numeric_limits<std::int32_t>::min(), 0},
    };
    for (const auto& [count, shown] : cases) {
        StartRequest();
        std::vector<std::byte> block = NotificationList({Notification("a"), Notification("b")});
        std::memcpy(block.data(), &count, sizeof(count));
        block.resize(block.size() + 463, std::byte{0xff});
        Publish(block);
        Json();
        EXPECT_EQ(out.GetCDT("notificationsList").Size(), shown) << count;
        EXPECT_EQ(TranscriptText(Log(7, kGetList + " - [")),
                  Steps({Log(7, kGetList + " - [" + std::to_string(count) +
                                    "] notifications received on msgbus")}));
    }
}

TEST_F(NotificationListTest, BlockThatIsTooShortForItsCountGivesAnEmptyArray) {
    for (std::size_t size = 1; size < 4; ++size) {
        StartRequest();
        Publish(std::vector<std::byte>(size, std::byte{1}));
        EXPECT_EQ(Json(), kNoNotifications);
        EXPECT_EQ(TranscriptText(Log(7, kGetList + " - [")),
                  Steps({Log(7, kGetList + " - [0] notifications received on msgbus")}));
    }
}

TEST_F(NotificationListTest, ThousandsOfNotificationsAreShown) {
    constexpr std::size_t kCount = 5000;
    Json(std::vector<AnsNotificationRecord>(kCount, Full("a", 1)));
    EXPECT_EQ(out.GetCDT("notificationsList").Size(), kCount);
    EXPECT_EQ(CallCount(kUnreadCall), kCount);
    EXPECT_EQ(ToJson(out.GetCDT("notificationsList").GetCDT(kCount - 1)),
              R"({"category":"category of it","id":"a","label":"label_id","severity":"warning",)"
              R"("text":"text_id","title":"title_id"})");
}

}  // namespace
