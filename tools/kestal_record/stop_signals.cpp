#include "tools/kestal_record/stop_signals.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace {

constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};

/// Where the handler writes a byte.
std::atomic<int> writeEnd = -1;

void Stop(int /*signal*/) {
    const int error = errno;
    // Whichever comes next ends the process.
    for (const int each : kSignals) {
        struct sigaction action {};
        if (sigaction(each, nullptr, &action) == 0 && action.sa_handler == Stop) {
            (void)std::signal(each, SIG_DFL);
        }
    }
    constexpr char kByte = 0;
    (void)!write(writeEnd, &kByte, 1);
    errno = error;
}

}  // namespace

StopSignals::StopSignals() {
    if (pipe2(pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    writeEnd = pipe[1];
    struct sigaction action {};
    action.sa_handler = Stop;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t index = 0; index < kSignals.size(); ++index) {
        (void)sigaction(kSignals.at(index), nullptr, &before.at(index));
        // nohup ignores one so that it does not end the program.
        if (before.at(index).sa_handler != SIG_IGN) {
            (void)sigaction(kSignals.at(index), &action, nullptr);
        }
    }
}

StopSignals::~StopSignals() {
    for (std::size_t index = 0; index < kSignals.size(); ++index) {
        (void)sigaction(kSignals.at(index), &before.at(index), nullptr);
    }
    writeEnd = -1;
    (void)close(pipe[0]);
    (void)close(pipe[1]);
}

bool StopSignals::WaitUntil(Time time) const {
    pollfd descriptor = {.fd = pipe[0], .events = POLLIN, .revents = 0};
    while (true) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(time - std::chrono::steady_clock::now());
        const auto timeout = static_cast<int>(std::max<std::int64_t>(left.count(), 0));
        const int ready = poll(&descriptor, 1, timeout);
        if (ready > 0) {
            return false;
        }
        if (ready == 0 && left.count() <= 0) {
            return true;
        }
    }
}
