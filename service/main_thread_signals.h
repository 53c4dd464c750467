// Which signals the main thread takes, and when. SIGTERM and SIGUSR1 are blocked in every thread
// from the start of the process. The main thread unblocks them only while it waits for its next
// request: there it has no request in progress and holds no lock, so that a handler may log, join a
// thread and call exit. With the signal of the deadline it is the other way round: it has to
// interrupt an operation, and is blocked only while the main thread waits.
//
// The rest of what the process does with signals is in operation_deadline.h (when the main thread
// counts as stuck), signal_handlers.h (the end after a fatal signal or a missed deadline),
// termination_handler.h (the end after SIGTERM) and signal_stack.h (the stack that handlers run
// on).
#pragma once

#include <csignal>

/// SIGTERM, and SIGUSR1, which makes libfcgi accept no more requests.
sigset_t MainThreadSignals();

/// Blocks MainThreadSignals() in the calling thread and in all threads that it starts from now on.
void BlockMainThreadSignals();

/// Whether one of MainThreadSignals() has been sent and is still blocked.
bool IsMainThreadSignalPending();

/// The signal that the main thread gets when an operation has passed its deadline. It is a
/// real-time signal because libraries use others, such as SIGALRM, for themselves.
int DeadlineSignal();

/// Unblocks DeadlineSignal() in the calling thread.
void UnblockDeadlineSignal();

/// The signal mask of the calling thread for the time in which it waits: MainThreadSignals() are
/// unblocked, and DeadlineSignal() is blocked, because a thread that waits is in no operation and
/// the timer of an earlier one must not wake it.
sigset_t WaitingSignalMask();
