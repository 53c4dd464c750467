#include "service/process.h"

const char* gProgramName = "";

KeepAliveHandler gKeepAliveHandler;

OperationDeadline gOperationDeadline;
