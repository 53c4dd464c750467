#include "platform/webui.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::CallCount;
using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kUpdate = " - void StatusComponent::GetSoftwareUpdateStatus(CTPP::CDT&)";
const std::string kGetStatus = "webui_get_software_update_status";
const std::string kGetDuration = "webui_get_software_installation_duration";
const std::string kGetLanguage = "webui_get_i18n_settings";
const std::string kGetMessages = "webui_get_software_update_custom_msgs";

webui_software_update_status_t Update(int status, int value, const std::string& version) {
    webui_software_update_status_t record{};
    record.status = status;
    record.userInitiated = 1;
    record.value = value;
    SetText(record.version, version);
    return record;
}

SoftwareUpdateCustomMessages Messages() {
    SoftwareUpdateCustomMessages record{};
    SetText(record.description, "desc");
    SetText(record.download, "download");
    SetText(record.readyToInstall, "ready");
    SetText(record.installSuccess, "success");
    SetText(record.installFail, "fail");
    return record;
}

Step ReadStatus(const std::string& status, const std::string& value) {
    return Log(7, kUpdate + " - webui_get_software_update_status success, status[" + status +
                      "]  value[" + value + "]");
}

Step ReadDuration(const std::string& duration) {
    return Log(7, kUpdate + " - software installation duration is [" + duration + "]");
}

const Step kStatusFailure =
    Failure(kUpdate +
            " - webui_get_software_update_status failed, returned error 41. Try webui_cli "
            "get_software_update_status from command line.");
const Step kDurationFailure =
    Failure(kUpdate +
            " - webui_get_software_installation_duration failed, returned error 42. Try webui_cli "
            "software_installation_duration from command line.");
const Step kLanguageFailure =
    Failure(kUpdate +
            " - webui_get_i18n_settings failed, returned error 43. Try webui_cli "
            "get_i18n_settings from command line.");
const Step kMessagesFailure =
    Failure(kUpdate +
            " - webui_get_software_update_custom_msgs failed, returned error 44. Try webui_cli "
            "get_software_update_custom_msgs from command line.");

class SoftwareUpdateStatusTest : public StatusGroupTest {
  protected:
    static void GivenStatus(const webui_software_update_status_t& update) {
        Given(kGetStatus).Returns(WEBUI_SUCCESS).Writes(update);
    }

    static void GivenDuration(int duration) {
        Given(kGetDuration).Returns(WEBUI_SUCCESS).Writes(duration);
    }

    static void GivenLanguage(const std::string& code) {
        Given(kGetLanguage).Returns(WEBUI_SUCCESS).Writes(Language(code));
    }

    static void GivenMessages(const SoftwareUpdateCustomMessages& messages) {
        Given(kGetMessages).Returns(WEBUI_SUCCESS).Writes(messages);
    }

    /// Every call succeeds for an update in the state @p status.
    static void GivenAll(int status) {
        GivenStatus(Update(status, 3, "4.2"));
        GivenDuration(600);
        GivenLanguage("de_DE");
        GivenMessages(Messages());
    }

    std::string Json() {
        statusData = CTPP::CDT(CTPP::CDT::HASH_VAL);
        component->GetSoftwareUpdateStatus(statusData);
        return ToJson(statusData);
    }

    /// The JSON with the given state of the update, and no messages.
    static std::string WithoutMessages(int status, int value, const std::string& version,
                                       int userInitiated, int duration) {
        return R"({"StatusBarSoftwareUpdateCustomDesc":"",)"
               R"("StatusBarSoftwareUpdateCustomDownloadMsg":"",)"
               R"("StatusBarSoftwareUpdateCustomInstallFailMsg":"",)"
               R"("StatusBarSoftwareUpdateCustomInstallSuccessMsg":"",)"
               R"("StatusBarSoftwareUpdateCustomReadyToInstallMsg":"",)"
               R"("StatusBarSoftwareUpdateInstallationDuration":)" +
               std::to_string(duration) + R"(,"StatusBarSoftwareUpdateStatus":)" +
               std::to_string(status) + R"(,"StatusBarSoftwareUpdateUserInitiated":)" +
               std::to_string(userInitiated) + R"(,"StatusBarSoftwareUpdateValue":)" +
               std::to_string(value) + R"(,"StatusBarSoftwareUpdateVersion":")" + version + "\"}";
    }
};

TEST_F(SoftwareUpdateStatusTest, StateWithMessagesShowsThemInTheLanguageOfTheUser) {
    GivenAll(5);
    EXPECT_EQ(Json(), R"({"StatusBarSoftwareUpdateCustomDesc":"desc",)"
                      R"("StatusBarSoftwareUpdateCustomDownloadMsg":"download",)"
                      R"("StatusBarSoftwareUpdateCustomInstallFailMsg":"fail",)"
                      R"("StatusBarSoftwareUpdateCustomInstallSuccessMsg":"success",)"
                      R"("StatusBarSoftwareUpdateCustomReadyToInstallMsg":"ready",)"
                      R"("StatusBarSoftwareUpdateInstallationDuration":600,)"
                      R"("StatusBarSoftwareUpdateStatus":5,)"
                      R"("StatusBarSoftwareUpdateUserInitiated":1,)"
                      R"("StatusBarSoftwareUpdateValue":3,)"
                      R"("StatusBarSoftwareUpdateVersion":"4.2"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kUpdate + " - BEGIN"), "webui_get_software_update_status()",
                     ReadStatus("5", "3"), "webui_get_software_installation_duration()",
                     ReadDuration("600"), "webui_get_i18n_settings()",
                     "webui_get_software_update_custom_msgs(de_DE)", Log(7, kUpdate + " - END")}));
}

TEST_F(SoftwareUpdateStatusTest, StateWithoutMessagesLeavesThemEmptyAndDoesNotAskForThem) {
    GivenAll(7);
    EXPECT_EQ(Json(), WithoutMessages(7, 3, "4.2", 1, 600));
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kUpdate + " - BEGIN"), "webui_get_software_update_status()",
               ReadStatus("7", "3"), "webui_get_software_installation_duration()",
               ReadDuration("600"), "webui_get_i18n_settings()", Log(7, kUpdate + " - END")}));
}

TEST_F(SoftwareUpdateStatusTest, FiveStatesHaveMessagesAndASixthForItsValueTwo) {
    for (int status = -1; status <= 12; ++status) {
        for (const int value : {-2, 0, 1, 2, 3}) {
            recording::Reset();
            GivenStatus(Update(status, value, ""));
            Json();
            const bool asked = status == 4 || status == 5 || status == 6 || status == 8 ||
                               status == 10 || (status == 9 && value == 2);
            EXPECT_EQ(CallCount(kGetMessages), asked ? 1U : 0U) << status << " " << value;
        }
    }
}

TEST_F(SoftwareUpdateStatusTest, MessagesAreAskedForAnewInEachRequestOfTheSameLanguage) {
    GivenAll(5);
    Json();
    EXPECT_EQ(CallCount(kGetMessages), 1U);
    recording::Reset();
    GivenStatus(Update(5, 3, "4.2"));
    GivenLanguage("de_DE");
    SoftwareUpdateCustomMessages changed = Messages();
    SetText(changed.description, "changed");
    GivenMessages(changed);
    Json();
    EXPECT_EQ(CallCount(kGetMessages), 1U);
    EXPECT_EQ(Value("StatusBarSoftwareUpdateCustomDesc"), "changed");
}

TEST_F(SoftwareUpdateStatusTest, MessagesOfOneRequestAreNotShownInTheNext) {
    GivenAll(5);
    Json();
    recording::Reset();
    GivenAll(7);
    EXPECT_EQ(Json(), WithoutMessages(7, 3, "4.2", 1, 600));
}

TEST_F(SoftwareUpdateStatusTest, FailedStatusKeepsTheDefaultsAndMessagesAreNotAskedFor) {
    for (const bool written : {false, true}) {
        recording::Reset();
        recording::Answer& answer = Given(kGetStatus).Returns(41);
        if (written) {
            answer.Writes(Update(5, 3, "4.2"));
        }
        GivenDuration(600);
        GivenLanguage("de_DE");
        GivenMessages(Messages());
        EXPECT_EQ(Json(), WithoutMessages(0, 0, "", 0, 600));
        EXPECT_EQ(
            TranscriptText(),
            Steps({Log(7, kUpdate + " - BEGIN"), "webui_get_software_update_status()",
                   kStatusFailure, "webui_get_software_installation_duration()",
                   ReadDuration("600"), "webui_get_i18n_settings()", Log(7, kUpdate + " - END")}));
    }
}

TEST_F(SoftwareUpdateStatusTest, FailedDurationIsZero) {
    for (const bool written : {false, true}) {
        recording::Reset();
        GivenStatus(Update(1, 3, "4.2"));
        recording::Answer& answer = Given(kGetDuration).Returns(42);
        if (written) {
            answer.Writes(600);
        }
        GivenLanguage("de_DE");
        EXPECT_EQ(Json(), WithoutMessages(1, 3, "4.2", 1, 0));
        EXPECT_EQ(
            TranscriptText(),
            Steps({Log(7, kUpdate + " - BEGIN"), "webui_get_software_update_status()",
                   ReadStatus("1", "3"), "webui_get_software_installation_duration()",
                   kDurationFailure, "webui_get_i18n_settings()", Log(7, kUpdate + " - END")}));
    }
}

TEST_F(SoftwareUpdateStatusTest, FailedLanguageAsksForMessagesInNoLanguage) {
    for (const bool written : {false, true}) {
        recording::Reset();
        GivenStatus(Update(5, 3, "4.2"));
        GivenDuration(600);
        recording::Answer& answer = Given(kGetLanguage).Returns(43);
        if (written) {
            answer.Writes(Language("de_DE"));
        }
        GivenMessages(Messages());
        Json();
        EXPECT_EQ(Value("StatusBarSoftwareUpdateCustomDesc"), "desc");
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kUpdate + " - BEGIN"), "webui_get_software_update_status()",
                         ReadStatus("5", "3"), "webui_get_software_installation_duration()",
                         ReadDuration("600"), "webui_get_i18n_settings()", kLanguageFailure,
                         "webui_get_software_update_custom_msgs()", Log(7, kUpdate + " - END")}));
    }
}

TEST_F(SoftwareUpdateStatusTest, FailedMessagesAreEmpty) {
    for (const bool written : {false, true}) {
        recording::Reset();
        GivenStatus(Update(5, 3, "4.2"));
        GivenDuration(600);
        GivenLanguage("de_DE");
        recording::Answer& answer = Given(kGetMessages).Returns(44);
        if (written) {
            answer.Writes(Messages());
        }
        EXPECT_EQ(Json(), WithoutMessages(5, 3, "4.2", 1, 600));
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kUpdate + " - BEGIN"), "webui_get_software_update_status()",
                         ReadStatus("5", "3"), "webui_get_software_installation_duration()",
                         ReadDuration("600"), "webui_get_i18n_settings()",
                         "webui_get_software_update_custom_msgs(de_DE)", kMessagesFailure,
                         Log(7, kUpdate + " - END")}));
    }
}

TEST_F(SoftwareUpdateStatusTest, KeysExistWhenEveryCallFails) {
    Given(kGetStatus).Returns(41);
    Given(kGetDuration).Returns(42);
    Given(kGetLanguage).Returns(43);
    EXPECT_EQ(Json(), WithoutMessages(0, 0, "", 0, 0));
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kUpdate + " - BEGIN"), "webui_get_software_update_status()",
                     kStatusFailure, "webui_get_software_installation_duration()", kDurationFailure,
                     "webui_get_i18n_settings()", kLanguageFailure, Log(7, kUpdate + " - END")}));
}

TEST_F(SoftwareUpdateStatusTest, ZeroIsNoSuccessOfTheseCalls) {
    Given(kGetStatus).Returns(0).Writes(Update(5, 3, "4.2"));
    Given(kGetDuration).Returns(0).Writes(600);
    Given(kGetLanguage).Returns(0).Writes(Language("de_DE"));
    EXPECT_EQ(Json(), WithoutMessages(0, 0, "", 0, 0));
}

TEST_F(SoftwareUpdateStatusTest, RecordsThatAreNotWrittenAreZeroWhateverWasReadBefore) {
    GivenAll(5);
    Json();
    recording::Reset();
    Given(kGetStatus).Returns(WEBUI_SUCCESS);
    Given(kGetDuration).Returns(WEBUI_SUCCESS);
    Given(kGetLanguage).Returns(WEBUI_SUCCESS);
    EXPECT_EQ(Json(), WithoutMessages(0, 0, "", 0, 0));
}

TEST_F(SoftwareUpdateStatusTest, LanguageThatIsNotWrittenIsEmptyWhateverWasReadBefore) {
    GivenAll(5);
    Json();
    recording::Reset();
    GivenStatus(Update(5, 3, "4.2"));
    Given(kGetLanguage).Returns(WEBUI_SUCCESS);
    Json();
    EXPECT_EQ(TranscriptText(kGetMessages), Steps({"webui_get_software_update_custom_msgs()"}));
}

TEST_F(SoftwareUpdateStatusTest, MessagesThatAreNotWrittenAreEmpty) {
    GivenAll(5);
    Json();
    recording::Reset();
    GivenStatus(Update(5, 3, "4.2"));
    GivenDuration(600);
    Given(kGetMessages).Returns(WEBUI_SUCCESS);
    EXPECT_EQ(Json(), WithoutMessages(5, 3, "4.2", 1, 600));
}

TEST_F(SoftwareUpdateStatusTest, NumbersAreThePlatformsOwnAndIntegers) {
    webui_software_update_status_t update = Update(-5, -2147483647, "");
    update.userInitiated = 2147483647;
    GivenStatus(update);
    GivenDuration(-1);
    EXPECT_EQ(Json(), WithoutMessages(-5, -2147483647, "", 2147483647, -1));
    for (const char* key :
         {"StatusBarSoftwareUpdateStatus", "StatusBarSoftwareUpdateValue",
          "StatusBarSoftwareUpdateUserInitiated", "StatusBarSoftwareUpdateInstallationDuration"}) {
        EXPECT_EQ(statusData.GetCDT(key).GetType(), CTPP::CDT::INT_VAL) << key;
    }
}

TEST_F(SoftwareUpdateStatusTest, TextsWithoutTerminatorEndWithTheirFields) {
    GivenStatus(Update(5, 0, std::string(256, 'v')));
    SoftwareUpdateCustomMessages messages{};
    SetText(messages.description, std::string(1024, 'a'));
    SetText(messages.download, std::string(1024, 'b'));
    SetText(messages.readyToInstall, std::string(1024, 'c'));
    SetText(messages.installSuccess, std::string(1024, 'd'));
    SetText(messages.installFail, std::string(1024, 'e'));
    GivenMessages(messages);
    Json();
    EXPECT_EQ(Value("StatusBarSoftwareUpdateVersion"), std::string(256, 'v'));
    EXPECT_EQ(Value("StatusBarSoftwareUpdateCustomDesc"), std::string(1024, 'a'));
    EXPECT_EQ(Value("StatusBarSoftwareUpdateCustomDownloadMsg"), std::string(1024, 'b'));
    EXPECT_EQ(Value("StatusBarSoftwareUpdateCustomReadyToInstallMsg"), std::string(1024, 'c'));
    EXPECT_EQ(Value("StatusBarSoftwareUpdateCustomInstallSuccessMsg"), std::string(1024, 'd'));
    EXPECT_EQ(Value("StatusBarSoftwareUpdateCustomInstallFailMsg"), std::string(1024, 'e'));
}

TEST_F(SoftwareUpdateStatusTest, AtMostElevenCharactersOfTheLanguageCodeAreUsed) {
    for (const std::string code :
         {"sr_RS@latin", "sr_RS@latin1", "sr_RS@latin-and-much-more-of-it", "zh"}) {
        recording::Reset();
        GivenStatus(Update(5, 0, ""));
        GivenLanguage(code);
        Json();
        EXPECT_EQ(TranscriptText(kGetMessages), kGetMessages + "(" + code.substr(0, 11) + ")\n");
    }
}

TEST_F(SoftwareUpdateStatusTest, LanguageCodeThatFillsItsFieldIsCutAsWell) {
    GivenStatus(Update(5, 0, ""));
    GivenLanguage(std::string(32, 'x'));
    Json();
    EXPECT_EQ(TranscriptText(kGetMessages), kGetMessages + "(xxxxxxxxxxx)\n");
}

}  // namespace
