// Runs tools and returns what a shell would show.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tools/tool.h"

/// The output of @p tool when it runs with @p arguments: answers, complaints and, unless it is 0,
/// the exit code.
inline std::string Shown(const Tool& tool, const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream errors;
    const ExitCode code = RunTool(tool, arguments, out, errors);
    std::string text = out.str() + errors.str();
    if (code != ExitCode::kSuccess) {
        text += "[" + std::to_string(static_cast<int>(code)) + "]\n";
    }
    return text;
}

/// Arguments that @p command accepts, without its name.
inline std::vector<std::string> Acceptable(const Command& command) {
    std::vector<std::string> arguments = {command.names.front()};
    for (const Parameter& parameter : command.parameters) {
        arguments.push_back(parameter.range ? std::to_string(parameter.range->last) : "some");
    }
    return arguments;
}
