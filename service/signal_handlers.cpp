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

/// How long a handler may take to end the process before the alarm does it.
constexpr unsigned int kEndSeconds = 2;

/// The status with which the process is ending; 0 while it is not ending.
std::atomic<int> gExitStatus = 0;
/// The thread that is ending the process.
std::atomic<pid_t> gEndingThread = 0;
std::atomic<bool> gReasonLogged = false;

void Install(int signo, void (*handler)(int), int flags) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signo, &action, nullptr);
}

void Unblock(int signo) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signo);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

/// Waits until another thread has ended the process.
[[noreturn]] void WaitForEnd() {
    for (;;) {
        pause();
    }
}

int LimitMilliseconds() {
    return static_cast<int>(gOperationDeadline.Limit().count());
}

/// Writes why the process ends to the debug log. Unlike the system log, that takes no locks.
void LogReason() {
    if (gExitStatus == kStuckExitStatus) {
        KESTAL_LOG_PLAIN(TORU_DBG_ERROR, STUCK_FORMAT, gProgramName, gOperationDeadline.Step(),
                         LimitMilliseconds());
    } else {
        KESTAL_LOG_PLAIN(TORU_DBG_ERROR, RECEIVED_SIGNAL_FORMAT, gProgramName, gExitStatus.load());
    }
}

/// Writes it to the system log first, then to the debug log.
void SyslogReason() {
    if (gExitStatus == kStuckExitStatus) {
        KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, STUCK_FORMAT, gProgramName, gOperationDeadline.Step(),
                            LimitMilliseconds());
    } else {
        KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, RECEIVED_SIGNAL_FORMAT, gProgramName,
                            gExitStatus.load());
    }
}

/// Ends the process when its handler cannot: the thread holds a lock that logging or exit needs, or
/// the handler itself crashes. Logs the reason unless that has been done. If even that hangs, the
/// next alarm comes here again and finds it marked as logged.
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

/// Makes the calling thread the one that ends the process, and sets an alarm for the case that it
/// hangs. Does not return if the process is already ending.
void BeginEnd(int status) {
    int none = 0;
    if (!gExitStatus.compare_exchange_strong(none, status)) {
        if (gEndingThread == gettid()) {
            // The handler that ends the process has crashed.
            EndNow();
        }
        // Another thread is already ending the process.
        WaitForEnd();
    }
    gEndingThread = gettid();
    Install(SIGALRM, endHandler, SA_ONSTACK | SA_NODEFER);
    // A library may have blocked it in this thread.
    Unblock(SIGALRM);
    alarm(kEndSeconds);
}

/// Logs why the process ends and a backtrace of the calling thread.
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
    // exit flushes the standard output, but half of an answer must not be sent.
    std::cout.rdbuf(nullptr);
    LogBacktrace();
    std::exit(signo);
}

void deadlineHandler(int /*signo*/) {
    // The timer is not stopped when its operation ends, so it may expire in a later one. A process
    // that is already ending has its own alarm.
    if (gExitStatus != 0 || !gOperationDeadline.IsPassed()) {
        return;
    }
    BeginEnd(kStuckExitStatus);
    LogBacktrace();
    // No exit handlers: they may need a lock that the stuck call holds.
    _exit(kStuckExitStatus);
}

}  // namespace

void InstallFatalSignalHandler() {
    // The first call of backtrace loads a library, which a signal handler could not do.
    std::array<void*, 1> frame{};
    backtrace(frame.data(), static_cast<int>(frame.size()));

    static const SignalStack stack;
    sigset_t needed;
    sigemptyset(&needed);
    sigaddset(&needed, SIGALRM);
    for (const int signo : kFatalSignals) {
        // SA_NODEFER: if the handler itself crashes, it is called again and ends the process.
        Install(signo, fatalSignalHandler, SA_ONSTACK | SA_NODEFER);
        sigaddset(&needed, signo);
    }
    // The process that started this one may have blocked them.
    pthread_sigmask(SIG_UNBLOCK, &needed, nullptr);
}

void InstallDeadlineHandler(std::chrono::milliseconds limit) {
    Install(DeadlineSignal(), deadlineHandler, SA_ONSTACK | SA_RESTART);
    UnblockDeadlineSignal();
    gOperationDeadline.Watch(limit);
}

void EndIfStuck() {
    // A process that is already ending has its own alarm.
    if (gExitStatus != 0 || !gOperationDeadline.IsLongPassed()) {
        return;
    }
    BeginEnd(kStuckExitStatus);
    SyslogReason();
    gReasonLogged = true;
    KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, "none, for the main thread takes no signals");
    _exit(kStuckExitStatus);
}

void WaitIfProcessIsEnding() {
    if (gExitStatus != 0) {
        WaitForEnd();
    }
}
