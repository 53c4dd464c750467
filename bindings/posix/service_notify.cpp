#include "bindings/posix/service_notify.h"

#include <cstdlib>

#include "bindings/posix/datagram.h"

namespace binding {

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
    return SendDatagram(SocketName(), state);
}

}  // namespace binding
