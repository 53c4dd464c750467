// How the process ends after a fatal signal or in an operation that never returns: the handler logs
// the reason and where the thread stands, and then ends the process. It must succeed even where the
// process crashed inside the allocator or the log, so a timer ends a handler that itself hangs.
#pragma once

#include <chrono>

/// Exit status of a process that ended because an operation was stuck.
constexpr int kStuckExitStatus = 75;

/// From now on SIGILL, SIGABRT and SIGSEGV log a backtrace and end the process with the number of
/// the signal as exit status, even if the allocator is locked or the stack is used up.
void InstallFatalSignalHandler();

/// From now on the process ends when an operation of gOperationDeadline takes longer than @p limit.
/// It logs which step is stuck and a backtrace of the calling thread, the main thread, and ends
/// with kStuckExitStatus. As after a fatal signal, it stays registered with the watchdog.
void InstallDeadlineHandler(std::chrono::milliseconds limit);

/// Ends the process in the same way, but without a backtrace, if the deadline has long passed and
/// its signal has not ended the process because a library blocks signals in the main thread. The
/// keep-alive thread calls this; it needs a SignalStack.
void EndIfStuck();

/// Does not return if another thread is ending the process. The handler of a fatal signal
/// disconnects the standard output, and an answer that lost text by that must not be finished.
void WaitIfProcessIsEnding();
