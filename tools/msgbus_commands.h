#pragma once

#include "tools/tool.h"

/// msgbus_cli: shows what has been published on the message bus.
/// @p bindingCodes are the names of the codes of the binding with which the tool is linked.
Tool MsgbusTool(binding::Enumeration bindingCodes = {});
