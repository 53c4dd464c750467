#include "service/signal_stack.h"

#include <sys/mman.h>
#include <unistd.h>

#include <csignal>

namespace {

/// Enough for a handler to format log lines and to run the exit handlers.
constexpr std::size_t kStackSize = std::size_t{128} * 1024;

std::size_t GuardSize() {
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace

SignalStack::SignalStack()
    : memory(mmap(nullptr, GuardSize() + kStackSize, PROT_READ | PROT_WRITE,
                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0)) {
    if (memory == MAP_FAILED) {
        return;
    }
    // Stacks grow downwards: a handler that uses up this stack, too, crashes at the page below it
    // in place of overwriting other memory.
    mprotect(memory, GuardSize(), PROT_NONE);
    stack_t stack{};
    stack.ss_sp = Start();
    stack.ss_size = kStackSize;
    sigaltstack(&stack, nullptr);
}

SignalStack::~SignalStack() {
    stack_t stack{};
    sigaltstack(nullptr, &stack);
    // The exit handlers, which destroy static objects, may run on another thread than the one that
    // uses this stack. Then it is left to that thread.
    if (memory == MAP_FAILED || stack.ss_sp != Start()) {
        return;
    }
    stack.ss_flags = SS_DISABLE;
    // The kernel refuses this while a handler is running on the stack; the memory must then stay.
    if (sigaltstack(&stack, nullptr) == 0) {
        munmap(memory, GuardSize() + kStackSize);
    }
}

void* SignalStack::Start() const {
    return static_cast<std::byte*>(memory) + GuardSize();
}
