// Start-up and normal end of the process: main() is linked under another name.
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "bindings/recording/recording.h"
#include "service/process.h"
#include "service/signal_handlers.h"
#include "tests/support/fake_fcgi.h"

int KestalMain(int argc, char** argv);

using recording::Lines;
using recording::Log;

namespace {

int RunMainOnly(std::string path) {
    std::array<char*, 2> arguments = {path.data(), nullptr};
    return KestalMain(1, arguments.data());
}

/// Runs main() and then removes the deadline, because the test process continues.
int RunMain(const std::string& path) {
    const int result = RunMainOnly(path);
    gOperationDeadline.End();
    return result;
}

class MainTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        fake_fcgi::Reset();
        (void)std::signal(SIGTERM, SIG_DFL);
    }

    /// Sets a short limit and lets @p call hang for ever.
    static void HangIn(const std::string& call) {
        recording::Echo();
        setenv("KESTAL_TIMEOUT", "1", 1);
        recording::Given(call).Does([] {
            for (;;) {
                pause();
            }
        });
    }

    static std::string StartLine() {
        return " - KESTAL_CGI Process Start with pthread ID:" + std::to_string(pthread_self()) +
               ", process ID:" + std::to_string(getpid()) + ".";
    }
};

TEST_F(MainTest, ProcessStartsAndEndsInItsFixedOrder) {
    EXPECT_EQ(RunMain("/usr/bin/kestal.cgi"), 0);
    const std::string initialize = " - int KeepAliveHandler::Initialize()";
    const std::string run = " - int KeepAliveHandler::Run()";
    const std::string loop = " - int fastcgi_main_loop()";
    const std::string component = " - SystemServiceComponent::SystemServiceComponent()";
    const std::string shutdown = " - int KeepAliveHandler::Shutdown()";
    EXPECT_EQ(recording::TranscriptText(),
              Lines({"toru_dbg_start(kestal.cgi)",
                     "syslog 138 [KESTAL_CGI]:[NOTICE]" + StartLine(),
                     Log(5, StartLine()),
                     "LanguageSupport::SetTextDomainProperties(webui, UTF-8, /usr/share/locale)",
                     Log(7, initialize + " - BEGIN"),
                     Log(7, initialize + " - Parent Process Id = " + std::to_string(getppid()) +
                                " registering kestal.cgi with watchdog"),
                     "watchdog_application_register(kestal.cgi, 1)",
                     Log(7, initialize + " - END returning 0"),
                     Log(7, run + " - BEGIN"),
                     "MaintenanceThread::Initialize()",
                     "sys_getWatchdogInterval()",
                     "MaintenanceThread::Run(interval 60)",
                     Log(7, run + " - END returning 0"),
                     Log(7, loop + " BEGIN"),
                     "FCGX_Init()",
                     "FCGX_InitRequest(0, 0)",
                     Log(7, component + " - BEGIN"),
                     Log(7, component + " - END"),
                     "CgiHelper::GetInstance()",
                     "CgiHelper::SetHeader(Content-Type, application/json)",
                     "FCGX_Accept_r()",
                     "~CgiHelper()",
                     Log(7, loop + " END returning 0"),
                     Log(7, shutdown + " - BEGIN"),
                     Log(7, shutdown + " - Unregistering kestal.cgi with watchdog"),
                     "watchdog_application_register(kestal.cgi, 0)",
                     "MaintenanceThread::Shutdown()",
                     Log(7, shutdown + " - END returning 0"),
                     "syslog 138 [KESTAL_CGI]:[NOTICE] - KESTAL_CGI Server Terminating.",
                     Log(5, " - KESTAL_CGI Server Terminating."),
                     "toru_dbg_stop()"}));
}

TEST_F(MainTest, ProgramNameIsTheBaseName) {
    RunMain("/a/b/other.cgi");
    EXPECT_EQ(recording::TranscriptText("watchdog"),
              Lines({"watchdog_application_register(other.cgi, 1)",
                     "watchdog_application_register(other.cgi, 0)"}));
}

TEST_F(MainTest, LoopResultIsTheExitStatus) {
    fake_fcgi::gInitStatus = 17;
    EXPECT_EQ(RunMain("kestal.cgi"), 17);
    EXPECT_EQ(recording::CallCount("toru_dbg_stop"), 1U);
}

TEST_F(MainTest, FailingStartUpStepsDoNotStopTheProcess) {
    recording::Given("toru_dbg_start").Returns(1);
    recording::Given("watchdog_application_register").Returns(1);
    recording::Given("MaintenanceThread::Initialize").Returns(1);
    recording::Given("MaintenanceThread::Run").Returns(1);
    EXPECT_EQ(RunMain("kestal.cgi"), 0);
    EXPECT_EQ(recording::CallCount("FCGX_Accept_r"), 1U);
}

TEST_F(MainTest, FatalHandlersAreInstalledBeforeTheWatchdogAndTheTerminationHandlerAfterIt) {
    std::array<bool, 4> installed{};
    const auto custom = [](int signo) {
        struct sigaction action = {};
        sigaction(signo, nullptr, &action);
        return action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN;
    };
    recording::Given("MaintenanceThread::Run").Does([&] {
        installed = {custom(SIGILL), custom(SIGABRT), custom(SIGSEGV), custom(SIGTERM)};
    });
    RunMain("kestal.cgi");
    EXPECT_TRUE(installed[0]);
    EXPECT_TRUE(installed[1]);
    EXPECT_TRUE(installed[2]);
    EXPECT_FALSE(installed[3]);
    EXPECT_TRUE(custom(SIGTERM));
}

TEST_F(MainTest, StuckStartOrEndOfTheProcessEndsIt) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const std::vector<std::pair<std::string, std::string>> steps = {
        {"MaintenanceThread::Run", "start of the process"},
        {"CgiHelper::GetInstance", "response writer"},
        {"~CgiHelper", "end of the process"},
        {"MaintenanceThread::Shutdown", "end of the process"}};
    for (const auto& [call, step] : steps) {
        EXPECT_EXIT(
            {
                HangIn(call);
                RunMain("kestal.cgi");
            },
            testing::ExitedWithCode(kStuckExitStatus),
            "is stuck: " + step + " has not ended within 3000 ms, backtrace:\n");
    }
}

TEST_F(MainTest, StuckExitHandlerOfALibraryEndsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            (void)std::atexit([] { recording::Play("exit handler", "", {}, 0); });
            HangIn("exit handler");
            std::exit(RunMainOnly("kestal.cgi"));
        },
        testing::ExitedWithCode(kStuckExitStatus),
        "toru_dbg_stop..\nexit handler..\n(.*\n)*.*"
        "is stuck: end of the process has not ended within 3000 ms, backtrace:\n");
}

TEST_F(MainTest, KeepAliveThreadIsStartedWithTheMainThreadsSignalsBlocked) {
    bool heldBack = false;
    recording::Given("MaintenanceThread::Run").Does([&] {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        heldBack = sigismember(&mask, SIGTERM) == 1 && sigismember(&mask, SIGUSR1) == 1 &&
                   sigismember(&mask, SIGSEGV) == 0;
    });
    RunMain("kestal.cgi");
    EXPECT_TRUE(heldBack);
}

TEST_F(MainTest, TerminationDuringStartUpUnregistersAfterRegistering) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            recording::Echo();
            recording::Given("toru_dbg_start").Does([] { (void)raise(SIGTERM); });
            RunMain("kestal.cgi");
        },
        testing::ExitedWithCode(0),
        "watchdog_application_register.kestal.cgi, 1.\n(.*\n)*"
        "watchdog_application_register.kestal.cgi, 0.\n(.*\n)*"
        "log 7 .KESTAL_CGI.:.DEBUG. - KESTAL_CGI Server Terminating\n$");
}

}  // namespace
