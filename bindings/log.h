// The simulator's own lines in the debug log.
#pragma once

#include "platform/toru_dbg.h"

#define SIMULATOR_MODULE "SIMULATOR"

/// One line; @p format is a literal. A macro because the compiler checks a literal format against
/// its arguments.
#define SIMULATOR_LOG(level, format, ...)                                            \
    toru_dbg_log(SIMULATOR_MODULE, (level), "[%s]:[%s] - " format, SIMULATOR_MODULE, \
                 toru_dbg_get_level_name(level) __VA_OPT__(, ) __VA_ARGS__)
