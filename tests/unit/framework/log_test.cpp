#include "framework/log.h"

#include <gtest/gtest.h>

#include "bindings/recording/recording.h"

namespace {

class LogTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }
};

TEST_F(LogTest, LineCarriesModuleTagLevelNameAndSignature) {
    KESTAL_SIGNATURE("void Component::Operation(const string&)");
    KESTAL_DEBUG("value %d", 5);
    EXPECT_EQ(recording::TranscriptText(),
              recording::Lines({"log 7 [KESTAL_CGI]:[DEBUG] - void "
                                "Component::Operation(const string&) - value 5"}));
}

TEST_F(LogTest, PlainLineHasNoSignature) {
    KESTAL_LOG_PLAIN(TORU_DBG_INFO, "name - [%s]", "x");
    EXPECT_EQ(recording::TranscriptText(),
              recording::Lines({"log 6 [KESTAL_CGI]:[INFO] - name - [x]"}));
}

TEST_F(LogTest, FailureGoesToTheSystemLogFirstAndThenToTheDebugLogAtLevelThree) {
    KESTAL_SIGNATURE("int F()");
    KESTAL_FAILURE("call failed, returned error code [%d].", 7);
    EXPECT_EQ(
        recording::TranscriptText(),
        recording::Lines(
            {"syslog 138 [KESTAL_CGI]:[ERROR] - int F() - call failed, returned error code [7].",
             "log 3 [KESTAL_CGI]:[ERROR] - int F() - call failed, returned error code [7]."}));
}

TEST_F(LogTest, UnseparatedLineAddsNothingAfterTheSignature) {
    KESTAL_SIGNATURE("int F()");
    KESTAL_DEBUG_UNSEPARATED("- BEGIN");
    KESTAL_LOG_UNSEPARATED(TORU_DBG_INFO, " count%d", 2);
    KESTAL_FAILURE_UNSEPARATED(": failed");
    EXPECT_EQ(recording::TranscriptText(),
              recording::Lines({"log 7 [KESTAL_CGI]:[DEBUG] - int F()- BEGIN",
                                "log 6 [KESTAL_CGI]:[INFO] - int F() count2",
                                "syslog 138 [KESTAL_CGI]:[ERROR] - int F(): failed",
                                "log 3 [KESTAL_CGI]:[ERROR] - int F(): failed"}));
}

TEST_F(LogTest, LineThatAlsoGoesToTheSystemLogKeepsItsOwnLevelThere) {
    KESTAL_SIGNATURE("int F()");
    KESTAL_SYSLOG(TORU_DBG_NOTICE, "done");
    EXPECT_EQ(recording::TranscriptText(),
              recording::Lines({"syslog 138 [KESTAL_CGI]:[NOTICE] - int F() - done",
                                "log 5 [KESTAL_CGI]:[NOTICE] - int F() - done"}));
}

TEST_F(LogTest, BeginAndEndLinesAreDebugLines) {
    KESTAL_SIGNATURE("int F()");
    KESTAL_BEGIN();
    KESTAL_END();
    KESTAL_END_RETURNING(1);
    EXPECT_EQ(recording::TranscriptText(),
              recording::Lines({"log 7 [KESTAL_CGI]:[DEBUG] - int F() - BEGIN",
                                "log 7 [KESTAL_CGI]:[DEBUG] - int F() - END",
                                "log 7 [KESTAL_CGI]:[DEBUG] - int F() - END returning 1"}));
}

}  // namespace
