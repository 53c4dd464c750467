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

/// Ends the process in the same way, without the frames, when the deadline has passed and its
/// signal has not ended it: a library holds signals back in the main thread. For the keep-alive
/// thread, which has a SignalStack.
void EndIfStuck();

/// Does not return once the other thread ends the process: the handler of a fatal signal takes the
/// standard output away, and an answer that lost something by that must not be finished.
void WaitIfEndingByFatalSignal();
