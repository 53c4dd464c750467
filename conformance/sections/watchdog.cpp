// platform/watchdog.h, and the messages that it sends to the service manager.
#include "platform/watchdog.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "conformance/sections/sections.h"

namespace conformance {

namespace {

constexpr const char* kApplication = "kestal-conformance";

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

    /// The messages since the last call; empty when there were none.
    std::string Heard() const {
        std::string heard;
        std::array<char, 1024> datagram{};
        for (;;) {
            const ssize_t size = recv(socket, datagram.data(), datagram.size(), 0);
            if (size < 0) {
                return heard;
            }
            heard += std::string(heard.empty() ? "" : " ") +
                     Quoted({datagram.data(), static_cast<std::size_t>(size)});
        }
    }

  private:
    int socket;
};

void Tell(Probe& probe, const ServiceManager& manager, const std::string& name,
          const std::string& arguments, const std::function<int()>& call) {
    int code = 0;
    probe.Tell(
        name, arguments, [&] { code = call(); },
        [&] {
            const std::string heard = manager.Heard();
            return std::to_string(code) + ", systemd hears " + (heard.empty() ? "nothing" : heard);
        });
}

}  // namespace

void ExamineWatchdog(Probe& probe, const Options& /*options*/) {
    const ServiceManager manager;
    Tell(probe, manager, "watchdog_application_register", "register",
         [] { return watchdog_application_register(kApplication, WATCHDOG_REGISTER); });
    Tell(probe, manager, "watchdog_application_send_keep_alive", "",
         [] { return watchdog_application_send_keep_alive(kApplication); });
    Tell(probe, manager, "watchdog_application_register", "unregister",
         [] { return watchdog_application_register(kApplication, WATCHDOG_UNREGISTER); });
}

}  // namespace conformance
