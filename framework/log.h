// How the product writes its log lines. Each macro completes the format with the prefix that lines
// of its kind begin with and supplies the arguments for the prefix: module tag, level name and the
// signature of the function that logs. What stands at a call is the rest of the format, a literal,
// and the arguments for it. They are macros because the compiler checks only a literal format
// against its arguments.
//
// Levels: error (3) a platform call or a request failed; notice (5) the process or a data call
// changes its state; information (6) something that happens once per request or seldom; debug (7)
// everything else.
#pragma once

#include "platform/toru_dbg.h"

#define KESTAL_MODULE "KESTAL_CGI"

/// Names the function in its log lines; stands first in its body. The text is part of what the
/// product logs and does not depend on the compiler, and only the function that it names contains
/// it: a function that logs in the name of its caller takes `const char* signature` as its first
/// parameter. Either way, the macros below that log a signature take it from `signature`.
#define KESTAL_SIGNATURE(text) static const char* const signature = "" text

// Lines without a signature: "[module]:[level] - " and the format.

/// One line of the module @p module.
#define KESTAL_MODULE_LOG(module, level, format, ...)                \
    toru_dbg_log((module), (level), "[%s]:[%s] - " format, (module), \
                 toru_dbg_get_level_name(level) __VA_OPT__(, ) __VA_ARGS__)

/// The same, first to the system log.
#define KESTAL_MODULE_SYSLOG(module, level, format, ...)                            \
    do {                                                                            \
        toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "[%s]:[%s] - " format, (module),  \
                        toru_dbg_get_level_name(level) __VA_OPT__(, ) __VA_ARGS__); \
        KESTAL_MODULE_LOG(module, level, format __VA_OPT__(, ) __VA_ARGS__);        \
    } while (false)

/// One line of the product's own module.
#define KESTAL_LOG_PLAIN(level, format, ...) \
    KESTAL_MODULE_LOG(KESTAL_MODULE, level, format __VA_OPT__(, ) __VA_ARGS__)

/// The same, first to the system log.
#define KESTAL_SYSLOG_PLAIN(level, format, ...) \
    KESTAL_MODULE_SYSLOG(KESTAL_MODULE, level, format __VA_OPT__(, ) __VA_ARGS__)

// Lines of a function: "[module]:[level] - signature - " and the format.

/// One line.
#define KESTAL_LOG(level, format, ...) \
    KESTAL_LOG_PLAIN(level, "%s - " format, signature __VA_OPT__(, ) __VA_ARGS__)

/// The same, first to the system log.
#define KESTAL_SYSLOG(level, format, ...) \
    KESTAL_SYSLOG_PLAIN(level, "%s - " format, signature __VA_OPT__(, ) __VA_ARGS__)

/// A debug line.
#define KESTAL_DEBUG(format, ...) KESTAL_LOG(TORU_DBG_DEBUG, format __VA_OPT__(, ) __VA_ARGS__)

/// A failure: to the system log and to the debug log, in this order.
#define KESTAL_FAILURE(format, ...) KESTAL_SYSLOG(TORU_DBG_ERROR, format __VA_OPT__(, ) __VA_ARGS__)

#define KESTAL_BEGIN() KESTAL_DEBUG("BEGIN")
#define KESTAL_END() KESTAL_DEBUG("END")
#define KESTAL_END_RETURNING(result) KESTAL_DEBUG("END returning %d", (result))

// Lines of a function without the usual " - " after the signature: "[module]:[level] - signature"
// and the format, which itself begins with a separator such as " " or "- ".

/// One line.
#define KESTAL_LOG_UNSEPARATED(level, format, ...) \
    KESTAL_LOG_PLAIN(level, "%s" format, signature __VA_OPT__(, ) __VA_ARGS__)

/// A debug line.
#define KESTAL_DEBUG_UNSEPARATED(format, ...) \
    KESTAL_LOG_UNSEPARATED(TORU_DBG_DEBUG, format __VA_OPT__(, ) __VA_ARGS__)

/// A failure: to the system log and to the debug log, in this order.
#define KESTAL_FAILURE_UNSEPARATED(format, ...) \
    KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, "%s" format, signature __VA_OPT__(, ) __VA_ARGS__)
