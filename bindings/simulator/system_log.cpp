#include "bindings/simulator/system_log.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "bindings/simulator/datagram.h"

namespace simulator {

namespace {

std::string_view SocketName() {
    const char* name = std::getenv("KESTAL_SYSLOG");
    return name == nullptr || *name == '\0' ? "/dev/log" : name;
}

}  // namespace

void SendToSystemLog(const char* name, int priority, const char* format, std::va_list arguments) {
    const int callersError = errno;
    std::array<char, 4096> line{};
    // Without a time: the system log notes when a line came.
    const int head =
        std::snprintf(line.data(), line.size(), "<%d>%.64s[%d]: ", priority, name, getpid());
    const auto begin = static_cast<std::size_t>(std::max(head, 0));
    errno = callersError;
    const int wanted = std::vsnprintf(line.data() + begin, line.size() - begin, format, arguments);
    const std::size_t length =
        std::min(begin + static_cast<std::size_t>(std::max(wanted, 0)), line.size() - 1);
    (void)SendDatagram(SocketName(), {line.data(), length});
    errno = callersError;
}

}  // namespace simulator
