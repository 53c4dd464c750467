#include "service/main_thread_signals.h"

namespace {

constexpr int kMainThreadSignals[] = {SIGTERM, SIGUSR1};

}  // namespace

sigset_t MainThreadSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signo : kMainThreadSignals) {
        sigaddset(&signals, signo);
    }
    return signals;
}

void BlockMainThreadSignals() {
    const sigset_t signals = MainThreadSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

bool IsMainThreadSignalPending() {
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    for (const int signo : kMainThreadSignals) {
        if (sigismember(&pending, signo) == 1) {
            return true;
        }
    }
    return false;
}

sigset_t WaitingSignalMask() {
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    for (const int signo : kMainThreadSignals) {
        sigdelset(&mask, signo);
    }
    sigaddset(&mask, DeadlineSignal());
    return mask;
}

int DeadlineSignal() {
    constexpr int kNumber = 5;
    return SIGRTMIN + kNumber;
}

void UnblockDeadlineSignal() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, DeadlineSignal());
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}
