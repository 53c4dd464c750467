// Common web library: a thread that calls back at an interval.
#pragma once

#include <memory>

/// What a MaintenanceThread calls.
// NOLINTNEXTLINE(cppcoreguidelines-special-member-functions): it has no state, copies are harmless
class MaintenanceThreadCallbackInterface {
  public:
    /// Called once per interval on the maintenance thread; the base returns false.
    virtual bool OnThreadNotify(unsigned int event);

    virtual ~MaintenanceThreadCallbackInterface();
};

/// A thread that calls back once per interval.
class MaintenanceThread {
  public:
    /// @p interval is in seconds. @p reserved is given as 0.
    MaintenanceThread(MaintenanceThreadCallbackInterface* callback, unsigned int interval,
                      unsigned int reserved);
    ~MaintenanceThread();
    MaintenanceThread(const MaintenanceThread&) = delete;
    MaintenanceThread& operator=(const MaintenanceThread&) = delete;

    /// Prepares the thread. Returns 0 on success.
    int Initialize();

    /// Starts the thread, which inherits the caller's signal mask. Returns 0 on success.
    int Run();

    /// Stops the thread and waits until it has ended. Does nothing if it is not running. Returns 0.
    int Shutdown();

    /// Replaces the interval, in seconds, from the next Run on.
    void SetInterval(unsigned int newInterval) { interval = newInterval; }

  private:
    struct State;
    MaintenanceThreadCallbackInterface* callback;
    unsigned int interval;
    std::unique_ptr<State> state;
};
