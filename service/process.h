// What the whole process shares; written before the keep-alive thread starts.
#pragma once

#include "service/keepalive/keep_alive_handler.h"

/// Base name of the process's first argument: its name in log lines and for the watchdog.
extern const char* gProgramName;

/// The process's only keep-alive handler.
extern KeepAliveHandler gKeepAliveHandler;
