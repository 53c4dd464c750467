#pragma once

#include "tools/tool.h"

/// sysintcli: the calls of the system-interface SDK, each in a round of its own.
Tool SysintTool();
