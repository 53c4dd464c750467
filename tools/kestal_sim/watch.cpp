// The command that shows the calls of the platform as requests make them.
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <vector>

#include "bindings/posix/files/file_io.h"
#include "bindings/simulator/device_file.h"
#include "bindings/simulator/watch/watch_message.h"
#include "tools/kestal_sim/commands.h"
#include "tools/kestal_sim/document.h"
#include "tools/kestal_sim/watched_call.h"

namespace {

using binding::FileDescriptor;
using binding::ThrowSystemError;
using binding::WatchMessage;

/// The socket's address; a signal handler removes the socket.
sockaddr_un theAddress{};

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as sockets want it
const auto* const kAddress = reinterpret_cast<const sockaddr*>(&theAddress);

extern "C" void EndWatching(int /*signo*/) {
    // A handler, because the process may be waiting for whoever reads its output.
    (void)unlink(&theAddress.sun_path[0]);
    _exit(0);
}

/// The socket to which processes connect that make calls.
class Listener {
  public:
    explicit Listener(const std::string& path)
        : socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        if (path.size() >= sizeof theAddress.sun_path) {
            throw std::runtime_error(path +
                                     ": too long for the name of a socket, which has at most " +
                                     std::to_string(sizeof theAddress.sun_path - 1) + " bytes");
        }
        theAddress.sun_family = AF_UNIX;
        path.copy(&theAddress.sun_path[0], path.size());
        const FileDescriptor folder(LockedFolderOf(path));
        RefuseSecondWatcher(path);
        // A watcher that was killed has left its socket behind.
        (void)unlink(path.c_str());
        constexpr int kMostWaiting = 64;
        if (fchmod(socket.Number(), S_IRUSR | S_IWUSR) != 0 ||
            bind(socket.Number(), kAddress, sizeof theAddress) != 0) {
            ThrowSystemError(path);
        }
        for (const int signo : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
            (void)std::signal(signo, EndWatching);
        }
        if (listen(socket.Number(), kMostWaiting) != 0) {
            ThrowSystemError(path);
        }
    }

    int Number() const { return socket.Number(); }

  private:
    /// Two watchers that begin at the same time must not replace each other's socket.
    static int LockedFolderOf(const std::string& path) {
        const std::string folder =
            std::filesystem::absolute(std::filesystem::path(path)).parent_path();
        const int number = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (number < 0 || flock(number, LOCK_EX) != 0) {
            ThrowSystemError(folder);
        }
        return number;
    }

    static void RefuseSecondWatcher(const std::string& path) {
        const FileDescriptor other(
            ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        if (connect(other.Number(), kAddress, sizeof theAddress) == 0 || errno == EAGAIN) {
            throw std::runtime_error(path + ": somebody is already watching these calls");
        }
    }

    FileDescriptor socket;
};

/// A process that makes calls.
struct Caller {
    explicit Caller(int newSocket) : socket(newSocket) {
        ucred credentials{};
        socklen_t size = sizeof credentials;
        (void)getsockopt(newSocket, SOL_SOCKET, SO_PEERCRED, &credentials, &size);
        process = credentials.pid;
    }

    FileDescriptor socket;
    pid_t process = 0;
    std::uint64_t calls = 0;  ///< of the present session
    std::chrono::nanoseconds time{0};
    bool isOpen = true;
};

/// Writes the calls, those of each session below a line that says whose they are.
class Report {
  public:
    explicit Report(std::ostream& newOut) : out(newOut) {}

    void Add(Caller& caller, const WatchMessage& message) {
        if (message.missed > 0) {
            out << kNoTime << message.missed << (message.missed == 1 ? " call" : " calls")
                << " not shown\n";
        }
        const bool begins = message.call == "sys_sdkInitialize";
        if (begins || &caller != last) {
            out << WithoutControls(message.program) << "[" << caller.process << "]"
                << (message.request.empty() ? "" : " ") << WithoutControls(message.request) << "\n";
            last = &caller;
        }
        if (begins) {
            caller.calls = 0;
            caller.time = {};
        } else {
            caller.calls += message.missed;
        }
        out << LineAbout(message) << "\n";
        if (message.kind == binding::WatchKind::call) {
            ++caller.calls;
            caller.time += message.time;
        }
        if (message.call == "sys_sdkShutdown") {
            out << TimeText(caller.time) << "  all " << caller.calls << " calls\n";
        }
    }

    void Forget(const Caller& caller) {
        if (&caller == last) {
            last = nullptr;
        }
    }

  private:
    std::ostream& out;
    const Caller* last = nullptr;
};

/// Reads all messages of @p caller that have arrived.
void Read(Caller& caller, Report& report) {
    std::array<std::byte, binding::kMostWatchBytes> bytes{};
    while (true) {
        const ssize_t size = recv(caller.socket.Number(), bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (size < 0 && errno == EINTR) {
            continue;
        }
        if (size < 0 && errno == EAGAIN) {
            return;
        }
        const auto message = size > 0 ? binding::DecodedWatchMessage(
                                            std::span(bytes).first(static_cast<std::size_t>(size)))
                                      : std::nullopt;
        if (!message) {
            if (size > 0) {
                (void)std::fprintf(stderr,
                                   "kestal-sim: process %d is of another version; its calls are "
                                   "not shown\n",
                                   static_cast<int>(caller.process));
            }
            caller.isOpen = false;
            return;
        }
        report.Add(caller, *message);
    }
}

void Watch(const Arguments& /*arguments*/, std::ostream& out) {
    const std::string device = binding::DevicePath();
    (void)Contents(device);
    const Listener listener(binding::WatchSocketPath(device));
    (void)std::fprintf(stderr, "Watching the calls that are made on %s; Ctrl-C ends it.\n",
                       device.c_str());
    Report report(out);
    std::vector<std::unique_ptr<Caller>> callers;
    while (true) {
        std::vector<pollfd> waiting = {{.fd = listener.Number(), .events = POLLIN, .revents = 0}};
        for (const auto& caller : callers) {
            waiting.push_back({.fd = caller->socket.Number(), .events = POLLIN, .revents = 0});
        }
        if (poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) {
            ThrowSystemError("poll");
        }
        for (const auto& caller : callers) {
            Read(*caller, report);
            if (!caller->isOpen) {
                report.Forget(*caller);
            }
        }
        std::erase_if(callers, [](const auto& caller) { return !caller->isOpen; });
        // cppcheck-suppress nullPointer ; nobody asks for the address
        const int accepted = accept4(listener.Number(), nullptr, nullptr, SOCK_CLOEXEC);
        if (accepted >= 0) {
            callers.push_back(std::make_unique<Caller>(accepted));
        }
        out.flush();
    }
}

}  // namespace

Command WatchCommand() {
    return {.names = {"watch"},
            .description = "Show the calls of the platform as requests make them",
            .run = Watch};
}
