#pragma once

#include "tools/tool.h"

/// sysintcli: makes calls of the system-interface SDK, one each time it runs.
Tool SysintTool();
