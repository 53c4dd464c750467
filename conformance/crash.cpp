#include "conformance/crash.h"

#include <unistd.h>

#include <csignal>
#include <cstring>
#include <initializer_list>

namespace conformance {

namespace {

thread_local const char* gRunning = nullptr;

void Write(const char* text) {
    // Nothing can be done about a failure here.
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, text, std::strlen(text));
}

const char* NameOf(int signal) {
    switch (signal) {
        case SIGSEGV:
            return "SIGSEGV";
        case SIGBUS:
            return "SIGBUS";
        case SIGFPE:
            return "SIGFPE";
        case SIGILL:
            return "SIGILL";
        default:
            return "SIGABRT";
    }
}

extern "C" void EndCrashed(int signal) {
    Write("FAIL ");
    Write(gRunning == nullptr ? "the process" : gRunning);
    Write(": has ended the process by ");
    Write(NameOf(signal));
    Write("\n");
    _exit(1);
}

}  // namespace

void InstallCrashHandler() {
    struct sigaction action {};
    action.sa_handler = EndCrashed;
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        (void)sigaction(signal, &action, nullptr);
    }
}

CrashName::CrashName(const char* name) : previous(gRunning) {
    gRunning = name;
}

CrashName::~CrashName() {
    gRunning = previous;
}

}  // namespace conformance
