// How the product writes its log lines: module tag, level name and the function's own signature are
// filled in here, so that a call site holds its exact format and its own arguments, nothing else.
// They are macros because the compiler checks a literal format against its arguments.
//
// Levels: error (3) a platform call or a request failed; notice (5) the process or a data call
// changes its state; information (6) something that happens once per request or seldom; debug (7)
// everything else.
#pragma once

#include "platform/toru_dbg.h"

#define KESTAL_MODULE "KESTAL_CGI"

/// Names the function in its own log lines. The text is part of what the product logs and does not
/// depend on the compiler.
#define KESTAL_SIGNATURE(text) static constexpr const char* kSignature = text

/// One line of the module @p module without signature: the format begins with "[%s]:[%s] - ".
#define KESTAL_MODULE_LOG(module, level, format, ...) \
    toru_dbg_log((module), (level), format, (module), \
                 toru_dbg_get_level_name(level) __VA_OPT__(, ) __VA_ARGS__)

/// The same, first to the system log.
#define KESTAL_MODULE_SYSLOG(module, level, format, ...)                            \
    do {                                                                            \
        toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, format, (module),                 \
                        toru_dbg_get_level_name(level) __VA_OPT__(, ) __VA_ARGS__); \
        KESTAL_MODULE_LOG(module, level, format __VA_OPT__(, ) __VA_ARGS__);        \
    } while (false)

/// One line without signature.
#define KESTAL_LOG_PLAIN(level, format, ...) \
    KESTAL_MODULE_LOG(KESTAL_MODULE, level, format __VA_OPT__(, ) __VA_ARGS__)

/// The same, first to the system log.
#define KESTAL_SYSLOG_PLAIN(level, format, ...) \
    KESTAL_MODULE_SYSLOG(KESTAL_MODULE, level, format __VA_OPT__(, ) __VA_ARGS__)

/// One line of a function that has a KESTAL_SIGNATURE: the format begins with "[%s]:[%s] - %s".
#define KESTAL_LOG(level, format, ...) \
    KESTAL_LOG_PLAIN(level, format, kSignature __VA_OPT__(, ) __VA_ARGS__)

/// The same, first to the system log.
#define KESTAL_SYSLOG(level, format, ...) \
    KESTAL_SYSLOG_PLAIN(level, format, kSignature __VA_OPT__(, ) __VA_ARGS__)

/// A debug line.
#define KESTAL_DEBUG(format, ...) KESTAL_LOG(TORU_DBG_DEBUG, format __VA_OPT__(, ) __VA_ARGS__)

/// A failure: to the system log and to the debug log, in this order.
#define KESTAL_FAILURE(format, ...) KESTAL_SYSLOG(TORU_DBG_ERROR, format __VA_OPT__(, ) __VA_ARGS__)

#define KESTAL_BEGIN() KESTAL_DEBUG("[%s]:[%s] - %s - BEGIN")
#define KESTAL_END() KESTAL_DEBUG("[%s]:[%s] - %s - END")
#define KESTAL_END_RETURNING(result) KESTAL_DEBUG("[%s]:[%s] - %s - END returning %d", (result))
