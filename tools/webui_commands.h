#pragma once

#include "tools/tool.h"

/// webui_cli: makes calls of the web UI configuration library.
/// @p bindingCodes are the names of the codes of the binding with which the tool is linked.
Tool WebuiTool(binding::Enumeration bindingCodes = {});
