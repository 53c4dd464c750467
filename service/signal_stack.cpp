#include "service/signal_stack.h"

#include <sys/mman.h>
#include <unistd.h>

#include <csignal>

namespace {

/// A handler formats log lines and runs the exit handlers here.
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
    // Stacks grow downwards.
    mprotect(memory, GuardSize(), PROT_NONE);
    stack_t stack{};
    stack.ss_sp = static_cast<std::byte*>(memory) + GuardSize();
    stack.ss_size = kStackSize;
    sigaltstack(&stack, nullptr);
}

SignalStack::~SignalStack() {
    stack_t stack{};
    stack.ss_flags = SS_DISABLE;
    // Refused to a handler that is running on it, whose memory must then stay.
    if (memory != MAP_FAILED && sigaltstack(&stack, nullptr) == 0) {
        munmap(memory, GuardSize() + kStackSize);
    }
}
