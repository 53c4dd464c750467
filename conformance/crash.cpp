#include "conformance/crash.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace conformance {

namespace {

thread_local const char* gRunning = nullptr;
/// The process that is being examined, or 0. Not that of a child that a call has forked: its end is
/// no concern of this program.
std::atomic<pid_t> gExamined = 0;

// A call that writes to a broken pipe ends the tools, too, so that SIGPIPE is fatal.
constexpr std::array<std::pair<int, const char*>, 6> kFatal = {{{SIGSEGV, "SIGSEGV"},
                                                                {SIGBUS, "SIGBUS"},
                                                                {SIGFPE, "SIGFPE"},
                                                                {SIGILL, "SIGILL"},
                                                                {SIGABRT, "SIGABRT"},
                                                                {SIGPIPE, "SIGPIPE"}}};

void Write(const char* text) {
    // Nothing can be done about a failure here.
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, text, std::strlen(text));
}

[[noreturn]] void End(const char* cause) {
    Write("FAIL ");
    Write(gRunning == nullptr ? "the process" : gRunning);
    Write(": has ended the process by ");
    Write(cause);
    Write("\n");
    _exit(1);
}

extern "C" void EndCrashed(int signal) {
    for (const auto& [number, name] : kFatal) {
        if (number == signal) {
            End(name);
        }
    }
    End("a signal");
}

extern "C" void EndExited() {
    if (gExamined == getpid()) {
        End("exit()");
    }
}

/// Room for the handler on a thread whose stack is used up. For the lifetime of the object.
class AlternateStack {
  public:
    AlternateStack() : memory(kSize) {
        stack_t stack{};
        stack.ss_sp = memory.data();
        stack.ss_size = memory.size();
        (void)sigaltstack(&stack, &previous);
    }
    ~AlternateStack() { (void)sigaltstack(&previous, nullptr); }
    AlternateStack(const AlternateStack&) = delete;
    AlternateStack& operator=(const AlternateStack&) = delete;

  private:
    static constexpr std::size_t kSize = 65536;

    std::vector<char> memory;
    stack_t previous{};
};

}  // namespace

CrashReports::CrashReports() {
    struct sigaction action {};
    action.sa_handler = EndCrashed;
    action.sa_flags = SA_ONSTACK;
    for (const auto& [number, name] : kFatal) {
        (void)sigaction(number, &action, nullptr);
    }
    gExamined = getpid();
    (void)std::atexit(EndExited);
    (void)std::at_quick_exit(EndExited);
}

CrashReports::~CrashReports() {
    gExamined = 0;
}

CrashName::CrashName(const char* name) : previous(gRunning) {
    static thread_local const AlternateStack stack;
    gRunning = name;
}

CrashName::~CrashName() {
    gRunning = previous;
}

}  // namespace conformance
