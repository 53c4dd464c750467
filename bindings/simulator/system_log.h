// Lines for the system log of the machine.
#pragma once

#include <cstdarg>

namespace simulator {

/// Sends a line of the program @p name with a syslog @p priority to the system log. Unlike
/// syslog(3) it takes no locks and never waits: a log that hangs must not stop the service. A line
/// that the log does not take at once is lost. Leaves errno as it is.
[[gnu::format(printf, 3, 0)]] void SendToSystemLog(const char* name, int priority,
                                                   const char* format, std::va_list arguments);

}  // namespace simulator
