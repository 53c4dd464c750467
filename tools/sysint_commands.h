#pragma once

#include "tools/tool.h"

/// sysintcli: makes calls of the system-interface SDK, one each time it runs.
/// @p bindingCodes are the names of the codes of the binding with which the tool is linked.
Tool SysintTool(binding::Enumeration bindingCodes = {});
