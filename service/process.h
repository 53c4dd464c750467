// What the whole process shares. But for the deadline's own state, it is written before the
// keep-alive thread starts.
#pragma once

#include "service/keepalive/keep_alive_handler.h"
#include "service/operation_deadline.h"

/// Base name of the process's first argument: its name in log lines and for the watchdog.
extern const char* gProgramName;

/// The process's only keep-alive handler.
extern KeepAliveHandler gKeepAliveHandler;

/// The deadline of what the main thread does.
extern OperationDeadline gOperationDeadline;
