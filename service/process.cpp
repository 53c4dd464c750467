#include "service/process.h"

const char* gProgramName = "";

OperationDeadline gOperationDeadline;
