#pragma once

#include "tools/json_output.h"
#include "tools/tool.h"

/// msgbus_cli: shows what has been published on the message bus.
/// @p bindingCodes are the names of the codes of the binding with which the tool is linked.
Tool MsgbusTool(binding::Enumeration bindingCodes = {});

/// The notifications that the device publishes, as MsgBusGet prints them. Throws CallFailed.
Json PublishedNotifications();
