#include "bindings/simulator/system_log.h"

#include <cerrno>
#include <cstdlib>

#include "bindings/simulator/datagram.h"
#include "bindings/simulator/log_line.h"

namespace simulator {

namespace {

std::string_view SocketName() {
    const char* name = std::getenv("KESTAL_SYSLOG");
    return name == nullptr || *name == '\0' ? "/dev/log" : name;
}

}  // namespace

void SendToSystemLog(const char* name, int priority, const char* format, std::va_list arguments) {
    const int callersError = errno;
    LogLine line = LogLine::ForSystemLog(name, priority);
    errno = callersError;
    line.Append(format, arguments);
    (void)SendDatagram(SocketName(), line.Text());
    errno = callersError;
}

}  // namespace simulator
