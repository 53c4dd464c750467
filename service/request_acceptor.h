#pragma once

#include <fcgiapp.h>

#include <csignal>

/// Accepts requests with FCGX_Accept_r so that SIGTERM is handled while no request is in progress:
/// only while it waits for a request, the signals of MainThreadSignals() are unblocked.
class RequestAcceptor {
  public:
    /// @p fcgiRequest is initialised and outlives the acceptor. The calling thread is the one that
    /// will accept; it has those signals blocked.
    explicit RequestAcceptor(FCGX_Request& fcgiRequest);

    /// Waits for the next request and returns what FCGX_Accept_r returns. The wait has no deadline:
    /// this ends the operation that was in progress, and begins the next one when a connection is
    /// there (the request), or when no more requests come (the end of the process).
    int Accept();

  private:
    /// Returns true when there is something to accept or read, false when a signal was handled.
    bool Wait() const;

    FCGX_Request& request;
    /// Whether the socket listens. If not, no request can come and there is nothing to wait for.
    bool listens;
    /// The signal mask of the thread while it waits.
    sigset_t waitingMask;
};
