// kestal-sim: changes the device that the simulator simulates.
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "bindings/document/document_error.h"
#include "tools/kestal_record/record_command.h"
#include "tools/kestal_sim/commands.h"
#include "tools/kestal_sim/document.h"

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

/// The recorder. Without a good document it refuses, because then every call only fails.
Command RecordSimulated() {
    Command command = RecordCommand("record", {"simulator", binding::kBindingCode});
    command.run = [run = std::move(command.run)](const Arguments& arguments, std::ostream& out) {
        (void)CurrentDocument();
        run(arguments, out);
    };
    return command;
}

}  // namespace

int main(int argc, char** argv) {
    Tool tool = SimTool();
    // Not for callers that are not shells, because these may have no end.
    tool.commands.push_back(StatusCommand());
    tool.commands.push_back(WatchCommand());
    // Not among the commands that others may give over HTTP, because it writes any file.
    tool.commands.push_back(RecordSimulated());
    Tool controlled = SimTool();
    // Nor may these choose the document, because commands write it.
    controlled.settings.clear();
    tool.commands.push_back(ControlCommand(std::move(controlled)));
    return RunTool(tool, argc, argv);
}
