#pragma once

#include "tools/tool.h"

/// msgbus_cli: shows what has been published on the message bus.
Tool MsgbusTool();
