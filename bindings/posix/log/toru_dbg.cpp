// The debug log. Each line is formatted on the stack and written with one system call, so that
// logging works at any time, even in signal handlers.
#include "platform/toru_dbg.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "bindings/log.h"
#include "bindings/posix/log/log_line.h"
#include "bindings/posix/log/repeated_lines.h"
#include "bindings/posix/log/system_log.h"
#include "version/version.h"

namespace {

constexpr int kUnknown = -1;
constexpr std::array<const char*, 8> kLevelNames = {"EMERG",   "ALERT",  "CRIT", "ERROR",
                                                    "WARNING", "NOTICE", "INFO", "DEBUG"};

// Each value is determined on first use, because the product may log before it starts the log.
std::atomic<int> threshold = kUnknown;
std::atomic<int> destination = kUnknown;
/// Whether the destination is the journal, which wants the level of each line.
std::atomic<bool> isJournal = false;
std::atomic<const char*> programName = nullptr;

/// Whether only the beginning of the last line could be written.
std::atomic<bool> endsInHalfALine = false;

/// Whether the first line of the process, which tells the version, has been written.
std::atomic<bool> versionTold = false;

constinit binding::RepeatedLines repeats;

const char* ProgramName() {
    const char* name = programName.load();
    return name == nullptr ? program_invocation_short_name : name;
}

int ThresholdFromEnvironment() {
    const char* text = std::getenv("KESTAL_LOG_LEVEL");
    const std::string_view digits = text == nullptr ? "" : text;
    int level = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), level);
    const bool usable = error == std::errc() && end == digits.data() + digits.size() &&
                        level >= 0 && level <= TORU_DBG_DEBUG;
    return usable ? level : TORU_DBG_NOTICE;
}

int Threshold() {
    int level = threshold.load(std::memory_order_relaxed);
    if (level == kUnknown) {
        level = ThresholdFromEnvironment();
        threshold = level;
    }
    return level;
}

/// Whether the standard error stream leads to the journal, as whoever has started the process says.
bool IsJournal() {
    const char* const text = std::getenv("JOURNAL_STREAM");
    const std::string_view named = text == nullptr ? "" : text;
    const char* const end = named.data() + named.size();
    dev_t device = 0;
    ino_t inode = 0;
    const auto [colon, error] = std::from_chars(named.data(), end, device);
    if (error != std::errc() || colon == end || *colon != ':') {
        return false;
    }
    const auto [rest, otherError] = std::from_chars(colon + 1, end, inode);
    struct stat state = {};
    return otherError == std::errc() && rest == end && fstat(STDERR_FILENO, &state) == 0 &&
           state.st_dev == device && state.st_ino == inode;
}

/// Opens the log without blocking, so that neither opening nor a later write waits for the reader
/// of a pipe.
int OpenDestination() {
    const char* path = std::getenv("KESTAL_LOG");
    const int file =
        path == nullptr || *path == '\0'
            ? -1
            : open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0640);
    isJournal = file < 0 && IsJournal();
    return file < 0 ? STDERR_FILENO : file;
}

void Close(int file) {
    if (file > STDERR_FILENO) {
        (void)close(file);
    }
}

int Destination() {
    int file = destination.load();
    if (file == kUnknown) {
        const int opened = OpenDestination();
        if (destination.compare_exchange_strong(file, opened)) {
            return opened;
        }
        Close(opened);
    }
    return file;
}

/// Whether a write to @p file would return at once. This is for the standard error stream, which we
/// did not open and which may block. A pipe that is reported as writable has room for a whole line;
/// a pipe without a reader is not writable.
bool IsWritable(int file) {
    pollfd state{.fd = file, .events = POLLOUT, .revents = 0};
    return poll(&state, 1, 0) == 1 && state.revents == POLLOUT;
}

/// Writes @p text and returns how many bytes were written.
std::size_t Put(int file, std::string_view text) {
    if (file == STDERR_FILENO && !IsWritable(file)) {
        return 0;
    }
    ssize_t written = -1;
    do {
        written = write(file, text.data(), text.size());
    } while (written < 0 && errno == EINTR);
    return written < 0 ? 0 : static_cast<std::size_t>(written);
}

/// Whether @p file is an empty regular file, as after a rotation of the log.
bool IsEmpty(int file) {
    struct stat state = {};
    return fstat(file, &state) == 0 && S_ISREG(state.st_mode) && state.st_size == 0;
}

void Write(std::string_view line) {
    const int file = Destination();
    if (endsInHalfALine.exchange(false) && !IsEmpty(file) && Put(file, "\n") == 0) {
        endsInHalfALine = true;
        return;
    }
    const std::size_t written = Put(file, line);
    if (written > 0 && written < line.size()) {
        endsInHalfALine = true;
    }
}

/// The beginning of a line of @p level.
binding::LogLine NewLine(int level) {
    (void)Destination();
    return binding::LogLine::ForDebugLog(
        ProgramName(), isJournal ? std::optional(std::max(level, 0)) : std::nullopt);
}

void TellHeld(std::string_view message, unsigned int count, std::chrono::seconds age) {
    // Only failures are held back.
    binding::LogLine line = NewLine(TORU_DBG_ERROR);
    line.Append(message);
    line.NoteHeld(count, age);
    Write(line.Finish());
}

/// Repeated lines are held back, except at level 7 (DEBUG), where every line is wanted.
bool HoldsRepeats() {
    return Threshold() < TORU_DBG_DEBUG;
}

/// How many occurrences @p message of @p level stands for; 0 when it is held back.
unsigned int Count(int level, std::string_view message) {
    return HoldsRepeats() ? binding::CountLine(repeats, message, level == TORU_DBG_ERROR, TellHeld)
                          : 1;
}

/// Separate from toru_dbg_log, because most lines are above the threshold and should not pay for
/// the stack space of a line.
[[gnu::noinline, gnu::format(printf, 2, 0)]] void WriteLine(int level, const char* format,
                                                            std::va_list arguments) {
    const int callersError = errno;
    binding::LogLine line = NewLine(level);
    errno = callersError;
    line.Append(format, arguments);
    const unsigned int count = Count(level, line.Message());
    if (count > 0) {
        line.NoteCount(count);
        Write(line.Finish());
    }
    errno = callersError;
}

/// Reports everything that is held back. As a destructor it also runs when the process exits
/// without toru_dbg_stop, for example in a signal handler.
[[gnu::destructor]] void TellAllHeld() {
    const int callersError = errno;
    repeats.End(binding::LogTime(), TellHeld);
    binding::EndSystemLog();
    errno = callersError;
}

}  // namespace

int toru_dbg_start(const char* newProgramName) {
    TellAllHeld();
    programName = newProgramName;
    threshold = ThresholdFromEnvironment();
    Close(destination.exchange(OpenDestination()));
    if (!versionTold.exchange(true)) {
        BINDING_LOG(TORU_DBG_NOTICE, "%s %s", ProgramName(), KestalVersion());
    }
    binding::CheckSystemLog();
    return 0;
}

void toru_dbg_stop() {
    TellAllHeld();
    Close(destination.exchange(kUnknown));
}

void toru_dbg_log(const char* /*module*/, int level, const char* format, ...) {
    if (level > Threshold()) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    WriteLine(level, format, arguments);
    va_end(arguments);
}

void toru_dbg_syslog(int priority, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    binding::SendToSystemLog(ProgramName(), priority, HoldsRepeats(), format, arguments);
    va_end(arguments);
}

const char* toru_dbg_get_level_name(int level) {
    return level >= 0 && level <= TORU_DBG_DEBUG ? kLevelNames.at(static_cast<std::size_t>(level))
                                                 : "UNKNOWN";
}
