#include "service/signal_handlers.h"

#include <execinfo.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>

#include "framework/log.h"
#include "service/main_thread_signals.h"
#include "service/process.h"
#include "service/signal_stack.h"

namespace {

// Literals, so that the compiler checks them against their arguments.
#define RECEIVED_SIGNAL_FORMAT "%s received signal: %d, backtrace:"
#define STUCK_FORMAT "%s is stuck: %s has not ended within %d ms, backtrace:"

constexpr int kMaxFrames = 48;

constexpr std::array kFatalSignals = {SIGILL, SIGABRT, SIGSEGV};

/// A handler that has not ended the process by then never will.
constexpr unsigned int kEndSeconds = 2;

/// Of the end that is under way; 0 when there is none.
std::atomic<int> gExitStatus = 0;
std::atomic<pid_t> gEndingThread = 0;
std::atomic<bool> gReasonLogged = false;

void Install(int signo, void (*handler)(int), int flags) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signo, &action, nullptr);
}

void LetIn(int signo) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signo);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

[[noreturn]] void WaitForEnd() {
    for (;;) {
        pause();
    }
}

int LimitMilliseconds() {
    return static_cast<int>(gOperationDeadline.Limit().count());
}

/// Tells the debug log, which takes no locks, why the process ends.
void LogReason() {
    if (gExitStatus == kStuckExitStatus) {
        KESTAL_LOG_PLAIN(TORU_DBG_ERROR, STUCK_FORMAT, gProgramName, gOperationDeadline.Step(),
                         LimitMilliseconds());
    } else {
        KESTAL_LOG_PLAIN(TORU_DBG_ERROR, RECEIVED_SIGNAL_FORMAT, gProgramName, gExitStatus.load());
    }
}

/// The same, first to the system log.
void SyslogReason() {
    if (gExitStatus == kStuckExitStatus) {
        KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, STUCK_FORMAT, gProgramName, gOperationDeadline.Step(),
                            LimitMilliseconds());
    } else {
        KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, RECEIVED_SIGNAL_FORMAT, gProgramName,
                            gExitStatus.load());
    }
}

/// Last resort, for a process whose handler does not get through: it crashed or is stuck while it
/// holds a lock that logging or exit needs, or the handler itself crashes. Tells the debug log what
/// happened unless it knows; should even that hang, the next deadline ends it.
[[noreturn]] void EndNow() {
    if (!gReasonLogged.exchange(true)) {
        alarm(kEndSeconds);
        LogReason();
    }
    _exit(gExitStatus);
}

void endHandler(int /*signo*/) {
    EndNow();
}

/// Makes the calling thread the one that ends the process, in a limited time. Does not return when
/// the process is already ending.
void BeginEnd(int status) {
    int none = 0;
    if (!gExitStatus.compare_exchange_strong(none, status)) {
        if (gEndingThread == gettid()) {
            EndNow();
        }
        // Another thread is already ending the process.
        WaitForEnd();
    }
    gEndingThread = gettid();
    Install(SIGALRM, endHandler, SA_ONSTACK | SA_NODEFER);
    // A library may have held it back in this thread.
    LetIn(SIGALRM);
    alarm(kEndSeconds);
}

/// Logs why the process ends and where the calling thread stands.
void LogBacktrace() {
    std::array<void*, kMaxFrames> frames{};
    const int count = backtrace(frames.data(), kMaxFrames);
    char** symbols = backtrace_symbols(frames.data(), count);
    SyslogReason();
    gReasonLogged = true;
    for (int i = 0; i < count; ++i) {
        KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, "%p : %s", frames[static_cast<std::size_t>(i)],
                            symbols == nullptr ? "" : symbols[i]);
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the C library allocated them
    std::free(static_cast<void*>(symbols));
}

void fatalSignalHandler(int signo) {
    BeginEnd(signo);
    // What was half written of an answer must not leave at exit.
    std::cout.rdbuf(nullptr);
    LogBacktrace();
    std::exit(signo);
}

void deadlineHandler(int /*signo*/) {
    // The timer outlives its operation. An end that is under way has its own time.
    if (gExitStatus != 0 || !gOperationDeadline.IsPassed()) {
        return;
    }
    BeginEnd(kStuckExitStatus);
    LogBacktrace();
    // Exit handlers may need what the stuck call holds.
    _exit(kStuckExitStatus);
}

}  // namespace

void InstallFatalSignalHandler() {
    // The first backtrace loads a library; a handler could not.
    std::array<void*, 1> frame{};
    backtrace(frame.data(), static_cast<int>(frame.size()));

    static const SignalStack stack;
    sigset_t needed;
    sigemptyset(&needed);
    sigaddset(&needed, SIGALRM);
    for (const int signo : kFatalSignals) {
        // A fault of the handler itself comes back to it.
        Install(signo, fatalSignalHandler, SA_ONSTACK | SA_NODEFER);
        sigaddset(&needed, signo);
    }
    // The process that started this one may have held them back.
    pthread_sigmask(SIG_UNBLOCK, &needed, nullptr);
}

void InstallDeadlineHandler(std::chrono::milliseconds limit) {
    Install(DeadlineSignal(), deadlineHandler, SA_ONSTACK | SA_RESTART);
    LetDeadlineSignalIn();
    gOperationDeadline.Watch(limit);
}

void EndIfStuck() {
    // An end that is under way has its own time.
    if (gExitStatus != 0 || !gOperationDeadline.IsLongPassed()) {
        return;
    }
    BeginEnd(kStuckExitStatus);
    SyslogReason();
    gReasonLogged = true;
    KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, "none, for the main thread takes no signals");
    _exit(kStuckExitStatus);
}

void WaitIfEndingByFatalSignal() {
    if (gExitStatus != 0) {
        WaitForEnd();
    }
}
