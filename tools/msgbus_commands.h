#pragma once

#include "tools/tool.h"

/// msgbus_cli: what has been published on the message bus.
Tool MsgbusTool();
