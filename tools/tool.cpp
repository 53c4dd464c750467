#include "tools/tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <optional>

namespace {

/// Thrown for an option that is answered at once.
class AnswerAtOnce : public CLI::Success {
  public:
    explicit AnswerAtOnce(const std::string& answer)
        : CLI::Success("AnswerAtOnce", answer, CLI::ExitCodes::Success) {}
};

std::string CommandNames(const Tool& tool) {
    std::string text;
    for (const Command& command : tool.commands) {
        for (const std::string& name : command.names) {
            text += name + "\n";
        }
    }
    return text;
}

void AddParameter(CLI::App& command, const Parameter& parameter, std::string& text) {
    CLI::Option* const option =
        command.add_option(parameter.name, text, parameter.description)->required()->type_name("");
    if (parameter.range) {
        option->check([range = *parameter.range](const std::string& given) {
            return NumberIn(given, range)
                       ? std::string()
                       : "'" + given + "' is no number from " + std::to_string(range.first) +
                             " to " + std::to_string(range.last);
        });
    }
}

/// Adds @p command to @p app, which runs it with what the caller gives for it. That goes to
/// @p arguments, which lives as long as @p app.
void AddCommand(CLI::App& app, const Command& command, Arguments& arguments, std::ostream& out) {
    CLI::App* const added =
        app.add_subcommand(command.names.front(), command.description)->group("Commands");
    for (auto name = std::next(command.names.begin()); name != command.names.end(); ++name) {
        added->alias(*name);
    }
    // Sized first: the parser keeps references.
    arguments.texts.resize(command.parameters.size());
    for (std::size_t index = 0; index < command.parameters.size(); ++index) {
        AddParameter(*added, command.parameters[index], arguments.texts[index]);
    }
    if (!command.option.empty()) {
        added->add_flag(command.option, arguments.option, command.optionDescription);
    }
    added->footer("");
    added->callback([&] { command.run(arguments, out); });
}

void Describe(CLI::App& app, const Tool& tool, std::vector<Arguments>& arguments,
              std::ostream& out) {
    app.require_subcommand(1);
    app.footer("'" + tool.name + " COMMAND --help' tells what a command takes.");
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.get_formatter()->label("Positionals", "Arguments");
    app.get_formatter()->column_width(44);
    app.add_flag_callback(
           "--commands", [&tool] { throw AnswerAtOnce(CommandNames(tool)); },
           "Print the names of all commands, one a line, and exit")
        ->trigger_on_parse();
    arguments.resize(tool.commands.size());
    for (std::size_t index = 0; index < tool.commands.size(); ++index) {
        AddCommand(app, tool.commands[index], arguments[index], out);
    }
}

/// The first argument that is neither a command nor an option, which the parser leaves over; none
/// when there is a command.
std::optional<std::string> Unknown(const CLI::App& app) {
    const std::vector<std::string> left = app.remaining();
    return left.empty() || !app.get_subcommands().empty() ? std::nullopt
                                                          : std::optional(left.front());
}

/// What is wrong with the arguments.
std::string Complaint(const CLI::App& app, const CLI::ParseError& error) {
    if (const auto unknown = Unknown(app)) {
        return "'" + *unknown + "' is no command and no option";
    }
    return app.get_subcommands().empty() ? "a command is expected" : error.what();
}

std::string CodeText(const Tool& tool, int code) {
    const char* const name = NameOf(code, tool.codes);
    return std::to_string(code) + (name == nullptr ? "" : " (" + std::string(name) + ")");
}

/// Whether all that was answered has been written.
ExitCode Finish(const Tool& tool, std::ostream& out, std::ostream& errors) {
    if (!out.flush()) {
        errors << tool.name << ": the output cannot be written\n";
        return ExitCode::kFailed;
    }
    return ExitCode::kSuccess;
}

}  // namespace

ExitCode RunTool(const Tool& tool, const std::vector<std::string>& arguments, std::ostream& out,
                 std::ostream& errors) {
    CLI::App app(tool.description, tool.name);
    std::vector<Arguments> given;
    try {
        Describe(app, tool, given, out);
        // The parser takes the arguments from the end.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const AnswerAtOnce& answer) {
        out << answer.what();
    } catch (const CLI::ParseError& error) {
        // There is no help for a command that does not exist.
        if (error.get_name() == "CallForHelp" && !Unknown(app)) {
            out << app.help();
            return Finish(tool, out, errors);
        }
        errors << tool.name << ": " << Complaint(app, error) << "\nTry '" << tool.name
               << " --help'.\n";
        return ExitCode::kUsage;
    } catch (const CallFailed& failure) {
        out.flush();
        errors << tool.name << ": " << failure.what() << " failed, returned error code "
               << CodeText(tool, failure.Code()) << "\n";
        return ExitCode::kFailed;
    }
    return Finish(tool, out, errors);
}

int RunTool(const Tool& tool, int argc, char** argv) {
    try {
        return static_cast<int>(
            RunTool(tool, {argv + std::min(argc, 1), argv + argc}, std::cout, std::cerr));
    } catch (const std::exception& error) {
        std::cerr << tool.name << ": " << error.what() << "\n";
        return static_cast<int>(ExitCode::kFailed);
    }
}
