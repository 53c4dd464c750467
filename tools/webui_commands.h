#pragma once

#include "tools/tool.h"

/// webui_cli: makes calls of the web UI configuration library.
Tool WebuiTool();
