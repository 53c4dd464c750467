#pragma once

#include <chrono>

/// Exit status of a process that was stuck.
constexpr int kStuckExitStatus = 75;

/// Logs a backtrace and ends the process with the signal's number as exit status, also when the
/// allocator is locked or the stack is used up.
void InstallFatalSignalHandler();

/// From now on an operation of gOperationDeadline that passes @p limit ends the process: it logs
/// what is stuck and where every frame of the calling thread, the main thread, stands, and ends
/// with kStuckExitStatus. It stays registered with the watchdog, as after a fatal signal.
void InstallDeadlineHandler(std::chrono::milliseconds limit);

/// From now on SIGTERM unregisters from the watchdog, stops the keep-alive thread and ends the
/// process with exit status 0, wherever it is let in. That, too, has the deadline.
void InstallTerminationHandler();

/// Does not return once a fatal signal has come, in the other thread that is: its handler takes the
/// standard output away, and an answer that lost something by that must not be finished.
void WaitIfEndingByFatalSignal();
