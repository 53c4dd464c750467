// The command that records a device. It uses only platform/, so that it works with any binding.
#pragma once

#include <functional>
#include <string>

#include "tools/tool.h"

/// What the recorder knows of the binding that it is linked with.
struct RecordedBinding {
    std::string name;
    binding::Enumeration codes;
    /// Whether the service tells what its sources have said (a Linux board).
    bool hasSources = false;
    /// What people should know about what it answers, if it can say that; may be empty.
    std::function<std::string()> remark = {};
};

/// The command with the name @p name; a nameless one for a tool that does nothing else.
Command RecordCommand(const std::string& name, const RecordedBinding& recorded);
