#include "service/keepalive/keep_alive_handler.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "bindings/recording/recording.h"
#include "service/main_thread_signals.h"
#include "service/process.h"
#include "tests/support/vtable.h"

using recording::Given;
using recording::Lines;
using recording::Log;

namespace {

bool gParentIsGone = false;

}  // namespace

// Replaces the function of the C library.
extern "C" int kill(pid_t process, int signo) noexcept {
    return gParentIsGone ? -1 : static_cast<int>(syscall(SYS_kill, process, signo));
}

namespace {

class KeepAliveHandlerTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        gProgramName = "kestal.cgi";
    }
};

TEST_F(KeepAliveHandlerTest, ThreadIsMadeWithAnIntervalOfSixtyAndNothingElseIsDone) {
    const KeepAliveHandler handler;
    EXPECT_EQ(recording::TranscriptText(),
              Lines({"MaintenanceThread::MaintenanceThread(callback, 60, 0)"}));
}

TEST_F(KeepAliveHandlerTest, InitializeRegistersUnderTheProgramName) {
    KeepAliveHandler handler;
    recording::Reset();
    EXPECT_EQ(handler.Initialize(), 0);
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines({Log(7, " - int KeepAliveHandler::Initialize() - BEGIN"),
               Log(7, " - int KeepAliveHandler::Initialize() - Parent Process Id = " +
                          std::to_string(getppid()) + " registering kestal.cgi with watchdog"),
               "watchdog_application_register(kestal.cgi, 1)",
               Log(7, " - int KeepAliveHandler::Initialize() - END returning 0")}));
}

TEST_F(KeepAliveHandlerTest, RunStartsTheThreadAtThePlatformsInterval) {
    KeepAliveHandler handler;
    recording::Reset();
    Given("sys_getWatchdogInterval").Returns(0).Writes(15);
    EXPECT_EQ(handler.Run(), 0);
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines({Log(7, " - int KeepAliveHandler::Run() - BEGIN"), "MaintenanceThread::Initialize()",
               "sys_getWatchdogInterval()", "MaintenanceThread::Run(interval 15)",
               Log(7, " - int KeepAliveHandler::Run() - END returning 0")}));
}

TEST_F(KeepAliveHandlerTest, IntervalIsSixtyWhenThePlatformReportsNone) {
    KeepAliveHandler handler;
    Given("sys_getWatchdogInterval").Returns(5);
    handler.Run();
    EXPECT_EQ(recording::CallCount("MaintenanceThread::Run"), 1U);
    EXPECT_EQ(recording::TranscriptText("MaintenanceThread::Run"),
              Lines({"MaintenanceThread::Run(interval 60)"}));
}

TEST_F(KeepAliveHandlerTest, IntervalThatAFailingCallWroteCounts) {
    KeepAliveHandler handler;
    Given("sys_getWatchdogInterval").Returns(5).Writes(7);
    handler.Run();
    EXPECT_EQ(recording::TranscriptText("MaintenanceThread::Run"),
              Lines({"MaintenanceThread::Run(interval 7)"}));
}

TEST_F(KeepAliveHandlerTest, NotifySendsAKeepAliveWhileTheParentLives) {
    KeepAliveHandler handler;
    handler.Initialize();
    recording::Reset();
    EXPECT_FALSE(handler.OnThreadNotify(0));
    const std::string signature = " - virtual bool KeepAliveHandler::OnThreadNotify(unsigned int)";
    EXPECT_EQ(recording::TranscriptText(),
              Lines({Log(7, signature + " - BEGIN"),
                     Log(6, signature + " - Watchdog timer event. lighttpd alive ( and kicking ). "
                                        "Sending keep alive message"),
                     "watchdog_application_send_keep_alive(kestal.cgi)",
                     Log(7, signature + " - END returning 0")}));
}

TEST_F(KeepAliveHandlerTest, NotifySendsNothingAfterTheParentHasChanged) {
    // A handler that was never initialised has not stored its parent, so the current parent counts
    // as another one.
    KeepAliveHandler handler;
    recording::Reset();
    EXPECT_FALSE(handler.OnThreadNotify(0));
    const std::string signature = " - virtual bool KeepAliveHandler::OnThreadNotify(unsigned int)";
    EXPECT_EQ(recording::TranscriptText(),
              Lines({Log(7, signature + " - BEGIN"), Log(7, signature + " - END returning 0")}));
}

TEST_F(KeepAliveHandlerTest, NotifySendsNothingWhenTheParentCannotBeSignalled) {
    KeepAliveHandler handler;
    handler.Initialize();
    recording::Reset();
    gParentIsGone = true;
    handler.OnThreadNotify(0);
    gParentIsGone = false;
    EXPECT_EQ(recording::CallCount("watchdog_application_send_keep_alive"), 0U);
}

TEST_F(KeepAliveHandlerTest, NotifySendsNoKeepAliveWhileAnOperationIsStuck) {
    using std::chrono::milliseconds;
    KeepAliveHandler handler;
    handler.Initialize();
    // The signal of the deadline is blocked, as a library may block it.
    const sigset_t blocked = WaitingSignalMask();
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    gOperationDeadline.Watch(milliseconds(1));
    gOperationDeadline.Begin("request (status)");
    while (!gOperationDeadline.IsPassed()) {
        std::this_thread::yield();
    }
    // The limit is long, so that this thread does not find it exceeded and end the process.
    gOperationDeadline.Watch(std::chrono::hours(1));
    recording::Reset();
    handler.OnThreadNotify(0);
    EXPECT_EQ(recording::CallCount("watchdog_application_send_keep_alive"), 0U);
    gOperationDeadline.End();
    handler.OnThreadNotify(0);
    EXPECT_EQ(recording::CallCount("watchdog_application_send_keep_alive"), 1U);
    gOperationDeadline.Watch(milliseconds(0));
}

TEST_F(KeepAliveHandlerTest, VirtualOperationsKeepTheirSlots) {
    const KeepAliveHandler handler;
    const MaintenanceThreadCallbackInterface base;
    const auto own = VirtualFunctions<3>(handler);
    const auto inherited = VirtualFunctions<3>(base);
    // OnThreadNotify, then the two destructors.
    for (std::size_t slot = 0; slot < own.size(); ++slot) {
        EXPECT_NE(own.at(slot), inherited.at(slot)) << slot;
    }
#if defined(__x86_64__) || defined(__i386__)
    EXPECT_EQ(Slot(&KeepAliveHandler::OnThreadNotify), 0U);
#endif
}

TEST_F(KeepAliveHandlerTest, KeepAlivesStopWhenTheParentDies) {
    // The process under test is a grandchild of the test, so that the test can end its parent.
    int ready[2];
    int result[2];
    ASSERT_EQ(pipe(ready), 0);
    ASSERT_EQ(pipe(result), 0);
    const pid_t parent = fork();
    if (parent == 0) {
        if (fork() == 0) {
            KeepAliveHandler handler;
            handler.Initialize();
            const pid_t original = getppid();
            recording::Reset();
            handler.OnThreadNotify(0);
            const char before =
                recording::CallCount("watchdog_application_send_keep_alive") == 1 ? 'y' : 'n';
            (void)!write(ready[1], "r", 1);
            while (getppid() == original) {
                usleep(1000);
            }
            recording::Reset();
            handler.OnThreadNotify(0);
            const char after =
                recording::CallCount("watchdog_application_send_keep_alive") == 0 ? 'y' : 'n';
            const char verdict[2] = {before, after};
            (void)!write(result[1], verdict, sizeof(verdict));
            _exit(0);
        }
        pause();
        _exit(0);
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    kill(parent, SIGKILL);
    waitpid(parent, nullptr, 0);
    char verdict[2] = {0, 0};
    ASSERT_EQ(read(result[0], verdict, sizeof(verdict)), 2);
    EXPECT_EQ(verdict[0], 'y') << "no keep-alive while the parent lived";
    EXPECT_EQ(verdict[1], 'y') << "keep-alive after the parent died";
    for (const int end : {ready[0], ready[1], result[0], result[1]}) {
        close(end);
    }
}

TEST_F(KeepAliveHandlerTest, ShutdownUnregistersAndStopsTheThread) {
    KeepAliveHandler handler;
    recording::Reset();
    EXPECT_EQ(handler.Shutdown(), 0);
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines({Log(7, " - int KeepAliveHandler::Shutdown() - BEGIN"),
               Log(7,
                   " - int KeepAliveHandler::Shutdown() - Unregistering kestal.cgi with "
                   "watchdog"),
               "watchdog_application_register(kestal.cgi, 0)", "MaintenanceThread::Shutdown()",
               Log(7, " - int KeepAliveHandler::Shutdown() - END returning 0")}));
}

TEST_F(KeepAliveHandlerTest, ShutdownTwiceUnregistersTwiceAndIsHarmless) {
    KeepAliveHandler handler;
    handler.Shutdown();
    EXPECT_EQ(handler.Shutdown(), 0);
    EXPECT_EQ(recording::CallCount("watchdog_application_register"), 2U);
    EXPECT_EQ(recording::CallCount("MaintenanceThread::Shutdown"), 2U);
}

TEST(MaintenanceThreadCallback, BaseNotifiesFalse) {
    MaintenanceThreadCallbackInterface base;
    EXPECT_FALSE(base.OnThreadNotify(1));
}

}  // namespace
