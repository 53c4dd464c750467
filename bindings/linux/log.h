// The Linux binding's own lines in the debug log.
#pragma once

#include "bindings/log.h"

/// One line; @p format is a literal.
#define LINUX_LOG(level, format, ...) \
    BINDING_LOG_AS("LINUX", level, format __VA_OPT__(, ) __VA_ARGS__)
