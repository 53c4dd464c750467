// kestal-sim: changes the device that the simulator simulates.
#include <cstdlib>
#include <stdexcept>

#include "bindings/document/document_error.h"
#include "tools/kestal_sim/commands.h"

namespace {

/// @p command, changed to suggest the closest right name when it complains about a wrong one.
Command WithSuggestion(Command command) {
    command.run = [run = std::move(command.run)](const Arguments& arguments, std::ostream& out) {
        try {
            run(arguments, out);
        } catch (const binding::UnknownName& error) {
            throw std::runtime_error(binding::WithSuggestion(error));
        }
    };
    return command;
}

std::vector<Command> Commands() {
    std::vector<Command> commands;
    for (const auto& group : {DocumentCommands(), LoadCommands()}) {
        for (const Command& command : group) {
            commands.push_back(WithSuggestion(command));
        }
    }
    commands.push_back(WithSuggestion(NotifyCommand()));
    commands.push_back(SessionCommand());
    commands.push_back(WithSuggestion(PlayCommand()));
    return commands;
}

Tool SimTool() {
    return {.name = "kestal-sim",
            .description =
                "Changes the device that the simulator simulates, while its service "
                "runs.",
            .codes = {},
            .commands = Commands(),
            .settings = {{.option = {.name = "--device",
                                     .description = "The device's document (KESTAL_DEVICE, or "
                                                    "else the installed one)",
                                     .value = "FILE"},
                          .apply = [](const std::string& file) {
                              (void)setenv("KESTAL_DEVICE", file.c_str(), 1);
                          }}}};
}

}  // namespace

int main(int argc, char** argv) {
    Tool tool = SimTool();
    // Not for callers that are not shells, because these may have no end.
    tool.commands.push_back(StatusCommand());
    tool.commands.push_back(WatchCommand());
    tool.commands.push_back(ControlCommand(SimTool()));
    return RunTool(tool, argc, argv);
}
