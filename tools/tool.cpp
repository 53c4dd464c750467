#include "tools/tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <optional>

#include "bindings/names/nearest_name.h"
#include "version/version.h"

namespace {

/// Thrown for an option, such as --version, that is answered without running a command.
class AnswerAtOnce : public CLI::Success {
  public:
    explicit AnswerAtOnce(const std::string& answer)
        : CLI::Success("AnswerAtOnce", answer, CLI::ExitCodes::Success) {}
};

/// The command that the caller has chosen, with the arguments for it.
struct Choice {
    const Command* command = nullptr;
    Arguments arguments;
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

void CheckRange(CLI::Option& option, const std::optional<Parameter::Range>& range) {
    if (range) {
        option.check([range = *range](const std::string& given) {
            return NumberIn(given, range)
                       ? std::string()
                       : "'" + given + "' is not a number from " + std::to_string(range.first) +
                             " to " + std::to_string(range.last);
        });
    }
}

void AddParameter(CLI::App& command, const Parameter& parameter) {
    CLI::Option* const added = command.add_option(parameter.name);
    added->description(parameter.description)->type_name("")->required(!parameter.isOptional);
    CheckRange(*added, parameter.range);
}

/// What the parser has for the value of an option that is given without one. No argument of a
/// process can contain a zero byte, so this is never a value that somebody has given.
const std::string kNoValue(1, '\0');

void AddOption(CLI::App& command, const Option& option) {
    CLI::Option* added = nullptr;
    if (option.value == nullptr) {
        added = command.add_flag(option.name);
        added->disable_flag_override();
    } else if (option.isValueOptional) {
        added = command.add_option(option.name);
        // The parser takes the default for the value of an option that is given without one. The
        // help would show it unless told what to show.
        added->expected(0, 1)->default_str(kNoValue)->option_text("[" + std::string(option.value) +
                                                                  "]");
    } else {
        added = command.add_option(option.name);
        added->type_name(option.value)->default_str(option.preset);
    }
    added->description(option.description);
    CheckRange(*added, option.range);
    for (const char* const other : option.excludes) {
        added->excludes(command.get_option(other));
    }
}

/// The value that the parser has found for the argument @p name.
Argument Found(const CLI::App& command, const std::string& name, const std::string& preset) {
    const CLI::Option* const option = command.get_option(name);
    const bool isGiven = option->count() > 0;
    return {.name = name, .text = isGiven ? option->results().front() : preset, .isGiven = isGiven};
}

void RefuseEmpty(const Argument& argument) {
    if (argument.isGiven && argument.text.empty()) {
        throw CLI::ValidationError(argument.name, "expected a value, found nothing");
    }
}

Arguments Collected(const CLI::App& app, const Command& command) {
    Arguments arguments;
    for (const Parameter& parameter : command.parameters) {
        arguments.all.push_back(Found(app, parameter.name, ""));
        if (parameter.isOptional) {
            RefuseEmpty(arguments.all.back());
        }
    }
    for (const Option& option : command.options) {
        arguments.all.push_back(Found(app, option.name, option.preset));
        Argument& argument = arguments.all.back();
        if (argument.text == kNoValue) {
            argument.text.clear();
        } else if (option.isValueOptional) {
            RefuseEmpty(argument);
        }
    }
    return arguments;
}

/// Lets @p app take the arguments of @p command and store them in @p choice. Keeps references to
/// both.
void AddArguments(CLI::App& app, const Command& command, Choice& choice) {
    for (const Parameter& parameter : command.parameters) {
        AddParameter(app, parameter);
    }
    for (const Option& option : command.options) {
        AddOption(app, option);
    }
    app.callback([&command, &choice, &app] {
        choice = {.command = &command, .arguments = Collected(app, command)};
    });
}

/// Adds @p command to @p app, whose parser stores it in @p choice when the caller chooses it. Keeps
/// references to @p command and @p choice.
void AddCommand(CLI::App& app, const Command& command, Choice& choice) {
    CLI::App* const added =
        app.add_subcommand(command.names.front(), command.description)->group("Commands");
    for (auto name = std::next(command.names.begin()); name != command.names.end(); ++name) {
        added->alias(*name);
    }
    added->footer("");
    if (!command.commands.empty()) {
        added->require_subcommand(1);
        for (const Command& member : command.commands) {
            AddCommand(*added, member, choice);
        }
        return;
    }
    AddArguments(*added, command, choice);
}

/// Whether @p tool is itself its only command.
bool IsCommand(const Tool& tool) {
    return tool.commands.size() == 1 && tool.commands.front().names.empty();
}

void DescribeCommands(CLI::App& app, const Tool& tool, Choice& choice) {
    app.require_subcommand(1);
    app.footer("'" + tool.name + " COMMAND --help' tells what a command takes.");
    app.add_flag_callback(
           "--commands", [&tool] { throw AnswerAtOnce(CommandNames(tool)); },
           "Print the names of all commands, one a line, and exit")
        ->trigger_on_parse();
    for (const Command& command : tool.commands) {
        AddCommand(app, command, choice);
    }
}

void Describe(CLI::App& app, const Tool& tool, Choice& choice) {
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.get_formatter()->label("Positionals", "Arguments");
    app.get_formatter()->column_width(44);
    if (IsCommand(tool)) {
        AddArguments(app, tool.commands.front(), choice);
    } else {
        DescribeCommands(app, tool, choice);
    }
    app.add_flag_callback(
           "--version", [&tool] { throw AnswerAtOnce(tool.name + " " + KestalVersion() + "\n"); },
           "Print the version and exit")
        ->trigger_on_parse();
    for (const Setting& setting : tool.settings) {
        AddOption(app, setting.option);
    }
}

/// To the parser, "--name=" is an option without its value, for which it takes the next argument.
void RefuseEmptyValues(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        if (argument == "--") {
            return;
        }
        if (argument.starts_with("--") && argument.find('=') + 1 == argument.size()) {
            RefuseEmpty({.name = argument.substr(0, argument.size() - 1), .isGiven = true});
        }
    }
}

/// The command, or the group of commands, that the parser has reached.
const CLI::App& Reached(const CLI::App& app) {
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    return chosen.empty() ? app : Reached(*chosen.front());
}

bool IsGroup(const CLI::App& app) {
    return app.get_require_subcommand_min() > 0;
}

/// The argument that stands where a command is expected but is neither a command nor an option;
/// nullopt when there is no such argument.
std::optional<std::string> Unknown(const CLI::App& app) {
    const CLI::App& group = Reached(app);
    const std::vector<std::string> left = group.remaining();
    return left.empty() || !IsGroup(group) ? std::nullopt : std::optional(left.front());
}

/// What is wrong with the arguments.
std::string Complaint(const CLI::App& app, const CLI::ParseError& error) {
    const auto unknown = Unknown(app);
    if (!unknown) {
        return error.get_name() == "RequiredError" && IsGroup(Reached(app))
                   ? "a command is expected"
                   : error.what();
    }
    std::vector<std::string> known;
    for (const CLI::App* const command :
         Reached(app).get_subcommands([](const auto*) { return true; })) {
        known.push_back(command->get_name());
    }
    return "'" + *unknown + "' is neither a command nor an option" +
           binding::Suggestion(binding::NearestName(*unknown, known));
}

/// @p code with what is known about it.
std::string CodeText(const Tool& tool, int code) {
    const char* name = binding::NameOf(code, tool.codes);
    if (name == nullptr) {
        name = binding::NameOf(std::int64_t{code} - tool.bindingCodeBase, tool.bindingCodes);
    }
    return std::to_string(code) + " (" +
           (name == nullptr ? "no name; what it means depends on the device" : name) + ")";
}

/// Flushes the answer. The exit code tells whether all of it has been written.
ExitCode Finish(const Tool& tool, std::ostream& out, std::ostream& errors) {
    if (!out.flush()) {
        errors << tool.name << ": the output cannot be written\n";
        return ExitCode::kFailed;
    }
    return ExitCode::kSuccess;
}

ExitCode RefuseUsage(const Tool& tool, const std::string& complaint, std::ostream& errors) {
    errors << tool.name << ": " << complaint << "\nTry '" << tool.name << " --help'.\n";
    return ExitCode::kUsage;
}

}  // namespace

ExitCode RunTool(const Tool& tool, const std::vector<std::string>& arguments, std::ostream& out,
                 std::ostream& errors) {
    CLI::App app(tool.description, tool.name);
    Choice choice;
    try {
        Describe(app, tool, choice);
        RefuseEmptyValues(arguments);
        // The parser expects the arguments in reverse order.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        for (const Setting& setting : tool.settings) {
            const Argument value = Found(app, setting.option.name, "");
            RefuseEmpty(value);
            if (value.isGiven) {
                setting.apply(value.text);
            }
        }
        choice.command->run(choice.arguments, out);
    } catch (const AnswerAtOnce& answer) {
        out << answer.what();
    } catch (const CLI::ParseError& error) {
        // There is no help for a command that does not exist.
        if (error.get_name() != "CallForHelp" || Unknown(app)) {
            return RefuseUsage(tool, Complaint(app, error), errors);
        }
        out << app.help();
    } catch (const UsageError& error) {
        return RefuseUsage(tool, error.what(), errors);
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
