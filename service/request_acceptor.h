#pragma once

#include <fcgiapp.h>

#include <csignal>

/// FCGX_Accept_r in which a termination can be answered at any time: until a request comes in, and
/// only then, the signals of MainThreadSignals() are let in.
class RequestAcceptor {
  public:
    /// @p fcgiRequest is initialised and outlives the acceptor. The calling thread is the one that
    /// accepts; it holds those signals back already.
    explicit RequestAcceptor(FCGX_Request& fcgiRequest);

    /// Waits for the next request. Returns what FCGX_Accept_r returns. Ends the operation before;
    /// the request's deadline runs from when its connection is there, and that of the end of the
    /// process from when no request comes any more.
    int Accept();

  private:
    /// Returns true when there is something to accept or read, false when a signal was handled.
    bool Wait() const;

    FCGX_Request& request;
    /// Whether connections can come; nothing else is worth waiting for.
    bool listens;
    /// The thread's mask while it waits.
    sigset_t waitingMask;
};
