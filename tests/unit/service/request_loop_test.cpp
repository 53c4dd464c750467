#include "service/request_loop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <iostream>
#include <new>
#include <sstream>
#include <utility>
#include <vector>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"
#include "service/process.h"
#include "tests/support/fake_fcgi.h"
#include "tests/support/records.h"
#include "tests/support/transcript.h"

using recording::Failure;
using recording::Given;
using recording::Lines;
using recording::Log;

namespace {

const std::string kLoop = " - int fastcgi_main_loop()";

fake_fcgi::Environment Get(const std::string& uri) {
    return {"REQUEST_METHOD=GET", "REQUEST_URI=" + uri, "REMOTE_ADDR=127.0.0.1"};
}

/// The transcript without the lines that begin with one of @p prefixes: they belong to the inside
/// of a step.
std::vector<std::string> Without(std::vector<std::string> prefixes) {
    std::vector<std::string> kept;
    for (const std::string& line : recording::Transcript()) {
        const bool drop = std::any_of(prefixes.begin(), prefixes.end(), [&](const auto& prefix) {
            return line.find(prefix) != std::string::npos;
        });
        if (!drop) {
            kept.push_back(line);
        }
    }
    return kept;
}

const std::vector<std::string> kInsideSteps = {
    "GetLoginStatus(",        "CgiHelper::GetIp",       "GetIPAddressFamily",
    "CgiHelper::GetCookie",   "AuthSession::",          "get_service_api(",
    "SystemServiceComponent", "InitializeSysinterface", "UninitializeSysinterface"};

class RequestLoopTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        fake_fcgi::Reset();
        gProgramName = "kestal.cgi";
        Given("sys_getWebUICarrierEnabled").Returns(0).Writes(1);
        Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS).Writes(Language("en_US"));
        Given("sys_cellularDataConnect").Returns(0);
        Given("sys_cellularDataDisconnect").Returns(0);
    }
};

TEST_F(RequestLoopTest, NormalEndServesNothingAndReturnsZero) {
    EXPECT_EQ(fastcgi_main_loop(), 0);
    const std::string constructor = " - SystemServiceComponent::SystemServiceComponent()";
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines({Log(7, kLoop + " BEGIN"), "FCGX_Init()", "FCGX_InitRequest(0, 0)",
               Log(7, constructor + " - BEGIN"), Log(7, constructor + " - END"),
               "CgiHelper::GetInstance()", "CgiHelper::SetHeader(Content-Type, application/json)",
               "FCGX_Accept_r()", "~CgiHelper()", Log(7, kLoop + " END returning 0")}));
}

TEST_F(RequestLoopTest, FailingLibraryStartIsLoggedAtLevelThreeAndReturned) {
    fake_fcgi::gInitStatus = 13;
    EXPECT_EQ(fastcgi_main_loop(), 13);
    EXPECT_EQ(recording::TranscriptText(),
              Steps({Log(7, kLoop + " BEGIN"), "FCGX_Init()",
                     Failure(kLoop + " - Failed FCGX_Init - status = 13"),
                     Log(7, kLoop + " END returning 13")}));
}

TEST_F(RequestLoopTest, FailingRequestRecordIsLoggedAtLevelFiveAndReturned) {
    fake_fcgi::gInitRequestStatus = -7;
    EXPECT_EQ(fastcgi_main_loop(), -7);
    EXPECT_EQ(recording::TranscriptText(),
              Lines({Log(7, kLoop + " BEGIN"), "FCGX_Init()", "FCGX_InitRequest(0, 0)",
                     "syslog 138 [KESTAL_CGI]:[NOTICE]" + kLoop +
                         " - Failed FCGX_InitRequest - status = -7",
                     Log(5, kLoop + " - Failed FCGX_InitRequest - status = -7"),
                     Log(7, kLoop + " END returning -7")}));
}

TEST_F(RequestLoopTest, WithoutAResponseWriterNoRequestIsAccepted) {
    Given("CgiHelper::GetInstance").Returns(1);
    fake_fcgi::Queue(Get("/srv/status"));
    EXPECT_EQ(fastcgi_main_loop(), 0);
    const std::string constructor = " - SystemServiceComponent::SystemServiceComponent()";
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines({Log(7, kLoop + " BEGIN"), "FCGX_Init()", "FCGX_InitRequest(0, 0)",
               Log(7, constructor + " - BEGIN"), Log(7, constructor + " - END"),
               "CgiHelper::GetInstance()",
               "syslog 138 [KESTAL_CGI]:[NOTICE]" + kLoop + " - Failed to create CgiHelper object",
               Log(5, kLoop + " - Failed to create CgiHelper object"),
               Log(7, kLoop + " END returning 0")}));
}

TEST_F(RequestLoopTest, OneRequestTakesItsStepsInOrder) {
    fake_fcgi::Queue(Get("/srv/connect"));
    fastcgi_main_loop();
    const std::string initialize = " - bool InitializeSysinterface()";
    const std::string uninitialize = " - bool UninitializeSysinterface()";
    std::vector<std::string> inside = kInsideSteps;
    inside.resize(inside.size() - 2);
    EXPECT_EQ(Lines(Without(inside)), Lines({Log(7, kLoop + " BEGIN"),
                                             "FCGX_Init()",
                                             "FCGX_InitRequest(0, 0)",
                                             "CgiHelper::GetInstance()",
                                             "CgiHelper::SetHeader(Content-Type, application/json)",
                                             "FCGX_Accept_r()",
                                             Log(7, kLoop + " - Starting KESTAL_CGI request"),
                                             Log(7, initialize + " - BEGIN"),
                                             "sys_sdkInitialize()",
                                             Log(7, initialize + " - END returning 1"),
                                             "sys_getWebUICarrierEnabled()",
                                             "webui_get_i18n_settings()",
                                             Log(7, kLoop + " - current language is en_US"),
                                             "sys_cellularDataConnect(0)",
                                             "CgiHelper::SendResponse(200, {\"loginStatus\":0})",
                                             Log(7, uninitialize + " - BEGIN"),
                                             "sys_sdkShutdown()",
                                             Log(7, uninitialize + " - END returning 1"),
                                             Log(7, kLoop + " - End KESTAL_CGI request"),
                                             "FCGX_Finish_r()",
                                             "FCGX_Accept_r()",
                                             "~CgiHelper()",
                                             Log(7, kLoop + " END returning 0")}));
}

TEST_F(RequestLoopTest, LoginIsCheckedBeforeTheRequestStartsAndTheApiAfterTheLanguage) {
    fake_fcgi::Queue(Get("/srv/connect"));
    fastcgi_main_loop();
    const auto& lines = recording::Transcript();
    const auto position = [&](const std::string& text) {
        return std::find_if(
                   lines.begin(), lines.end(),
                   [&](const std::string& line) { return line.find(text) != std::string::npos; }) -
               lines.begin();
    };
    EXPECT_LT(position("END by returning [0]"), position("Starting KESTAL_CGI request"));
    EXPECT_LT(position("current language is"), position("get_service_api(FCGX_ParamArray) BEGIN"));
    EXPECT_LT(position("get_service_api(FCGX_ParamArray) END"),
              position("SystemServiceComponent::Dispatch"));
}

TEST_F(RequestLoopTest, AnswerGoesToTheRequestsOwnStreamAndStandardOutputIsRestored) {
    std::streambuf* const before = std::cout.rdbuf();
    fake_fcgi::Queue(Get("/srv/connect"));
    fake_fcgi::Queue(Get("/srv/nothing"));
    fastcgi_main_loop();
    EXPECT_EQ(fake_fcgi::Answer(0), R"({"loginStatus":0})");
    EXPECT_EQ(fake_fcgi::Answer(1), R"({"loginStatus":0})");
    EXPECT_EQ(std::cout.rdbuf(), before);
}

TEST_F(RequestLoopTest, DeviceTextThatIsNoUtf8LeavesTheAnswerValidAndIsLogged) {
    sys_cellular_service_stats_t service{};
    SetText(service.networkName, "Caf\xE9");
    Given("sys_getCellularServiceStats").Returns(0).Writes(service);
    for (const char* call :
         {"sys_getCellularDataConnectionStats", "sys_getRadioEnabled",
          "sys_getCellularServiceStatus", "sys_getCellularDataConnectionStatus"}) {
        Given(call).Returns(0);
    }
    fake_fcgi::Queue(Get("/srv/status"));
    fastcgi_main_loop();
    EXPECT_NE(fake_fcgi::Answer(0).find(R"("statusBarNetwork":"Caf)"
                                        "\xEF\xBF\xBD\""),
              std::string::npos)
        << fake_fcgi::Answer(0);
    const auto& lines = recording::Transcript();
    const std::vector<std::string> failure =
        Failure(kLoop + " - the device has text that is no UTF-8, answered as U+FFFD");
    EXPECT_NE(std::search(lines.begin(), lines.end(), failure.begin(), failure.end()), lines.end());
}

TEST_F(RequestLoopTest, LoggedInCallerSeesLoginStatusOne) {
    Given("AuthSession::Init").Returns(0);
    Given("AuthSession::LoggedOn").Returns(0).Writes(true);
    fake_fcgi::Queue(Get("/srv/connect"));
    fastcgi_main_loop();
    EXPECT_EQ(fake_fcgi::Answer(0), R"({"loginStatus":1})");
}

TEST_F(RequestLoopTest, DisabledWebUiIsAnsweredWith501AndTheSdkIsStillStartedAndStopped) {
    recording::Reset();
    Given("sys_getWebUICarrierEnabled").Returns(0).Writes(0);
    fake_fcgi::Queue(Get("/srv/connect"));
    fastcgi_main_loop();
    EXPECT_EQ(fake_fcgi::Answer(0), "WebUI feature disabled");
    EXPECT_EQ(recording::TranscriptText("CgiHelper::SendResponse"),
              Lines({"CgiHelper::SendResponse(501, WebUI feature disabled)"}));
    EXPECT_EQ(recording::TranscriptText("sys_"),
              Lines({"sys_sdkInitialize()", "sys_getWebUICarrierEnabled()", "sys_sdkShutdown()"}));
    EXPECT_EQ(recording::CallCount("webui_get_i18n_settings"), 0U);
    EXPECT_EQ(recording::CallCount("FCGX_Finish_r"), 1U);
}

TEST_F(RequestLoopTest, CarrierSwitchThatCannotBeReadCountsAsOffUnlessTheCallWroteIt) {
    recording::Reset();
    Given("sys_getWebUICarrierEnabled").Returns(3);
    Given("sys_getWebUICarrierEnabled").Returns(3).Writes(1);
    Given("sys_cellularDataConnect").Returns(0);
    fake_fcgi::Queue(Get("/srv/connect"));
    fake_fcgi::Queue(Get("/srv/connect"));
    fastcgi_main_loop();
    EXPECT_EQ(fake_fcgi::Answer(0), "WebUI feature disabled");
    EXPECT_EQ(fake_fcgi::Answer(1), R"({"loginStatus":0})");
}

TEST_F(RequestLoopTest, FailedSdkStartIsLoggedAndTheRequestStillAnswered) {
    Given("sys_sdkInitialize").Returns(44);
    fake_fcgi::Queue(Get("/srv/connect"));
    fastcgi_main_loop();
    EXPECT_EQ(fake_fcgi::Answer(0), R"({"loginStatus":0})");
    const std::string initialize = " - bool InitializeSysinterface()";
    EXPECT_EQ(recording::TranscriptText("log 3"),
              Lines({Log(3, initialize + " - system interface api failed returning [44]."),
                     Log(3, kLoop + " - sysinterface initialization failed by returning [0]")}));
    EXPECT_EQ(recording::TranscriptText("syslog"),
              Lines({"syslog 138 [KESTAL_CGI]:[ERROR]" + initialize +
                         " - system interface api failed returning [44].",
                     "syslog 138 [KESTAL_CGI]:[ERROR]" + kLoop +
                         " - sysinterface initialization failed by returning [0]"}));
    EXPECT_NE(recording::TranscriptText("log 7").find(initialize + " - END returning 0"),
              std::string::npos);
    EXPECT_EQ(recording::CallCount("sys_sdkShutdown"), 1U);
}

TEST_F(RequestLoopTest, FailedLanguageQueryKeepsEnUs) {
    recording::Reset();
    Given("sys_getWebUICarrierEnabled").Returns(0).Writes(1);
    Given("webui_get_i18n_settings").Returns(99).Writes(Language("de_DE"));
    fake_fcgi::Queue(Get("/srv/nothing"));
    fastcgi_main_loop();
    const std::string failure =
        " - webui_get_i18n_settings API failed returning [99]. Try webui_cli "
        "get_internationalization_settings on command line";
    EXPECT_EQ(recording::TranscriptText("syslog") + recording::TranscriptText("log 3"),
              Steps({Failure(kLoop + failure)}));
    EXPECT_NE(recording::TranscriptText("log 7").find(" - current language is en_US\n"),
              std::string::npos);
}

TEST_F(RequestLoopTest, LanguageCodeThatFillsItsRecordIsReadToTheEndOfTheRecord) {
    const std::string code = "language_code_of_exactly_32bytes";
    ASSERT_EQ(code.size(), 32U);
    recording::Reset();
    Given("sys_getWebUICarrierEnabled").Returns(0).Writes(1);
    Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS).Writes(Language(code));
    fake_fcgi::Queue(Get("/srv/nothing"));
    fastcgi_main_loop();
    EXPECT_NE(recording::TranscriptText("log 7").find(" - current language is " + code + "\n"),
              std::string::npos);
}

TEST_F(RequestLoopTest, LanguageAppliesToMessagesAndStaysUntilTheNextRequest) {
    recording::Reset();
    Given("sys_getWebUICarrierEnabled").Returns(0).Writes(1);
    Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS).Writes(Language("C.UTF-8"));
    Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS).Writes(Language("C"));
    fake_fcgi::Queue(Get("/srv/nothing"));
    fastcgi_main_loop();
    EXPECT_STREQ(std::setlocale(LC_MESSAGES, nullptr), "C.UTF-8");
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
    fake_fcgi::Queue(Get("/srv/nothing"));
    fastcgi_main_loop();
    EXPECT_STREQ(std::setlocale(LC_MESSAGES, nullptr), "C");
}

TEST_F(RequestLoopTest, EachRequestAsksForTheLanguageAnew) {
    recording::Reset();
    Given("sys_getWebUICarrierEnabled").Returns(0).Writes(1);
    Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS).Writes(Language("de_DE"));
    Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS);
    Given("webui_get_i18n_settings").Returns(99);
    for (int i = 0; i < 3; ++i) {
        fake_fcgi::Queue(Get("/srv/nothing"));
    }
    fastcgi_main_loop();
    EXPECT_EQ(recording::TranscriptText(Log(7, kLoop + " - current language")),
              Lines({Log(7, kLoop + " - current language is de_DE"),
                     Log(7, kLoop + " - current language is "),
                     Log(7, kLoop + " - current language is en_US")}));
}

TEST_F(RequestLoopTest, ComponentResultDoesNotChangeTheStatus) {
    recording::Reset();
    Given("sys_getWebUICarrierEnabled").Returns(0).Writes(1);
    Given("sys_cellularDataConnect").Returns(8);
    fake_fcgi::Queue(Get("/srv/connect"));
    fastcgi_main_loop();
    EXPECT_EQ(recording::TranscriptText("CgiHelper::SendResponse"),
              Lines({"CgiHelper::SendResponse(200, {\"loginStatus\":0})"}));
}

TEST_F(RequestLoopTest, ExceptionsInARequestDoNotEndTheLoop) {
    recording::Reset();
    Given("sys_getWebUICarrierEnabled").Returns(0).Writes(1);
    Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS).Writes(Language("en_US"));
    Given("sys_cellularDataConnect").Does([] { throw std::bad_alloc(); });
    Given("sys_cellularDataConnect").Does([] { throw 5; });
    Given("sys_cellularDataConnect").Returns(0);
    for (int i = 0; i < 3; ++i) {
        fake_fcgi::Queue(Get("/srv/connect"));
    }
    EXPECT_EQ(fastcgi_main_loop(), 0);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(fake_fcgi::Answer(i), R"({"loginStatus":0})");
    }
    for (const std::string log : {"syslog 138 ", "log 3 "}) {
        EXPECT_EQ(recording::TranscriptText(log),
                  Lines({log + "[KESTAL_CGI]:[ERROR]" + kLoop +
                             " - request (connect) failed: std::bad_alloc",
                         log + "[KESTAL_CGI]:[ERROR]" + kLoop + " - request (connect) failed"}));
    }
    EXPECT_EQ(recording::CallCount("sys_sdkShutdown"), 3U);
    EXPECT_EQ(recording::CallCount("FCGX_Finish_r"), 3U);
}

TEST_F(RequestLoopTest, StepThatThrowsIsNamedAndTheOthersStillRun) {
    const std::vector<std::pair<std::string, std::string>> steps = {
        {"sys_sdkInitialize", "start of the SDK"}, {"sys_getWebUICarrierEnabled", "carrier switch"},
        {"webui_get_i18n_settings", "language"},   {"sys_cellularDataConnect", "connect"},
        {"CgiHelper::SendResponse", "response"},   {"sys_sdkShutdown", "end of the SDK"},
    };
    for (const auto& [step, name] : steps) {
        recording::Reset();
        fake_fcgi::Reset();
        SetUp();
        recording::Reset();
        if (step != "sys_getWebUICarrierEnabled") {
            Given("sys_getWebUICarrierEnabled").Returns(0).Writes(1);
        }
        Given(step).Does([] { throw std::bad_alloc(); });
        fake_fcgi::Queue(Get("/srv/connect"));
        EXPECT_EQ(fastcgi_main_loop(), 0) << step;
        EXPECT_EQ(recording::CallCount("CgiHelper::SendResponse"), 1U) << step;
        EXPECT_EQ(recording::CallCount("sys_sdkShutdown"), 1U) << step;
        EXPECT_EQ(recording::CallCount("FCGX_Finish_r"), 1U) << step;
        EXPECT_NE(recording::TranscriptText("log 3").find(kLoop + " - request (" + name +
                                                          ") failed: std::bad_alloc"),
                  std::string::npos)
            << step;
    }
}

TEST_F(RequestLoopTest, FailingResponseWriterEndsOnlyItsRequest) {
    Given("CgiHelper::SendResponse").Does([] { throw std::ios_base::failure("gone"); });
    Given("CgiHelper::SendResponse").Returns(0);
    fake_fcgi::Queue(Get("/srv/connect"));
    fake_fcgi::Queue(Get("/srv/connect"));
    EXPECT_EQ(fastcgi_main_loop(), 0);
    EXPECT_EQ(fake_fcgi::Answer(1), R"({"loginStatus":0})");
    EXPECT_EQ(recording::CallCount("FCGX_Finish_r"), 2U);
}

TEST_F(RequestLoopTest, ClientThatWentAwayLeavesStandardOutputUsable) {
    Given("CgiHelper::SendResponse").Does([] { std::cout.setstate(std::ios::badbit); });
    Given("CgiHelper::SendResponse").Returns(0);
    fake_fcgi::Queue(Get("/srv/connect"));
    fake_fcgi::Queue(Get("/srv/connect"));
    fastcgi_main_loop();
    EXPECT_EQ(fake_fcgi::Answer(0), "");
    EXPECT_EQ(fake_fcgi::Answer(1), R"({"loginStatus":0})");
}

}  // namespace
