#pragma once

#include <sys/types.h>

#include "platform/maintenance_thread.h"

/// Keeps the device watchdog informed that this process, and the web server that started it, are
/// alive: once per interval, and only while the web server is still the parent and nothing that the
/// main thread does has passed its deadline.
class KeepAliveHandler : public MaintenanceThreadCallbackInterface {
  public:
    KeepAliveHandler();

    /// Sends one keep-alive message if both are alive. Ends the process if the main thread is stuck
    /// and does not end it itself (see EndIfStuck). Runs on the maintenance thread.
    bool OnThreadNotify(unsigned int event) override;

    ~KeepAliveHandler() override = default;

    /// Remembers the parent process and registers with the watchdog. Returns 0.
    int Initialize();

    /// Starts the maintenance thread at the interval that the platform reports, or 60 seconds.
    /// Returns 0.
    int Run();

    /// Unregisters from the watchdog and stops the thread; may be called again. Returns 0.
    int Shutdown();

  private:
    MaintenanceThread thread;
    pid_t parentProcessId = 0;
};

/// The process's only keep-alive handler. It is constructed before main and lives until the process
/// has run its exit handlers.
extern KeepAliveHandler gKeepAliveHandler;
