#include "bindings/linux/kernel/unix_socket.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace binding {

std::optional<sockaddr_un> SocketAddress(const std::string& path) {
    sockaddr_un address{};
    if (path.size() >= sizeof(address.sun_path)) {
        errno = ENAMETOOLONG;
        return std::nullopt;
    }
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    return address;
}

int ConnectToSocket(const std::string& path, int type) {
    const auto address = SocketAddress(path);
    const int descriptor = address ? socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0) : -1;
    if (descriptor < 0) {
        return -1;
    }
    // Without a name, the kernel gives the socket an abstract one, which leaves no file behind.
    sockaddr_un own{};
    own.sun_family = AF_UNIX;
    // NOLINTBEGIN(cppcoreguidelines-pro-type-reinterpret-cast): as sockets want it
    const bool canReceive =
        type != SOCK_DGRAM ||
        bind(descriptor, reinterpret_cast<const sockaddr*>(&own), sizeof(own.sun_family)) == 0;
    const bool isConnected =
        canReceive &&
        connect(descriptor, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0;
    // NOLINTEND(cppcoreguidelines-pro-type-reinterpret-cast)
    return isConnected ? descriptor : CloseAfterFailure(descriptor);
}

int CloseAfterFailure(int descriptor) {
    const int error = errno;
    (void)close(descriptor);
    errno = error;
    return -1;
}

}  // namespace binding
