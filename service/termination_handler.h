#pragma once

/// From now on SIGTERM ends the process with exit status 0: it unregisters the process from the
/// watchdog and stops the keep-alive thread. The main thread takes the signal only while it waits
/// for a request (see main_thread_signals.h). The deadline of gOperationDeadline holds for this end
/// as for a request.
void InstallTerminationHandler();
