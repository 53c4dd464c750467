#include "bindings/simulator/datagram.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstddef>

#include "bindings/simulator/file_io.h"

namespace simulator {

int SendDatagram(std::string_view name, std::string_view text) {
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
        sendto(sender.Number(), text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
               // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as sockets want it
               reinterpret_cast<const sockaddr*>(&address), length);
    return sent < 0 ? errno : 0;
}

}  // namespace simulator
