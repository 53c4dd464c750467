#pragma once

#include <cstddef>

/// A stack of its own for the signal handlers of the thread that constructs it, so that they run
/// even when the thread's stack is used up. Without memory for it, handlers run as they would
/// otherwise.
class SignalStack {
  public:
    SignalStack();
    ~SignalStack();
    SignalStack(const SignalStack&) = delete;
    SignalStack& operator=(const SignalStack&) = delete;

  private:
    void* Start() const;

    void* memory;
};
