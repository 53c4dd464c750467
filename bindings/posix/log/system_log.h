// Lines for the system log of the machine.
#pragma once

#include <cstdarg>

namespace binding {

/// Sends a line of the program @p name with a syslog @p priority to the system log. A failure that
/// comes again is held back when @p holdsRepeats. Unlike syslog(3) it takes no locks, and waits for
/// a few milliseconds at most: a log that hangs must not stop the service. A line that the log does
/// not take by then is lost, and the next one that it takes tells how many were. Leaves errno as it
/// is.
[[gnu::format(printf, 4, 0)]] void SendToSystemLog(const char* name, int priority,
                                                   bool holdsRepeats, const char* format,
                                                   std::va_list arguments);

/// Sends what was held back, and forgets what was lost.
void EndSystemLog();

/// Tells the debug log when KESTAL_SYSLOG names no socket.
void CheckSystemLog();

}  // namespace binding
