// What the whole process shares. It is written before the keep-alive thread starts, except for the
// state of the deadline, which is atomic.
#pragma once

#include "service/operation_deadline.h"

/// Base name of the process's first argument: its name in log lines and for the watchdog.
extern const char* gProgramName;

/// The deadline for what the main thread does.
extern OperationDeadline gOperationDeadline;
