// Signals that only the main thread takes, and only where it waits for its next request: there it
// has no request under way and holds no lock, so that a handler may log, join a thread and exit.
#pragma once

#include <csignal>

/// SIGTERM, and SIGUSR1 by which libfcgi ends the loop.
sigset_t MainThreadSignals();

/// Holds them back in the calling thread and all threads that it starts.
void HoldBackMainThreadSignals();

/// Whether one of them has come in meanwhile.
bool IsMainThreadSignalPending();

/// What the main thread gets when an operation has passed its deadline. No signal that libraries
/// use by themselves, such as SIGALRM.
int DeadlineSignal();

/// Lets it in, in the calling thread.
void LetDeadlineSignalIn();

/// The calling thread's mask with the main thread's signals let in and DeadlineSignal() held back:
/// a thread that waits is in no operation, and must not be woken by the timer of an earlier one.
sigset_t MaskLettingMainThreadSignalsIn();
