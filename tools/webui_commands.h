#pragma once

#include "tools/tool.h"

/// webui_cli: the calls of the web UI configuration library.
Tool WebuiTool();
