#pragma once

#include <cstddef>

/// A separate stack for the signal handlers of the thread that constructs it, so that they can run
/// even after the thread has used up its own stack. If there is no memory for it, handlers run on
/// the thread's own stack, as without this class.
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
