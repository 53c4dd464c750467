#include "bindings/posix/log/system_log.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>

#include "bindings/log.h"
#include "bindings/posix/datagram.h"
#include "bindings/posix/log/log_line.h"
#include "bindings/posix/log/repeated_lines.h"

namespace binding {

namespace {

/// How long to wait for the system log. Long enough for a log that needs milliseconds for a line.
/// Short enough for one that hangs while every call of the device fails, or while the process
/// crashes, either of which causes about 50 lines.
constexpr std::chrono::milliseconds kPatience(5);

constinit RepeatedLines repeats;
std::atomic<unsigned int> linesLost = 0;

const char* SocketName() {
    const char* name = std::getenv("KESTAL_SYSLOG");
    return name == nullptr || *name == '\0' ? "/dev/log" : name;
}

void Send(LogLine& line, std::chrono::milliseconds patience = kPatience) {
    const unsigned int lost = linesLost.exchange(0);
    if (lost > 0) {
        line.Note(" [%u lines lost before]", lost);
    }
    if (SendDatagram(SocketName(), line.Text(), patience) != 0) {
        linesLost += lost + 1;
    }
}

void TellHeld(std::string_view text, unsigned int count, std::chrono::seconds age) {
    LogLine line;
    line.Append(text);
    line.NoteHeld(count, age);
    // There may be many lines at once, and a crashing process has little time. So once a line has
    // been lost, the others are not waited for.
    Send(line, linesLost == 0 ? kPatience : std::chrono::milliseconds(0));
}

/// Whether @p message has the level 3: the level's name then follows the module.
bool IsFailure(std::string_view message) {
    const std::size_t endOfModule = message.find("]:[");
    return message.starts_with('[') && endOfModule != std::string_view::npos &&
           message.substr(endOfModule).starts_with("]:[ERROR]");
}

}  // namespace

void SendToSystemLog(const char* name, int priority, bool holdsRepeats, const char* format,
                     std::va_list arguments) {
    const int callersError = errno;
    LogLine line = LogLine::ForSystemLog(name, priority);
    errno = callersError;
    line.Append(format, arguments);
    const unsigned int count =
        holdsRepeats ? CountLine(repeats, line.Text(), IsFailure(line.Message()), TellHeld) : 1;
    if (count > 0) {
        line.NoteCount(count);
        Send(line);
    }
    errno = callersError;
}

void EndSystemLog() {
    repeats.End(LogTime(), TellHeld);
    linesLost = 0;
}

void CheckSystemLog() {
    if (CheckSocketName(SocketName()) != 0) {
        BINDING_LOG(TORU_DBG_ERROR,
                    "KESTAL_SYSLOG: expected a path from the root or \"@\" and a name, at most 107 "
                    "bytes, found \"%s\" (lines for the system log are lost)",
                    SocketName());
    }
}

}  // namespace binding
