#include "bindings/linux/kernel/netlink_socket.h"

#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "bindings/posix/files/file_io.h"

namespace binding {

int OpenNetlink(int protocol, std::uint32_t groups) {
    const int descriptor = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, protocol);
    if (descriptor < 0) {
        ThrowSystemError("netlink: socket");
    }
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = groups;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as sockets want it
    if (bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        const int error = errno;
        (void)close(descriptor);
        errno = error;
        ThrowSystemError("netlink: bind");
    }
    return descriptor;
}

ssize_t ReceiveFromKernel(int socket, void* buffer, std::size_t size) {
    while (true) {
        sockaddr_nl sender{};
        socklen_t length = sizeof(sender);
        const ssize_t received =
            // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as sockets want it
            recvfrom(socket, buffer, size, 0, reinterpret_cast<sockaddr*>(&sender), &length);
        if (received < 0) {
            if (errno == EINTR) {
                continue;
            }
            return errno == ENOBUFS ? kMessagesLost : -1;
        }
        if (sender.nl_pid == 0) {
            return received;
        }
    }
}

}  // namespace binding
