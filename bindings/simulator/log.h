// The simulator's own lines in the debug log.
#pragma once

#include "bindings/log.h"

/// One line; @p format is a literal.
#define SIMULATOR_LOG(level, format, ...) \
    BINDING_LOG_AS("SIMULATOR", level, format __VA_OPT__(, ) __VA_ARGS__)
