// Macros with which bindings write lines to the debug log.
#pragma once

#include "platform/toru_dbg.h"

/// Writes one line of @p module; @p format is a literal. It is a macro because the compiler can
/// check only a literal format against its arguments.
#define BINDING_LOG_AS(module, level, format, ...)                   \
    toru_dbg_log((module), (level), "[%s]:[%s] - " format, (module), \
                 toru_dbg_get_level_name(level) __VA_OPT__(, ) __VA_ARGS__)

/// Writes one line of the code that all bindings share.
#define BINDING_LOG(level, format, ...) \
    BINDING_LOG_AS("BINDING", level, format __VA_OPT__(, ) __VA_ARGS__)
