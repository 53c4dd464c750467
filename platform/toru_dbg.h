// Debug log library of the platform.
#pragma once

/// Severity of a debug log line; the numbers are those of syslog.
enum toru_dbg_level_e {
    TORU_DBG_ERROR = 3,
    TORU_DBG_NOTICE = 5,
    TORU_DBG_INFO = 6,
    TORU_DBG_DEBUG = 7,
};

/// Priority of every line that goes to the system log: facility local1, severity critical.
constexpr int TORU_DBG_SYSLOG_PRIORITY = 138;

extern "C" {

/// Opens the debug log for the process. @p programName identifies its lines and must outlive the
/// log. Returns 0 on success.
int toru_dbg_start(const char* programName);

/// Closes the debug log; lines logged afterwards may be lost.
void toru_dbg_stop();

/// Writes one line of @p module if the number of @p level is at most that to which the log is set.
/// @p format and the arguments are those of printf.
[[gnu::format(printf, 3, 4)]] void toru_dbg_log(const char* module, int level, const char* format,
                                                ...);

/// Writes one line to the system log, whatever the level of the debug log.
[[gnu::format(printf, 2, 3)]] void toru_dbg_syslog(int priority, const char* format, ...);

/// Returns the name of a level as log lines contain it; never null, static storage.
const char* toru_dbg_get_level_name(int level);
}
