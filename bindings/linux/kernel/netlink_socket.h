// Sockets by which the kernel tells about itself.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

namespace binding {

/// Opens a socket that never blocks, for @p protocol (NETLINK_...), and joins @p groups, a bit
/// mask. Throws std::system_error.
int OpenNetlink(int protocol, std::uint32_t groups);

/// Some messages of the kernel did not fit into the socket.
constexpr ssize_t kMessagesLost = -2;

/// Reads the next datagram of the kernel; those of other processes are skipped. Returns its size,
/// -1 when there is none at the moment, or kMessagesLost.
ssize_t ReceiveFromKernel(int socket, void* buffer, std::size_t size);

}  // namespace binding
