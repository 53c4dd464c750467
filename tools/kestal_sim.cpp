// kestal-sim: changes the device that the simulator simulates.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bindings/posix/files/file_io.h"
#include "bindings/posix/files/file_update.h"
#include "bindings/posix/json/json_text.h"
#include "bindings/posix/session/session_login.h"
#include "bindings/simulator/device_file.h"
#include "bindings/simulator/edit/device_edit.h"
#include "bindings/simulator/edit/device_path.h"
#include "bindings/simulator/edit/installed_file.h"
#include "bindings/simulator/edit/json_patch.h"
#include "bindings/simulator/edit/nearest_name.h"
#include "bindings/simulator/edit/notification_types.h"
#include "bindings/simulator/play/player.h"
#include "bindings/simulator/play/scenario.h"
#include "bindings/simulator/play/waiting_clock.h"

namespace {

using json = nlohmann::ordered_json;
using binding::ChangeDevice;
using binding::DevicePath;
using binding::KeyPath;
using binding::Milliseconds;
using binding::ResolvePath;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

std::string Contents(const std::string& file) {
    binding::FileStamp ignored;
    return binding::ReadFile(file, ignored);
}

json CurrentDocument() {
    return binding::ReadGoodDocument(DevicePath(), Contents(DevicePath()));
}

/// JSON, or a text that is none.
json ValueOf(const std::string& text) {
    if (json::accept(text)) {
        try {
            return binding::ParseStrictly(text);
        } catch (const binding::SyntaxError& error) {
            throw std::runtime_error("the value: " + std::string(error.what()));
        }
    }
    return text;
}

/// A file, or the name of one that is installed in @p folder.
std::string FileNamed(const std::string& name, const std::string& folder) {
    return binding::FileOrInstalled(name, std::filesystem::path(KESTAL_DATA_DIRECTORY) / folder);
}

/// A command: what adds it to the command line returns what runs it and gives the exit code.
using Run = std::function<int()>;

void AddCommand(CLI::App& app, const std::string& name, const std::string& description,
                const std::function<Run(CLI::App&)>& describe, Run& chosen) {
    CLI::App* const command = app.add_subcommand(name, description)->group("Commands");
    command->callback([run = describe(*command), &chosen] { chosen = run; });
}

// What a command is given lives as long as the command line: shared with what runs it.

Run DescribeShow(CLI::App& command) {
    const auto path = std::make_shared<std::string>();
    const auto onlyPaths = std::make_shared<bool>(false);
    CLI::Option* const place =
        command.add_option("PATH", *path, "What to print; the whole document without it");
    command.add_flag("--paths", *onlyPaths, "Print the paths of all values instead, one a line")
        ->excludes(place);
    return [path, onlyPaths] {
        const json document = CurrentDocument();
        if (*onlyPaths) {
            for (const std::string& each : binding::AllPaths(document)) {
                std::cout << each << "\n";
            }
            return 0;
        }
        const KeyPath whole = path->empty() ? KeyPath() : ResolvePath(*path, document);
        const json* const value = binding::FindAt(document, whole);
        if (value == nullptr) {
            binding::MustBeKnown(document, whole);
            throw std::runtime_error(binding::PathText(whole) + ": not in the document");
        }
        std::cout << binding::Formatted(*value) << "\n";
        return 0;
    };
}

Run DescribeSet(CLI::App& command) {
    const auto path = std::make_shared<std::string>();
    const auto value = std::make_shared<std::string>();
    command.add_option("PATH", *path, "What to set, such as sys.getBatteryStatus.chargePercent")
        ->required();
    command.add_option("VALUE", *value, "JSON; what is no JSON is a text")->required();
    return [path, value] {
        const json parsed = ValueOf(*value);
        KeyPath failing;
        ChangeDevice(DevicePath(), [&](json& document) {
            const KeyPath place = ResolvePath(*path, document);
            binding::SetValue(document, place, parsed);
            failing = binding::FailingCallOn(document, place);
        });
        if (!failing.empty()) {
            (void)std::fprintf(stderr,
                               "kestal-sim: %s fails; the new value shows once it is healed\n",
                               binding::PathText(failing).c_str());
        }
        return 0;
    };
}

Run DescribeFail(CLI::App& command) {
    const auto call = std::make_shared<std::string>();
    const auto code = std::make_shared<std::int64_t>();
    command
        .add_option("CALL", *call, "The call, such as sys.getGPSStatus; also a page or a channel")
        ->required();
    command.add_option("CODE", *code, "The code that it fails with")->required();
    return [call, code] {
        ChangeDevice(DevicePath(), [&](json& document) {
            binding::FailCall(document, ResolvePath(*call, document), *code);
        });
        return 0;
    };
}

Run DescribeHeal(CLI::App& command) {
    const auto call = std::make_shared<std::string>();
    command.add_option("CALL", *call, "The call, as it was given to fail")->required();
    return [call] {
        ChangeDevice(DevicePath(), [&](json& document) {
            binding::HealCall(document, ResolvePath(*call, document));
        });
        return 0;
    };
}

Run DescribeLoad(CLI::App& command) {
    const auto name = std::make_shared<std::string>();
    command.add_option("FILE", *name, "The document, or the name of an installed one: roaming")
        ->required();
    return [name] {
        const std::string file = FileNamed(*name, "devices");
        const std::string text = Contents(file);
        (void)binding::ReadGoodDocument(file, text);
        binding::UpdateFile(DevicePath(), binding::MissingFile::createdForAll,
                            [&](const std::string&) -> const std::string& { return text; });
        return 0;
    };
}

struct NotifyArguments {
    std::string type;
    bool clears = false;
    std::string cleared;
    bool listsTypes = false;
    std::string severity;
    std::string category;
    std::string labelId;
    std::string titleId;
    std::string textId;
    bool inactive = false;

    binding::NotificationFields Fields() const {
        const auto given = [](const std::string& text) {
            return text.empty() ? std::nullopt : std::optional<std::string>(text);
        };
        return {.category = given(category),
                .severity = severity.empty() ? nullptr : std::make_shared<json>(ValueOf(severity)),
                .labelId = given(labelId),
                .titleId = given(titleId),
                .textId = given(textId),
                .active = !inactive};
    }
};

int Notify(const NotifyArguments& arguments) {
    if (arguments.listsTypes) {
        for (const std::string& name : binding::NotificationTypeNames()) {
            std::cout << name << "\n";
        }
        return 0;
    }
    if (arguments.clears) {
        ChangeDevice(DevicePath(), [&](json& document) {
            binding::ClearNotifications(document, arguments.cleared);
        });
        return 0;
    }
    const json notification = binding::MakeNotification(arguments.type, arguments.Fields());
    ChangeDevice(DevicePath(),
                 [&](json& document) { binding::AddNotification(document, notification); });
    return 0;
}

Run DescribeNotify(CLI::App& command) {
    const auto arguments = std::make_shared<NotifyArguments>();
    CLI::Option* const type = command.add_option(
        "TYPE", arguments->type, "Type of the notification; one of this type is replaced");
    CLI::Option* const clear = command.add_option("--clear", arguments->cleared,
                                                  "Take the notifications of a type away, or all");
    clear->expected(0, 1)->type_name("[TYPE]")->excludes(type);
    CLI::Option* const types =
        command.add_flag("--types", arguments->listsTypes, "Print the known types, one a line");
    types->excludes(type)->excludes(clear);
    for (CLI::Option* const field :
         {command.add_option("--severity", arguments->severity,
                             "info, warning, alert, critical, a number"),
          command.add_option("--category", arguments->category, "Category"),
          command.add_option("--label", arguments->labelId, "Message id of the label"),
          command.add_option("--title", arguments->titleId, "Message id of the title"),
          command.add_option("--text", arguments->textId, "Message id of the text"),
          command.add_flag("--inactive", arguments->inactive,
                           "Add it without the mark that shows it")}) {
        field->excludes(clear)->excludes(types);
    }
    return [arguments, type, clear, types] {
        if (type->count() + clear->count() + types->count() == 0) {
            throw CLI::RequiredError("TYPE, --clear or --types");
        }
        arguments->clears = clear->count() > 0;
        return Notify(*arguments);
    };
}

Run DescribeLogin(CLI::App& command) {
    struct Caller {
        std::string address = "127.0.0.1";
        std::string userAgent;
        std::uint32_t idleSeconds = 600;
    };
    const auto caller = std::make_shared<Caller>();
    command.add_option("--address", caller->address, "Address of the caller")
        ->capture_default_str();
    command.add_option("--user-agent", caller->userAgent, "User agent of the caller");
    command.add_option("--idle", caller->idleSeconds, "Seconds after which the session ends")
        ->capture_default_str()
        ->check(CLI::Range(1U, UINT32_MAX));
    return [caller] {
        std::cout << binding::OpenSession(caller->address, caller->userAgent, caller->idleSeconds)
                  << "\n";
        return 0;
    };
}

Run DescribeLogout(CLI::App& command) {
    const auto cookie = std::make_shared<std::string>();
    CLI::Option* const given =
        command.add_option("COOKIE", *cookie, "What login printed; all sessions end without it");
    return [cookie, given] {
        if (given->count() == 0) {
            binding::CloseAllSessions();
        } else if (cookie->empty()) {
            // A script's variable that is not set: nobody means all by it.
            throw CLI::ValidationError("COOKIE", "expected what login printed, found nothing");
        } else {
            binding::CloseSession(binding::IdentifierIn(*cookie));
        }
        return 0;
    };
}

/// Tells on the standard error stream what happens.
class Narrator : public binding::Audience {
  public:
    explicit Narrator(bool newIsQuiet) : isQuiet(newIsQuiet) {}

    ~Narrator() override { EraseLine(); }
    Narrator(const Narrator&) = delete;
    Narrator& operator=(const Narrator&) = delete;

    void Happens(Milliseconds time, const std::string& what) override {
        if (!isQuiet) {
            EraseLine();
            (void)std::fprintf(stderr, "%8.1f s  %s\n", Seconds(time), what.c_str());
        }
    }

    void TimePasses(Milliseconds time, Milliseconds duration) override {
        if (!isQuiet && isTerminal) {
            (void)std::fprintf(stderr, "\r\033[K%8.1f s  of %.1f s", Seconds(time),
                               Seconds(duration));
            hasLine = true;
        }
    }

    void GoesWrong(const std::string& what) override {
        EraseLine();
        (void)std::fprintf(stderr, "kestal-sim: %s\n", what.c_str());
    }

  private:
    static double Seconds(Milliseconds time) { return std::chrono::duration<double>(time).count(); }

    void EraseLine() {
        if (hasLine) {
            (void)std::fputs("\r\033[K", stderr);
            hasLine = false;
        }
    }

    const bool isQuiet;
    const bool isTerminal = isatty(STDERR_FILENO) == 1;
    bool hasLine = false;
};

struct PlayArguments {
    std::string scenario;
    binding::Pace pace;
    bool isQuiet = false;
    bool onlyChecks = false;
};

int PlayScenario(const PlayArguments& arguments) {
    const std::string file = FileNamed(arguments.scenario, "scenarios");
    const binding::Scenario scenario = binding::ReadScenario(file, Contents(file));
    binding::MustSuit(scenario, CurrentDocument());
    if (arguments.pace.loops && scenario.duration == Milliseconds(0)) {
        throw std::runtime_error(file + ": what takes no time cannot begin again and again");
    }
    if (arguments.onlyChecks) {
        return 0;
    }
    binding::WaitingClock clock;
    Narrator narrator(arguments.isQuiet);
    return Play(scenario, DevicePath(), arguments.pace, clock, narrator) ? 0 : kFailed;
}

Run DescribePlay(CLI::App& command) {
    const auto arguments = std::make_shared<PlayArguments>();
    command
        .add_option("SCENARIO", arguments->scenario,
                    "The scenario's file, or the name of an installed one: commute")
        ->required();
    command.add_option("--speed", arguments->pace.speed, "How many times as fast as time")
        ->capture_default_str();
    command.add_flag("--loop", arguments->pace.loops, "Begin again at the end, until Ctrl-C");
    command.add_flag("--quiet", arguments->isQuiet, "Tell only what goes wrong");
    command.add_flag("--check", arguments->onlyChecks, "Only find out whether it can be played");
    return [arguments] {
        // Of what is no number ("nan"), every comparison is false.
        if (!(arguments->pace.speed >= 0.01 && arguments->pace.speed <= 1e9)) {
            throw CLI::ValidationError("--speed", "expected a number from 0.01 to 1000000000");
        }
        return PlayScenario(*arguments);
    };
}

void Describe(CLI::App& app, Run& chosen) {
    app.require_subcommand(1);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.get_formatter()->label("Positionals", "Arguments");
    app.add_option_function<std::string>(
           "--device",
           [](const std::string& file) { (void)setenv("KESTAL_DEVICE", file.c_str(), 1); },
           "The device's document (KESTAL_DEVICE, or else the installed one)")
        ->type_name("FILE")
        ->check([](const std::string& file) {
            return file.empty() ? std::string("expected the name of a file") : std::string();
        })
        ->trigger_on_parse();
    const auto add = [&](const char* name, const char* description, Run (*describe)(CLI::App&)) {
        AddCommand(app, name, description, describe, chosen);
    };
    add("show", "Print the device's document, or a part of it", DescribeShow);
    add("set", "Set what a call answers, or a part of that", DescribeSet);
    add("fail", "Make a call fail", DescribeFail);
    add("heal", "Let a call answer as it did before it was made to fail", DescribeHeal);
    add("load", "Become another device", DescribeLoad);
    add("notify", "Add a notification, or take some away", DescribeNotify);
    add("login", "Open a session of the web UI and print its cookie", DescribeLogin);
    add("logout", "End sessions of the web UI", DescribeLogout);
    add("play", "Let a scenario happen to the device", DescribePlay);
}

int Complain(const std::string& what, int code) {
    (void)std::fprintf(stderr, "kestal-sim: %s\n", what.c_str());
    if (code == kWrongUsage) {
        (void)std::fputs("Try 'kestal-sim --help'.\n", stderr);
    }
    return code;
}

/// The first argument that is neither a command nor an option, which the parser leaves over; none
/// when there is a command.
std::optional<std::string> Unknown(const CLI::App& app) {
    const std::vector<std::string> left = app.remaining();
    return left.empty() || !app.get_subcommands().empty() ? std::nullopt
                                                          : std::optional(left.front());
}

/// What is wrong with the command line.
std::string Complaint(const CLI::App& app, const CLI::ParseError& error) {
    const auto unknown = Unknown(app);
    if (!unknown) {
        // The parser's own complaint about --device, say, comes before that of a missing command.
        return error.get_name() == "RequiredError" && app.get_subcommands().empty()
                   ? "a command is expected"
                   : error.what();
    }
    std::vector<std::string> commands;
    for (const CLI::App* const command : app.get_subcommands([](const auto*) { return true; })) {
        commands.push_back(command->get_name());
    }
    return "there is no command '" + *unknown + "'" +
           binding::Suggestion(binding::NearestName(*unknown, commands));
}

/// A type that is empty, such as a script's variable that is not set. To the parser it is the same
/// as none, and none means all.
void MustNameWhatToClear(const CLI::App& app, const std::vector<std::string>& arguments) {
    if (!app.got_subcommand("notify")) {
        return;
    }
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const bool isLast = index + 1 == arguments.size();
        if (arguments[index] == "--clear=" ||
            (arguments[index] == "--clear" && !isLast && arguments[index + 1].empty())) {
            throw CLI::ValidationError("--clear", "expected a type, found nothing");
        }
    }
}

/// @p code, unless what was printed has not been written.
int Finish(int code) {
    return std::cout.flush() ? code : Complain("the output cannot be written", kFailed);
}

int RunCommand(int argc, char** argv) {
    CLI::App app("Changes the device that the simulator simulates, while its service runs.",
                 "kestal-sim");
    Run chosen;
    Describe(app, chosen);
    try {
        app.parse(argc, argv);
        MustNameWhatToClear(app, {argv, argv + argc});
        return Finish(chosen());
    } catch (const CLI::ParseError& error) {
        // There is no help for a command that does not exist.
        if (error.get_name() == "CallForHelp" && !Unknown(app)) {
            std::cout << app.help();
            return Finish(0);
        }
        return Complain(Complaint(app, error), kWrongUsage);
    } catch (const std::invalid_argument& error) {
        return Complain(error.what(), kWrongUsage);
    } catch (const binding::UnknownName& error) {
        return Complain(binding::WithSuggestion(error), kFailed);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return RunCommand(argc, argv);
    } catch (const std::exception& error) {
        return Complain(error.what(), kFailed);
    }
}
