#include "service/signal_handlers.h"

#include <execinfo.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>

#include "framework/log.h"
#include "service/process.h"
#include "service/signal_stack.h"

namespace {

// A literal, so that the compiler checks it against its arguments.
#define RECEIVED_SIGNAL_FORMAT "[%s]:[%s] - %s received signal: %d, backtrace:"

constexpr int kMaxFrames = 48;

constexpr std::array kFatalSignals = {SIGILL, SIGABRT, SIGSEGV};

/// A handler that has not ended the process by then never will.
constexpr unsigned int kFatalDeadlineSeconds = 2;

std::atomic<int> gFatalSignal = 0;
std::atomic<pid_t> gFatalThread = 0;
std::atomic<bool> gFatalSignalLogged = false;

void Install(int signo, void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signo, &action, nullptr);
}

[[noreturn]] void WaitForEnd() {
    for (;;) {
        pause();
    }
}

/// Last resort, for a process whose handler does not get through: it crashed while it held a lock
/// that logging or exit needs, or the handler itself crashes. Tells the debug log, which takes no
/// locks, what happened unless it knows; should even that hang, the next deadline ends it.
[[noreturn]] void EndNow() {
    if (!gFatalSignalLogged.exchange(true)) {
        alarm(kFatalDeadlineSeconds);
        KESTAL_LOG_PLAIN(TORU_DBG_ERROR, RECEIVED_SIGNAL_FORMAT, gProgramName, gFatalSignal.load());
    }
    _exit(gFatalSignal);
}

void DeadlineHandler(int /*signo*/) {
    EndNow();
}

void fatalSignalHandler(int signo) {
    int none = 0;
    if (!gFatalSignal.compare_exchange_strong(none, signo)) {
        if (gFatalThread == gettid()) {
            EndNow();
        }
        // Another thread is already ending the process.
        WaitForEnd();
    }
    gFatalThread = gettid();
    Install(SIGALRM, DeadlineHandler, SA_ONSTACK | SA_NODEFER);
    alarm(kFatalDeadlineSeconds);
    // What was half written of an answer must not leave at exit.
    std::cout.rdbuf(nullptr);
    std::array<void*, kMaxFrames> frames{};
    const int count = backtrace(frames.data(), kMaxFrames);
    char** symbols = backtrace_symbols(frames.data(), count);
    KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, RECEIVED_SIGNAL_FORMAT, gProgramName, signo);
    gFatalSignalLogged = true;
    for (int i = 0; i < count; ++i) {
        KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, "[%s]:[%s] - %p : %s",
                            frames[static_cast<std::size_t>(i)],
                            symbols == nullptr ? "" : symbols[i]);
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the C library allocated them
    std::free(static_cast<void*>(symbols));
    std::exit(signo);
}

void terminationHandler(int /*signo*/) {
    if (gFatalSignal != 0) {
        // The keep-alive thread has crashed and is ending the process.
        WaitForEnd();
    }
    gKeepAliveHandler.Shutdown();
    KESTAL_SYSLOG_PLAIN(TORU_DBG_DEBUG, "[%s]:[%s] - %s Server Terminating", KESTAL_MODULE);
    std::exit(0);
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

void InstallTerminationHandler() {
    Install(SIGTERM, terminationHandler, 0);
}

void WaitIfEndingByFatalSignal() {
    if (gFatalSignal != 0) {
        WaitForEnd();
    }
}
