#pragma once

/// Logs a backtrace and ends the process with the signal's number as exit status, also when the
/// allocator is locked or the stack is used up.
void InstallFatalSignalHandler();

/// From now on SIGTERM unregisters from the watchdog, stops the keep-alive thread and ends the
/// process with exit status 0, wherever it is let in.
void InstallTerminationHandler();

/// Does not return once a fatal signal has come, in the other thread that is: its handler takes the
/// standard output away, and an answer that lost something by that must not be finished.
void WaitIfEndingByFatalSignal();
