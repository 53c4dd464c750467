// Session check of a request.
#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "bindings/recording/recording.h"
#include "service/request_loop.h"
#include "tests/support/fake_fcgi.h"
#include "tests/support/transcript.h"

using recording::Failure;
using recording::Given;
using recording::Lines;
using recording::Log;

namespace {

const std::string kSignature = " - int GetLoginStatus(CgiHelper*, FCGX_Request&)";

class LoginStatusTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        fake_fcgi::Reset();
        helper.reset(CgiHelper::GetInstance());
        recording::Reset();
    }

    int LoginStatus(fake_fcgi::Environment environment, const std::string& body = "") {
        fake_fcgi::Queue(std::move(environment), body);
        FCGX_Request request{};
        FCGX_InitRequest(&request, 0, 0);
        FCGX_Accept_r(&request);
        // The transcript begins with the session check. The scripted answers are kept.
        const std::size_t before = recording::Transcript().size();
        const int status = GetLoginStatus(helper.get(), request);
        const auto& lines = recording::Transcript();
        transcript = {lines.begin() + static_cast<std::ptrdiff_t>(before), lines.end()};
        return status;
    }

    static void GivenSession() {
        Given("AuthSession::Init").Returns(0);
        Given("AuthSession::LoggedOn").Returns(0).Writes(true);
    }

    std::unique_ptr<CgiHelper> helper;
    std::vector<std::string> transcript;
};

TEST_F(LoginStatusTest, LoggedOnSessionGivesOne) {
    GivenSession();
    EXPECT_EQ(LoginStatus({"REQUEST_METHOD=GET", "REMOTE_ADDR=192.168.1.5",
                           "HTTP_COOKIE=torusess=abc123", "HTTP_USER_AGENT=Browser/1"}),
              1);
    EXPECT_EQ(Lines(transcript),
              Lines({Log(7, kSignature + " - BEGIN"), "CgiHelper::GetIp()",
                     "GetIPAddressFamily(192.168.1.5)", "CgiHelper::GetCookie(torusess, \"\")",
                     Log(7, kSignature + " - sessionId abc123"),
                     "AuthSession::Init(abc123, family 2 address c0a80105000000000000000000000000, "
                     "Browser/1, 2)",
                     "AuthSession::LoggedOn()", Log(7, kSignature + " - kestal admin is logged in"),
                     Log(7, kSignature + " - END by returning [1]")}));
}

TEST_F(LoginStatusTest, RejectedSessionIsNotAskedFurther) {
    Given("AuthSession::Init").Returns(1);
    EXPECT_EQ(LoginStatus({"REMOTE_ADDR=192.168.1.5", "HTTP_COOKIE=torusess=abc123"}), 0);
    EXPECT_EQ(recording::CallCount("AuthSession::LoggedOn"), 0U);
    EXPECT_EQ(transcript.at(transcript.size() - 2),
              Log(7, kSignature + " - kestal admin not logged in"));
    EXPECT_EQ(transcript.back(), Log(7, kSignature + " - END by returning [0]"));
}

TEST_F(LoginStatusTest, SessionThatIsNotLoggedOnGivesZero) {
    Given("AuthSession::Init").Returns(0);
    Given("AuthSession::LoggedOn").Returns(0).Writes(false);
    EXPECT_EQ(LoginStatus({"REMOTE_ADDR=192.168.1.5", "HTTP_COOKIE=torusess=abc123"}), 0);
}

TEST_F(LoginStatusTest, SessionWhoseStateCannotBeReadCountsByWhatTheCallWrote) {
    Given("AuthSession::Init").Returns(0);
    Given("AuthSession::LoggedOn").Returns(4);
    Given("AuthSession::LoggedOn").Returns(4).Writes(true);
    EXPECT_EQ(LoginStatus({"REMOTE_ADDR=127.0.0.1", "HTTP_COOKIE=torusess=x"}), 0);
    EXPECT_EQ(LoginStatus({"REMOTE_ADDR=127.0.0.1", "HTTP_COOKIE=torusess=x"}), 1);
}

TEST_F(LoginStatusTest, MissingCookieAsksWithAnEmptyIdentifier) {
    EXPECT_EQ(LoginStatus({"REMOTE_ADDR=192.168.1.5"}), 0);
    EXPECT_EQ(recording::TranscriptText("AuthSession::Init"),
              Lines({"AuthSession::Init(, family 2 address c0a80105000000000000000000000000, , "
                     "2)"}));
}

TEST_F(LoginStatusTest, AddressWithoutFamilyIsLoggedAndNotLoggedIn) {
    for (const std::string ip : {"", "localhost", "999.1.1.1", "::ffff:1.2.3.4.5"}) {
        recording::Reset();
        fake_fcgi::Reset();
        GivenSession();
        EXPECT_EQ(LoginStatus({"REMOTE_ADDR=" + ip, "HTTP_COOKIE=torusess=abc"}), 0);
        EXPECT_EQ(Lines(transcript),
                  Steps({Log(7, kSignature + " - BEGIN"), "CgiHelper::GetIp()",
                         "GetIPAddressFamily(" + ip + ")",
                         Failure(kSignature + " Kestal.cgi: Unable to determine the family of ip(" +
                                 ip + ")"),
                         Log(7, kSignature + " - kestal admin not logged in"),
                         Log(7, kSignature + " - END by returning [0]")}));
    }
}

TEST_F(LoginStatusTest, Ipv6AddressFillsSixteenBytes) {
    GivenSession();
    EXPECT_EQ(LoginStatus({"REMOTE_ADDR=::ffff:192.168.1.5", "HTTP_COOKIE=torusess=x"}), 1);
    EXPECT_EQ(recording::TranscriptText("AuthSession::Init"),
              Lines({"AuthSession::Init(x, family 10 address 00000000000000000000ffffc0a80105, , "
                     "2)"}));
}

TEST_F(LoginStatusTest, FirstOfSeveralCookiesOfOneNameCounts) {
    GivenSession();
    LoginStatus({"REMOTE_ADDR=127.0.0.1", "HTTP_COOKIE=other=1; torusess=first; torusess=second"});
    EXPECT_NE(recording::TranscriptText("AuthSession::Init").find("Init(first,"),
              std::string::npos);
}

TEST_F(LoginStatusTest, CookieOf64KibIsPassedWhole) {
    GivenSession();
    const std::string cookie(65536, 'c');
    EXPECT_EQ(LoginStatus({"REMOTE_ADDR=127.0.0.1", "HTTP_COOKIE=torusess=" + cookie}), 1);
    EXPECT_NE(recording::TranscriptText("AuthSession::Init").find("Init(" + cookie + ","),
              std::string::npos);
}

TEST_F(LoginStatusTest, BodyShorterThanAnnouncedIsLoggedAndNotLoggedIn) {
    GivenSession();
    EXPECT_EQ(LoginStatus({"REQUEST_METHOD=POST", "CONTENT_LENGTH=100",
                           "CONTENT_TYPE=application/x-www-form-urlencoded",
                           "REMOTE_ADDR=127.0.0.1", "HTTP_COOKIE=torusess=x"},
                          "a=b"),
              0);
    EXPECT_NE(recording::TranscriptText("log 3").find(kSignature + " - session check failed: "),
              std::string::npos);
    EXPECT_EQ(transcript.back(), Log(7, kSignature + " - END by returning [0]"));
}

TEST_F(LoginStatusTest, WholeBodyIsReadAndChangesNothing) {
    GivenSession();
    EXPECT_EQ(LoginStatus({"REQUEST_METHOD=POST", "CONTENT_LENGTH=3",
                           "CONTENT_TYPE=application/x-www-form-urlencoded",
                           "REMOTE_ADDR=127.0.0.1", "HTTP_COOKIE=torusess=x"},
                          "a=b"),
              1);
}

TEST_F(LoginStatusTest, AbsurdContentLengthIsLoggedBeforeMemoryIsAllocated) {
    for (const std::string length :
         {"1048577", "99999999999999999999", "-1", "-18446744073709551615", "12x", "ten", " 5"}) {
        recording::Reset();
        fake_fcgi::Reset();
        GivenSession();
        EXPECT_EQ(LoginStatus({"REQUEST_METHOD=POST", "CONTENT_LENGTH=" + length,
                               "REMOTE_ADDR=127.0.0.1", "HTTP_COOKIE=torusess=x"}),
                  0);
        EXPECT_EQ(Lines(transcript),
                  Steps({Log(7, kSignature + " - BEGIN"),
                         Failure(kSignature + " - unacceptable length of request body: " + length),
                         Log(7, kSignature + " - kestal admin not logged in"),
                         Log(7, kSignature + " - END by returning [0]")}));
    }
}

TEST_F(LoginStatusTest, ExceptionsOfThePlatformDoNotLeaveTheCheck) {
    for (const bool standard : {true, false}) {
        recording::Reset();
        fake_fcgi::Reset();
        Given("AuthSession::Init").Does([standard] {
            if (standard) {
                throw std::bad_alloc();
            }
            throw 5;
        });
        EXPECT_EQ(LoginStatus({"REMOTE_ADDR=127.0.0.1", "HTTP_COOKIE=torusess=x"}), 0);
        for (const std::string log : {"log 3", "syslog 138"}) {
            EXPECT_NE(recording::TranscriptText(log).find(" - session check failed"),
                      std::string::npos);
        }
    }
}

}  // namespace
