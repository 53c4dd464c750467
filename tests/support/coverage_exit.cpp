#include <unistd.h>

#include <atomic>
#include <csignal>

extern "C" {
void __gcov_dump();
[[noreturn]] void __real__exit(int status);
[[noreturn]] void __wrap__exit(int status);
}

namespace {

std::atomic<bool> gDumping = false;
std::atomic<int> gStatus = 0;

void End(int /*signo*/) {
    __real__exit(gStatus);
}

}  // namespace

/// Where coverage is measured, the linker replaces _exit by this function (--wrap=_exit), because
/// otherwise only exit writes the counts. The process may have crashed while it held a lock that
/// writing the counts needs, so this function gives up after a second.
void __wrap__exit(int status) {
    if (!gDumping.exchange(true)) {
        gStatus = status;
        (void)std::signal(SIGALRM, End);
        alarm(1);
        __gcov_dump();
    }
    __real__exit(status);
}
