#include "bindings/posix/datagram.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

#include <cerrno>
#include <cstddef>

#include "bindings/posix/files/file_io.h"

namespace binding {

namespace {

bool LimitWaiting(int sender, std::chrono::milliseconds patience) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(patience);
    const auto rest = std::chrono::microseconds(patience - seconds);
    timeval limit{};
    limit.tv_sec = static_cast<decltype(limit.tv_sec)>(seconds.count());
    limit.tv_usec = static_cast<decltype(limit.tv_usec)>(rest.count());
    return setsockopt(sender, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit)) == 0;
}

}  // namespace

int CheckSocketName(std::string_view name) {
    if (name.empty() || (name.front() != '/' && name.front() != '@')) {
        return EINVAL;
    }
    return name.size() < sizeof(sockaddr_un::sun_path) ? 0 : ENAMETOOLONG;
}

int SendDatagram(std::string_view name, std::string_view text, std::chrono::milliseconds patience) {
    if (const int error = CheckSocketName(name); error != 0) {
        return error;
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
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
    const auto send = [&](int flags) {
        const ssize_t sent = sendto(
            sender.Number(), text.data(), text.size(), MSG_NOSIGNAL | flags,
            // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as sockets want it
            reinterpret_cast<const sockaddr*>(&address), length);
        return sent < 0 ? errno : 0;
    };
    const int error = send(MSG_DONTWAIT);
    const bool mayWait = error == EAGAIN && patience > std::chrono::milliseconds(0);
    return mayWait && LimitWaiting(sender.Number(), patience) ? send(0) : error;
}

}  // namespace binding
