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

/// The calling thread's mask with them let in.
sigset_t MaskLettingMainThreadSignalsIn();
