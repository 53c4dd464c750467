// platform/watchdog.h, and the messages that it sends to the service manager.
#include "platform/watchdog.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "conformance/sections/sections.h"

namespace conformance {

namespace {

constexpr const char* kRegister = "watchdog_application_register";
constexpr const char* kKeepAlive = "watchdog_application_send_keep_alive";
constexpr const char* kApplication = "kestal-conformance";

using Messages = std::vector<std::string>;

/// Takes the place of the service manager: a socket that NOTIFY_SOCKET names for the lifetime of
/// the object.
class ServiceManager {
  public:
    ServiceManager() : socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        // In the abstract namespace, so that no file remains.
        const std::string name = "kestal-conformance-" + std::to_string(getpid());
        std::memcpy(&address.sun_path[1], name.data(), name.size());
        const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bind() takes this type
        const auto* const bound = reinterpret_cast<const sockaddr*>(&address);
        if (socket < 0 || bind(socket, bound, size) != 0) {
            throw std::runtime_error("no socket for the watchdog: " +
                                     std::string(std::strerror(errno)));
        }
        (void)setenv("NOTIFY_SOCKET", ("@" + name).c_str(), 1);
    }
    ~ServiceManager() {
        (void)unsetenv("NOTIFY_SOCKET");
        (void)close(socket);
    }
    ServiceManager(const ServiceManager&) = delete;
    ServiceManager& operator=(const ServiceManager&) = delete;

    /// The messages since the last call.
    Messages Heard() const {
        Messages heard;
        std::array<char, 1024> datagram{};
        for (;;) {
            const ssize_t size = recv(socket, datagram.data(), datagram.size(), 0);
            if (size < 0) {
                return heard;
            }
            heard.emplace_back(datagram.data(), static_cast<std::size_t>(size));
        }
    }

  private:
    int socket;
};

/// What a call has returned, and what systemd has heard of it.
struct Spoken {
    int code = 0;
    Messages messages;

    /// Whether a message has the line @p line.
    bool Says(const std::string& line) const {
        return std::any_of(messages.begin(), messages.end(), [&](const std::string& message) {
            return ("\n" + message + "\n").find("\n" + line + "\n") != std::string::npos;
        });
    }
};

Spoken Tell(Probe& probe, const ServiceManager& manager, const std::string& name,
            const std::string& arguments, const std::function<int()>& call) {
    Spoken spoken;
    probe.Tell(
        name, arguments, [&] { spoken.code = call(); },
        [&] {
            spoken.messages = manager.Heard();
            std::string text = std::to_string(spoken.code) + ", systemd hears";
            for (const std::string& message : spoken.messages) {
                text += " " + Quoted(message);
            }
            return text + (spoken.messages.empty() ? " nothing" : "");
        });
    return spoken;
}

/// Checks the reports of an application that is registered.
void Judge(Report& report, const Spoken& registered, const std::vector<Spoken>& reports) {
    bool isSystemd = !registered.messages.empty();
    for (const Spoken& alive : reports) {
        isSystemd = isSystemd || !alive.messages.empty();
        if (alive.code != 0) {
            report.Fail(kKeepAlive, "fails with " + std::to_string(alive.code) +
                                        " for a registered application");
        }
    }
    if (!isSystemd) {
        report.Note("systemd is not the watchdog of this device, or is not told");
        return;
    }
    if (!registered.Says("READY=1")) {
        report.Fail(kRegister, "does not say READY=1, but the watchdog is systemd");
    }
    for (const Spoken& alive : reports) {
        if (alive.code == 0 && !alive.Says("WATCHDOG=1")) {
            report.Fail(kKeepAlive, "does not say WATCHDOG=1, but the watchdog is systemd");
        }
    }
}

}  // namespace

void ExamineWatchdog(Probe& probe, const Options& /*options*/) {
    const ServiceManager manager;
    const Spoken registered = Tell(probe, manager, kRegister, "register", [] {
        return watchdog_application_register(kApplication, WATCHDOG_REGISTER);
    });
    std::vector<Spoken> reports(2);
    for (Spoken& alive : reports) {
        alive = Tell(probe, manager, kKeepAlive, "",
                     [] { return watchdog_application_send_keep_alive(kApplication); });
    }
    if (registered.code == 0) {
        Judge(probe.Told(), registered, reports);
    }
    (void)Tell(probe, manager, kRegister, "unregister",
               [] { return watchdog_application_register(kApplication, WATCHDOG_UNREGISTER); });
}

}  // namespace conformance
