// The commands of kestal-sim, by what they change.
#pragma once

#include <vector>

#include "tools/tool.h"

/// show, set, fail and heal: the device's document.
std::vector<Command> DocumentCommands();

/// devices, scenarios, load and reset: the shipped files, and replacing the device by another one.
std::vector<Command> LoadCommands();

/// notify: the notifications of the device.
Command NotifyCommand();

/// session: who is logged in to the web UI.
Command SessionCommand();

/// play: scenarios.
Command PlayCommand();

/// status: the device, drawn for people.
Command StatusCommand();

/// watch: the calls of the platform.
Command WatchCommand();

/// control: one of the commands of @p tool, as a JSON object.
Command ControlCommand(Tool tool);
