// Lines of bindings in the debug log.
#pragma once

#include "platform/toru_dbg.h"

/// One line of @p module; @p format is a literal. A macro because the compiler checks a literal
/// format against its arguments.
#define BINDING_LOG_AS(module, level, format, ...)                   \
    toru_dbg_log((module), (level), "[%s]:[%s] - " format, (module), \
                 toru_dbg_get_level_name(level) __VA_OPT__(, ) __VA_ARGS__)

/// One line of what all bindings share.
#define BINDING_LOG(level, format, ...) \
    BINDING_LOG_AS("BINDING", level, format __VA_OPT__(, ) __VA_ARGS__)
