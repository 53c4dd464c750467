// Sockets in the file system.
#pragma once

#include <sys/un.h>

#include <optional>
#include <string>

namespace binding {

/// The address of the socket at @p path; nothing, and errno, if the path is too long.
std::optional<sockaddr_un> SocketAddress(const std::string& path);

/// Opens a socket of @p type (SOCK_STREAM, SOCK_DGRAM) that is connected to the one at @p path and
/// does not block. The other side of a datagram socket can reply. Returns -1 and errno on failure.
int ConnectToSocket(const std::string& path, int type);

/// Closes @p descriptor and leaves errno as it is. Returns -1.
int CloseAfterFailure(int descriptor);

}  // namespace binding
