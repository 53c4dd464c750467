#include "service/signal_handlers.h"

#include <execinfo.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "bindings/recording/recording.h"
#include "service/keepalive/keep_alive_handler.h"
#include "service/main_thread_signals.h"
#include "service/process.h"
#include "service/signal_stack.h"
#include "service/termination_handler.h"

namespace {

/// What backtrace_symbols does: it returns the names, returns none, never returns or crashes.
enum class Symbols { named, missing, hanging, crashing };
Symbols gSymbols = Symbols::named;

/// Called by backtrace_symbols, that is, in the signal handler of the crashed thread.
void (*gMeanwhile)() = [] {};

/// Returns when @p thread of this process sleeps in a system call.
void WaitUntilItSleeps(pid_t thread) {
    const std::string path = "/proc/self/task/" + std::to_string(thread) + "/stat";
    std::string status;
    do {
        std::ifstream file(path);
        status.assign(std::istreambuf_iterator<char>(file), {});
    } while (status.find(") S ") == std::string::npos);
}

// Not inlined, and every frame is written to, so that the compiler keeps the recursion.
[[gnu::noinline]] std::size_t UseUpTheStack(std::size_t depth) {
    volatile char frame[4096];
    frame[0] = static_cast<char>(depth);
    return depth == 0 ? 0 : UseUpTheStack(depth - 1) + static_cast<std::size_t>(frame[0]);
}

[[gnu::noinline]] int RaiseFrom(int depth, int signo) {
    const int result = depth == 0 ? raise(signo) : RaiseFrom(depth - 1, signo);
    return result + 1;
}

}  // namespace

// Replaces the function of the C library, which would allocate memory.
extern "C" char** backtrace_symbols(void* const* /*frames*/, int count) noexcept {
    gMeanwhile();
    while (gSymbols == Symbols::hanging) {
        pause();
    }
    if (gSymbols == Symbols::crashing) {
        (void)raise(SIGSEGV);
    }
    (void)std::fprintf(stderr, "%d frames\n", count);
    if (gSymbols == Symbols::missing) {
        return nullptr;
    }
    auto** symbols =
        static_cast<char**>(std::calloc(static_cast<std::size_t>(count), sizeof(char*)));
    static char name[] = "frame";
    for (int i = 0; i < count; ++i) {
        symbols[i] = name;
    }
    return symbols;
}

namespace {

constexpr std::chrono::milliseconds kShort(50);
constexpr std::chrono::milliseconds kLong(600'000);

[[noreturn]] void HangForGood() {
    for (;;) {
        pause();
    }
}

/// Behaves like a library call that hangs with all signals blocked while the keep-alive thread
/// runs.
[[noreturn]] void HangWithSignalsHeldBack() {
    std::thread([] {
        while (!gOperationDeadline.IsLongPassed()) {
            std::this_thread::yield();
        }
        gKeepAliveHandler.OnThreadNotify(0);
    }).detach();
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    HangForGood();
}

const std::string kStuck =
    "log 3 .KESTAL_CGI.:.ERROR. - kestal.cgi is stuck: request .status. has not ended within 50 "
    "ms, backtrace:";

const std::string kReceived = "log 3 .KESTAL_CGI.:.ERROR. - kestal.cgi received signal: ";

class SignalHandlersDeathTest : public testing::Test {
  protected:
    void SetUp() override {
        testing::FLAGS_gtest_death_test_style = "threadsafe";
        gProgramName = "kestal.cgi";
        recording::Reset();
    }

    static void Prepare(Symbols symbols = Symbols::named) {
        recording::Echo();
        gSymbols = symbols;
        InstallFatalSignalHandler();
    }

    /// A process in which an operation may take @p limit.
    static void PrepareDeadline(Symbols symbols = Symbols::named,
                                std::chrono::milliseconds limit = kShort) {
        Prepare(symbols);
        InstallDeadlineHandler(limit);
    }
};

/// Tests in which a signal arrives while the handler of another one runs.
class SignalsInHandlersDeathTest : public SignalHandlersDeathTest {};

TEST_F(SignalHandlersDeathTest, FatalSignalIsLoggedWithItsFramesAndBecomesTheExitStatus) {
    for (const int signo : {SIGILL, SIGABRT, SIGSEGV}) {
        const std::string received =
            "kestal.cgi received signal: " + std::to_string(signo) + ", backtrace:\n";
        EXPECT_EXIT(
            {
                Prepare();
                (void)raise(signo);
            },
            testing::ExitedWithCode(signo),
            "^[0-9]+ frames\nsyslog 138 .KESTAL_CGI.:.ERROR. - " + received +
                "log 3 .KESTAL_CGI.:.ERROR. - " + received +
                "syslog 138 .KESTAL_CGI.:.ERROR. - 0x[0-9a-f]* : frame\n"
                "log 3 .KESTAL_CGI.:.ERROR. - 0x[0-9a-f]* : frame\n");
    }
}

TEST_F(SignalHandlersDeathTest, AtMostFortyEightFramesAreLogged) {
    EXPECT_EXIT(
        {
            Prepare();
            std::exit(RaiseFrom(100, SIGABRT));
        },
        testing::ExitedWithCode(SIGABRT), "^48 frames\n");
}

TEST_F(SignalHandlersDeathTest, FramesAreLoggedWithoutTheirNamesWhenThereIsNoMemoryForThem) {
    EXPECT_EXIT(
        {
            Prepare(Symbols::missing);
            (void)raise(SIGABRT);
        },
        testing::ExitedWithCode(SIGABRT),
        "syslog 138 .KESTAL_CGI.:.ERROR. - 0x[0-9a-f]* : \n"
        "log 3 .KESTAL_CGI.:.ERROR. - 0x[0-9a-f]* : \n");
}

TEST_F(SignalsInHandlersDeathTest, HandlerThatHangsOnALockIsEndedAfterALineInTheDebugLog) {
    EXPECT_EXIT(
        {
            Prepare(Symbols::hanging);
            (void)raise(SIGSEGV);
        },
        testing::ExitedWithCode(SIGSEGV), "^" + kReceived + "11, backtrace:\n$");
}

TEST_F(SignalsInHandlersDeathTest, HandlerThatCrashesEndsAfterALineInTheDebugLog) {
    for (const int signo : {SIGABRT, SIGSEGV}) {
        EXPECT_EXIT(
            {
                Prepare(Symbols::crashing);
                (void)raise(signo);
            },
            testing::ExitedWithCode(signo),
            "^" + kReceived + std::to_string(signo) + ", backtrace:\n$");
    }
}

TEST_F(SignalHandlersDeathTest, UsedUpStackStillGivesTheSignalAsExitStatus) {
    EXPECT_EXIT(
        {
            Prepare();
            std::exit(UseUpTheStack(SIZE_MAX) == 0 ? 0 : 1);
        },
        testing::ExitedWithCode(SIGSEGV), kReceived + "11, backtrace:");
}

TEST_F(SignalHandlersDeathTest, UsedUpStackOfTheKeepAliveThreadGivesTheSignalAsExitStatus) {
    EXPECT_EXIT(
        {
            Prepare();
            std::thread([] {
                gKeepAliveHandler.OnThreadNotify(0);
                std::exit(UseUpTheStack(SIZE_MAX) == 0 ? 0 : 1);
            }).join();
        },
        testing::ExitedWithCode(SIGSEGV), kReceived + "11, backtrace:");
}

TEST_F(SignalsInHandlersDeathTest, SecondThreadThatCrashesLeavesTheEndToTheFirst) {
    EXPECT_EXIT(
        {
            Prepare();
            gMeanwhile = [] {
                std::atomic<pid_t> second = 0;
                std::thread([&] {
                    second = gettid();
                    (void)raise(SIGABRT);
                }).detach();
                while (second == 0) {
                    std::this_thread::yield();
                }
                WaitUntilItSleeps(second);
            };
            (void)raise(SIGSEGV);
        },
        testing::ExitedWithCode(SIGSEGV),
        testing::AllOf(testing::HasSubstr("received signal: 11"),
                       testing::Not(testing::HasSubstr("received signal: 6"))));
}

TEST_F(SignalHandlersDeathTest, TerminationWhileTheKeepAliveThreadCrashesLeavesTheEndToIt) {
    EXPECT_EXIT(
        {
            Prepare();
            InstallTerminationHandler();
            gMeanwhile = [] {
                (void)kill(getpid(), SIGTERM);
                WaitUntilItSleeps(getpid());
            };
            std::thread([] {
                BlockMainThreadSignals();
                const SignalStack stack;
                (void)raise(SIGSEGV);
            }).detach();
            // A busy loop: this thread must not sleep before SIGTERM has been handled.
            for (;;) {
                std::this_thread::yield();
            }
        },
        testing::ExitedWithCode(SIGSEGV),
        testing::AllOf(testing::HasSubstr("received signal: 11"),
                       testing::Not(testing::HasSubstr("watchdog"))));
}

TEST_F(SignalHandlersDeathTest, FaultInAnExitHandlerKeepsTheFirstSignalAsExitStatus) {
    EXPECT_EXIT(
        {
            Prepare();
            (void)std::atexit([] { (void)raise(SIGSEGV); });
            (void)raise(SIGABRT);
        },
        testing::ExitedWithCode(SIGABRT), kReceived + "6, backtrace:");
}

TEST_F(SignalsInHandlersDeathTest, SignalsThatTheStartingProcessBlockedAreHandledNevertheless) {
    EXPECT_EXIT(
        {
            sigset_t all;
            sigfillset(&all);
            pthread_sigmask(SIG_BLOCK, &all, nullptr);
            Prepare(Symbols::hanging);
            (void)raise(SIGABRT);
        },
        testing::ExitedWithCode(SIGABRT), kReceived + "6, backtrace:");
}

TEST_F(SignalHandlersDeathTest, AlarmSignalHasItsDefaultActionUntilTheProcessEnds) {
    InstallFatalSignalHandler();
    struct sigaction action = {};
    sigaction(SIGALRM, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
}

TEST_F(SignalsInHandlersDeathTest, StuckOperationIsLoggedWithItsFramesAndEndsTheProcess) {
    EXPECT_EXIT(
        {
            PrepareDeadline();
            (void)std::atexit([] { recording::Record("exit handler"); });
            gOperationDeadline.Begin("request (receipt)");
            gOperationDeadline.Enter("request (status)");
            HangForGood();
        },
        testing::ExitedWithCode(kStuckExitStatus),
        testing::AllOf(
            testing::ContainsRegex("^[0-9]+ frames\nsyslog 138 .KESTAL_CGI.:.ERROR. - "
                                   "kestal.cgi is stuck: request .status. has not ended within 50 "
                                   "ms, backtrace:\n" +
                                   kStuck +
                                   "\nsyslog 138 .KESTAL_CGI.:.ERROR. - 0x[0-9a-f]* : frame\n"
                                   "log 3 .KESTAL_CGI.:.ERROR. - 0x[0-9a-f]* : frame\n"),
            testing::Not(testing::HasSubstr("exit handler"))));
}

TEST_F(SignalsInHandlersDeathTest, OperationStuckOnALockThatItsBacktraceNeedsIsStillNamed) {
    for (const Symbols symbols : {Symbols::hanging, Symbols::crashing}) {
        EXPECT_EXIT(
            {
                PrepareDeadline(symbols);
                gOperationDeadline.Begin("request (status)");
                HangForGood();
            },
            testing::ExitedWithCode(kStuckExitStatus), "^" + kStuck + "\n$");
    }
}

TEST_F(SignalHandlersDeathTest, EveryOperationHasItsFullTimeEvenDirectlyAfterAnother) {
    EXPECT_EXIT(
        {
            PrepareDeadline();
            gOperationDeadline.Begin("request (connect)");
            gOperationDeadline.End();
            gOperationDeadline.Begin("request (status)");
            HangForGood();
        },
        testing::ExitedWithCode(kStuckExitStatus), kStuck);
}

TEST_F(SignalHandlersDeathTest, TimerOfAnEndedOperationDoesNotAffectLaterOnes) {
    EXPECT_EXIT(
        {
            PrepareDeadline();
            // The mask while the process waits for a request: the signal is delivered at the next
            // wait.
            const sigset_t waiting = WaitingSignalMask();
            sigset_t usual;
            pthread_sigmask(SIG_SETMASK, &waiting, &usual);
            gOperationDeadline.Begin("request (connect)");
            gOperationDeadline.End();
            sigset_t pending;
            do {
                sigpending(&pending);
            } while (sigismember(&pending, DeadlineSignal()) == 0);
            gOperationDeadline.Watch(kLong);
            gOperationDeadline.Begin("request (status)");
            pthread_sigmask(SIG_SETMASK, &usual, nullptr);
            std::exit(gOperationDeadline.IsPassed() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(SignalHandlersDeathTest, TerminationThatIsStuckEndsTheProcess) {
    EXPECT_EXIT(
        {
            PrepareDeadline();
            recording::Given("watchdog_application_register").Does(HangForGood);
            BlockMainThreadSignals();
            InstallTerminationHandler();
            (void)raise(SIGTERM);
            const sigset_t mask = WaitingSignalMask();
            sigsuspend(&mask);
        },
        testing::ExitedWithCode(kStuckExitStatus),
        "is stuck: termination has not ended within 50 ms, backtrace:\n");
}

TEST_F(SignalsInHandlersDeathTest, CrashWhoseHandlerTakesLongKeepsItsStatusWhenTheDeadlinePasses) {
    EXPECT_EXIT(
        {
            PrepareDeadline();
            gMeanwhile = [] {
                while (!gOperationDeadline.IsPassed()) {
                    std::this_thread::yield();
                }
                (void)raise(DeadlineSignal());
            };
            gOperationDeadline.Begin("request (status)");
            (void)raise(SIGSEGV);
        },
        testing::ExitedWithCode(SIGSEGV),
        testing::AllOf(testing::ContainsRegex("received signal: 11.*\n.*: frame"),
                       testing::Not(testing::HasSubstr("is stuck"))));
}

TEST_F(SignalHandlersDeathTest, StuckCallThatBlocksAllSignalsIsEndedByTheKeepAliveThread) {
    EXPECT_EXIT(
        {
            PrepareDeadline();
            gOperationDeadline.Begin("request (status)");
            HangWithSignalsHeldBack();
        },
        testing::ExitedWithCode(kStuckExitStatus),
        testing::AllOf(testing::ContainsRegex(
                           "syslog 138 .KESTAL_CGI.:.ERROR. - kestal.cgi is stuck: request "
                           ".status. has not ended within 50 ms, backtrace:\n" +
                           kStuck +
                           "\nsyslog 138 .KESTAL_CGI.:.ERROR. - none, for the main thread "
                           "takes no signals\n"
                           "log 3 .KESTAL_CGI.:.ERROR. - none, for the main thread takes no "
                           "signals\n$"),
                       testing::Not(testing::HasSubstr("frames\n"))));
}

TEST_F(SignalHandlersDeathTest, KeepAliveThreadThatHangsInItsLogStillEndsTheProcess) {
    EXPECT_EXIT(
        {
            PrepareDeadline();
            recording::Given("toru_dbg_syslog").Does(HangForGood);
            gOperationDeadline.Begin("request (status)");
            HangWithSignalsHeldBack();
        },
        testing::ExitedWithCode(kStuckExitStatus), kStuck + "\n$");
}

TEST_F(SignalHandlersDeathTest, KeepAliveThreadDoesNotInterfereWithAHandlerThatIsEndingTheProcess) {
    EXPECT_EXIT(
        {
            PrepareDeadline();
            gMeanwhile = [] {
                while (!gOperationDeadline.IsLongPassed()) {
                    std::this_thread::yield();
                }
                std::thread([] { gKeepAliveHandler.OnThreadNotify(0); }).join();
            };
            gOperationDeadline.Begin("request (status)");
            HangForGood();
        },
        testing::ExitedWithCode(kStuckExitStatus),
        testing::AllOf(testing::ContainsRegex(kStuck + "\n.*: frame"),
                       testing::Not(testing::HasSubstr("none, for"))));
}

TEST_F(SignalHandlersDeathTest, TerminationUnregistersAndEndsWithZero) {
    EXPECT_EXIT(
        {
            recording::Echo();
            BlockMainThreadSignals();
            InstallTerminationHandler();
            (void)raise(SIGTERM);
            recording::Record("still running");
            const sigset_t mask = WaitingSignalMask();
            sigsuspend(&mask);
        },
        testing::ExitedWithCode(0),
        "^still running\n"
        "log 7 .KESTAL_CGI.:.DEBUG. - int KeepAliveHandler::Shutdown.. - BEGIN\n"
        "log 7 .*Unregistering kestal.cgi with watchdog\n"
        "watchdog_application_register.kestal.cgi, 0.\n"
        "MaintenanceThread::Shutdown..\n"
        "log 7 .* - END returning 0\n"
        "syslog 138 .KESTAL_CGI.:.DEBUG. - KESTAL_CGI Server Terminating\n"
        "log 7 .KESTAL_CGI.:.DEBUG. - KESTAL_CGI Server Terminating\n$");
}

}  // namespace
