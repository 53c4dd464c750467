// Lines for the system log of the machine.
#pragma once

#include <cstdarg>

namespace binding {

/// Sends a line of the program @p name with a syslog @p priority to the system log. A failure that
/// comes again is held back when @p holdsRepeats. Unlike syslog(3) it takes no locks, and waits for
/// a few milliseconds at most: a log that hangs must not stop the service. A line that the log does
/// not take by then is lost, and the next one that it takes says how many were lost. Leaves errno
/// as it is.
[[gnu::format(printf, 4, 0)]] void SendToSystemLog(const char* name, int priority,
                                                   bool holdsRepeats, const char* format,
                                                   std::va_list arguments);

/// Sends the lines that were held back, and resets the number of lost lines.
void EndSystemLog();

/// Writes a line to the debug log if KESTAL_SYSLOG is set to something that cannot name a socket.
void CheckSystemLog();

}  // namespace binding
