#include "components/systemservice/custom_message_cache.h"

#include "tests/unit/components/systemservice/notification_list_test.h"

using recording::CallCount;
using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;
using translations::Give;

namespace {

const std::string kReadyType = "softwareUpdate";
const std::string kSuccessType = "softwareUpdateSuccess";
const std::string kFailureType = "softwareUpdateFailure";

SoftwareUpdateCustomMessages Messages(std::string_view ready, std::string_view success,
                                      std::string_view failure) {
    SoftwareUpdateCustomMessages messages{};
    SetText(messages.description, ready);
    SetText(messages.download, "unused");
    SetText(messages.readyToInstall, "unused");
    SetText(messages.installSuccess, success);
    SetText(messages.installFail, failure);
    return messages;
}

void GivenLanguage(std::string_view code) {
    Given(kLanguageCall).Returns(WEBUI_SUCCESS).Writes(Language(code));
}

void GivenMessages(const SoftwareUpdateCustomMessages& messages) {
    Given(kMessagesCall).Returns(WEBUI_SUCCESS).Writes(messages);
}

const Step kLanguageFailure =
    Failure(kGetList +
            " - webui_get_i18n_settings failed, returned error 11. Try webui_cli "
            "get_i18n_settings from command line.");

const Step kMessagesFailure =
    Failure(kGetList +
            " - webui_get_software_update_custom_msgs failed, returned error 12. Try webui_cli "
            "get_software_update_custom_msgs from command line.");

class CustomMessageCacheTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    /// Lets the cache fetch @p messages in the language @p code, and clears the transcript.
    void Load(std::string_view code, const SoftwareUpdateCustomMessages& messages) {
        recording::Reset();
        GivenLanguage(code);
        GivenMessages(messages);
        cache.Text(kListSignature, kReadyType);
        recording::Reset();
    }

    CustomMessageCache cache;
};

TEST_F(CustomMessageCacheTest, TextsAreLoadedEvenByATypeThatHasNone) {
    GivenLanguage("fr");
    GivenMessages(Messages("ready", "", ""));
    EXPECT_EQ(cache.Text(kListSignature, kSuccessType), "");
    EXPECT_EQ(cache.Text(kListSignature, kFailureType), "");
    EXPECT_EQ(cache.Text(kListSignature, kReadyType), "ready");
    EXPECT_EQ(CallCount(kMessagesCall), 1U);
    EXPECT_EQ(TranscriptText("log"), "");
}

TEST_F(CustomMessageCacheTest, EachTypeHasItsTextAndItsLogLine) {
    const struct {
        std::string type;
        std::string text;
        std::string line;
    } cases[] = {
        {kReadyType, "ready", "Replace SU_READY []-->[ready]"},
        {kSuccessType, "success", "Replace SU_SUCCESS []-->[success]"},
        {kFailureType, "failure", "Replace SU_FAIL []-->[failure]"},
    };
    for (const auto& [type, text, line] : cases) {
        recording::Reset();
        GivenLanguage("fr");
        GivenMessages(Messages("ready", "success", "failure"));
        CustomMessageCache fresh;
        EXPECT_EQ(fresh.Text(kListSignature, type), text);
        EXPECT_EQ(TranscriptText(), Steps({kLanguageCall + "()", kMessagesCall + "(fr)",
                                           Log(7, kGetList + " - " + line)}));
    }
}

TEST_F(CustomMessageCacheTest, OtherTypesHaveNoTextAndAskNothing) {
    Load("fr", Messages("ready", "success", "failure"));
    for (const std::string type :
         {"", "dataOff", "softwareupdate", "softwareUpdate ", "softwareUpdateSucces"}) {
        EXPECT_EQ(cache.Text(kListSignature, type), "");
    }
    EXPECT_EQ(TranscriptText(), "");
}

TEST_F(CustomMessageCacheTest, LoadedTextsAreNotFetchedAgainNorLogged) {
    Load("fr", Messages("ready", "success", "failure"));
    GivenLanguage("fr");
    EXPECT_EQ(cache.Text(kListSignature, kReadyType), "ready");
    EXPECT_EQ(cache.Text(kListSignature, kSuccessType), "success");
    EXPECT_EQ(cache.Text(kListSignature, kFailureType), "failure");
    EXPECT_EQ(TranscriptText(),
              Steps({kLanguageCall + "()", kLanguageCall + "()", kLanguageCall + "()"}));
}

TEST_F(CustomMessageCacheTest, AnotherLanguageFetchesAgain) {
    Load("fr", Messages("ready", "success", "failure"));
    GivenLanguage("de");
    GivenMessages(Messages("bereit", "", "misslungen"));
    EXPECT_EQ(cache.Text(kListSignature, kSuccessType), "");
    EXPECT_EQ(TranscriptText(), Steps({kLanguageCall + "()", kMessagesCall + "(de)"}));
    EXPECT_EQ(cache.Text(kListSignature, kReadyType), "bereit");
    EXPECT_EQ(CallCount(kMessagesCall), 1U);
}

TEST_F(CustomMessageCacheTest, EmptyReadyTextIsFetchedEveryTime) {
    Load("fr", Messages("", "success", ""));
    GivenLanguage("fr");
    GivenMessages(Messages("", "success", ""));
    EXPECT_EQ(cache.Text(kListSignature, kSuccessType), "success");
    EXPECT_EQ(cache.Text(kListSignature, kSuccessType), "success");
    EXPECT_EQ(CallCount(kMessagesCall), 2U);
}

TEST_F(CustomMessageCacheTest, FailedFetchGivesNoTextAndIsRepeated) {
    GivenLanguage("fr");
    Given(kMessagesCall).Returns(12).Writes(Messages("ready", "success", "failure"));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(cache.Text(kListSignature, kReadyType), "");
    }
    EXPECT_EQ(TranscriptText(),
              Steps({kLanguageCall + "()", kMessagesCall + "(fr)", kMessagesFailure,
                     kLanguageCall + "()", kMessagesCall + "(fr)", kMessagesFailure}));
    recording::Reset();
    GivenLanguage("fr");
    GivenMessages(Messages("ready", "success", "failure"));
    EXPECT_EQ(cache.Text(kListSignature, kReadyType), "ready");
}

TEST_F(CustomMessageCacheTest, FetchThatFailsAfterALanguageChangeForgetsTheOldTexts) {
    Load("fr", Messages("ready", "success", "failure"));
    GivenLanguage("de");
    Given(kMessagesCall).Returns(12);
    EXPECT_EQ(cache.Text(kListSignature, kReadyType), "");
    recording::Reset();
    GivenLanguage("fr");
    GivenMessages(Messages("ready", "success", "failure"));
    EXPECT_EQ(cache.Text(kListSignature, kReadyType), "ready");
    EXPECT_EQ(CallCount(kMessagesCall), 1U);
}

TEST_F(CustomMessageCacheTest, NoTextOfAnEarlierFetchRemains) {
    Load("fr", Messages("ready", "success", "failure"));
    GivenLanguage("de");
    Given(kMessagesCall).Returns(WEBUI_SUCCESS);
    EXPECT_EQ(cache.Text(kListSignature, kFailureType), "");
}

TEST_F(CustomMessageCacheTest, LanguageThatCannotBeReadFetchesWithAnEmptyCodeEveryTime) {
    Given(kLanguageCall).Returns(11);
    GivenMessages(Messages("ready", "success", "failure"));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(cache.Text(kListSignature, kReadyType), "ready");
    }
    const Step replaced = Log(7, kGetList + " - Replace SU_READY []-->[ready]");
    EXPECT_EQ(TranscriptText(),
              Steps({kLanguageCall + "()", kLanguageFailure, kMessagesCall + "()", replaced,
                     kLanguageCall + "()", kLanguageFailure, kMessagesCall + "()", replaced}));
}

TEST_F(CustomMessageCacheTest, LanguageThatAFailingCallWroteIsUsed) {
    Given(kLanguageCall).Returns(11).Writes(Language("fr"));
    GivenMessages(Messages("ready", "", ""));
    cache.Text(kListSignature, kReadyType);
    cache.Text(kListSignature, kReadyType);
    EXPECT_EQ(TranscriptText(kMessagesCall),
              Steps({kMessagesCall + "(fr)", kMessagesCall + "(fr)"}));
}

// After a failed call, the cache takes "en" for the language of its texts, so they count as loaded
// only for this language.
TEST_F(CustomMessageCacheTest, EnglishThatAFailingCallWroteFindsTheTextsLoaded) {
    Load("fr", Messages("ready", "", ""));
    Given(kLanguageCall).Returns(11).Writes(Language("en"));
    EXPECT_EQ(cache.Text(kListSignature, kReadyType), "ready");
    EXPECT_EQ(CallCount(kMessagesCall), 0U);
}

TEST_F(CustomMessageCacheTest, LanguageIsReadAgainAfterAFailure) {
    Load("fr", Messages("ready", "", ""));
    Given(kLanguageCall).Returns(11);
    GivenMessages(Messages("ready", "", ""));
    cache.Text(kListSignature, kReadyType);
    recording::Reset();
    GivenLanguage("fr");
    GivenMessages(Messages("ready", "", ""));
    cache.Text(kListSignature, kReadyType);
    EXPECT_EQ(TranscriptText(kMessagesCall), Steps({kMessagesCall + "(fr)"}));
}

TEST_F(CustomMessageCacheTest, LanguageWithoutTerminatorEndsWithItsField) {
    const std::string code(32, 'x');
    Load(code, Messages("ready", "", ""));
    GivenLanguage(code);
    EXPECT_EQ(cache.Text(kListSignature, kReadyType), "ready");
    EXPECT_EQ(CallCount(kMessagesCall), 0U);
}

TEST_F(CustomMessageCacheTest, TextsWithoutTerminatorEndWithTheirField) {
    const std::string ready(1024, 'r');
    const std::string success(1024, 's');
    const std::string failure(1024, 'f');
    Load("fr", Messages(ready, success, failure));
    GivenLanguage("fr");
    EXPECT_EQ(cache.Text(kListSignature, kReadyType), ready);
    EXPECT_EQ(cache.Text(kListSignature, kSuccessType), success);
    EXPECT_EQ(cache.Text(kListSignature, kFailureType), failure);
}

class CustomMessagesInTheListTest : public NotificationListTest {
  protected:
    void SetUp() override {
        NotificationListTest::SetUp();
        Give("webui", "t", "%3 unread");
    }
};

TEST_F(CustomMessagesInTheListTest, CarriersTextIsShownWithoutFilling) {
    GivenLanguage("fr");
    GivenMessages(Messages("%1 is <i>ready</i>", "", ""));
    EXPECT_EQ(TextOf(NotificationWithText(kReadyType, "t")), "%1 is <i>ready</i>");
}

TEST_F(CustomMessagesInTheListTest, EmptyTextOfTheCarrierLeavesTheFilledMessage) {
    for (const std::string& type : {kSuccessType, kFailureType}) {
        StartRequest(2);
        GivenLanguage("fr");
        GivenMessages(Messages("ready", "", ""));
        EXPECT_EQ(TextOf(NotificationWithText(type, "t")), "2 unread");
    }
    StartRequest(2);
    GivenLanguage("de");
    GivenMessages(Messages("", "success", "failure"));
    EXPECT_EQ(TextOf(NotificationWithText(kReadyType, "t")), "2 unread");
}

TEST_F(CustomMessagesInTheListTest, MessagesThatCannotBeFetchedLeaveTheFilledMessage) {
    StartRequest(2);
    GivenLanguage("fr");
    Given(kMessagesCall).Returns(12);
    EXPECT_EQ(TextOf(NotificationWithText(kReadyType, "t")), "2 unread");
}

TEST_F(CustomMessagesInTheListTest, TextsAreFetchedOnceForTwoNotificationsAndTwoRequests) {
    GivenLanguage("fr");
    GivenMessages(Messages("ready", "", ""));
    Json({NotificationWithText(kReadyType, "t"), NotificationWithText(kReadyType, "t")});
    EXPECT_EQ(CallCount(kLanguageCall), 2U);
    EXPECT_EQ(CallCount(kMessagesCall), 1U);
    const CTPP::CDT first = out.GetCDT("notificationsList");
    EXPECT_EQ(first.GetCDT(0).GetCDT("text").GetString(), "ready");
    EXPECT_EQ(first.GetCDT(1).GetCDT("text").GetString(), "ready");

    StartRequest();
    GivenLanguage("fr");
    EXPECT_EQ(TextOf(NotificationWithText(kReadyType, "t")), "ready");
    EXPECT_EQ(CallCount(kMessagesCall), 0U);
}

TEST_F(CustomMessagesInTheListTest, InactiveUpdatesAskNothing) {
    AnsNotificationRecord record = Notification(kReadyType);
    record.flags = 0;
    Json({record});
    EXPECT_EQ(TranscriptText("webui_"), "");
}

}  // namespace
