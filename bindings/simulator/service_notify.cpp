#include "bindings/simulator/service_notify.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include "bindings/simulator/file_io.h"

namespace simulator {

namespace {

std::string_view SocketName() {
    const char* name = std::getenv("NOTIFY_SOCKET");
    return name == nullptr ? "" : name;
}

}  // namespace

bool HasServiceManager() {
    return !SocketName().empty();
}

int NotifyServiceManager(std::string_view state) {
    const std::string_view name = SocketName();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.empty() || (name.front() != '/' && name.front() != '@')) {
        return EINVAL;
    }
    if (name.size() >= sizeof(address.sun_path)) {
        return ENAMETOOLONG;
    }
    name.copy(address.sun_path, name.size());
    if (name.front() == '@') {
        // The name of an abstract socket begins with a NUL and has no terminator.
        address.sun_path[0] = '\0';
    }
    const FileDescriptor sender(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (sender.Number() < 0) {
        return errno;
    }
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    const ssize_t sent =
        sendto(sender.Number(), state.data(), state.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
               reinterpret_cast<const sockaddr*>(&address), length);
    return sent < 0 ? errno : 0;
}

}  // namespace simulator
