// The common behaviour of the tools: help, list of commands, wrong usage, exit codes.
#include "tools/tool.h"

#include <gmock/gmock.h>

#include <ostream>
#include <set>
#include <streambuf>

#include "bindings/recording/recording.h"
#include "tests/unit/tools/transcript.h"
#include "tools/msgbus_commands.h"
#include "tools/sysint_commands.h"
#include "tools/webui_commands.h"
#include "version/version.h"

using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

Tool Example() {
    return {.name = "example",
            .description = "Serves as an example.",
            .codes = {},
            .commands = {{.names = {"say", "tell"},
                          .description = "Say something",
                          .parameters = {{"WHAT", "What to say"}, {"TIMES", "How often", {{1, 3}}}},
                          .run =
                              [](const Arguments& arguments, std::ostream& out) {
                                  for (int time = 0; time < arguments.Number(1); ++time) {
                                      out << arguments.Text(0)
                                          << (arguments.Given("--loud") ? "!" : ".");
                                  }
                              },
                          .options = {{"--loud", "Say it loud"}}},
                         {.names = {"fail"},
                          .description = "Fail",
                          .parameters = {},
                          .run = [](const Arguments& /*arguments*/, std::ostream& /*out*/) {
                              throw CallFailed("the_call", 3);
                          }}}};
}

/// A tool with a group, optional arguments and a setting. Its only command prints its arguments.
Tool Elaborate() {
    static std::string colour;
    colour = "none";
    const auto print = [](const Arguments& arguments, std::ostream& out) {
        for (const Argument& argument : arguments.all) {
            out << argument.name << (argument.isGiven ? "=" : ":") << argument.text << " ";
        }
        out << colour;
    };
    return {
        .name = "elaborate",
        .description = "Takes all kinds of arguments.",
        .codes = {},
        .commands =
            {{.names = {"group"},
              .description = "Has commands",
              .commands =
                  {{.names = {"print"},
                    .description = "Print",
                    .parameters = {{.name = "WHAT", .description = "What", .isOptional = true}},
                    .run = print,
                    .options = {{.name = "--times",
                                 .description = "How often",
                                 .value = "N",
                                 .preset = "7",
                                 .range = {{1, 9}}},
                                {.name = "--drop",
                                 .description = "What to drop",
                                 .value = "WHAT",
                                 .isValueOptional = true,
                                 .excludes = {"WHAT"}},
                                {.name = "--loud", .description = "Loud"}}},
                   {.names = {"refuse"},
                    .description = "Refuse",
                    .run = [](const Arguments& /*arguments*/,
                              std::ostream& /*out*/) { throw UsageError("no reason"); }}}}},
        .settings = {{.option = {.name = "--colour", .description = "Colour", .value = "NAME"},
                      .apply = [](const std::string& name) { colour = name; }}},
    };
}

TEST(Tool, RunsACommandByAnyOfItsNames) {
    EXPECT_EQ(Shown(Example(), {"say", "so", "2"}), "so.so.");
    EXPECT_EQ(Shown(Example(), {"tell", "so", "1"}), "so.");
}

TEST(Tool, TheOptionMayBeAnywhereAfterTheCommand) {
    EXPECT_EQ(Shown(Example(), {"say", "--loud", "so", "1"}), "so!");
    EXPECT_EQ(Shown(Example(), {"say", "so", "1", "--loud"}), "so!");
}

TEST(Tool, ArgumentsMayBeAnyText) {
    EXPECT_EQ(Shown(Example(), {"say", "", "1"}), ".");
    EXPECT_EQ(Shown(Example(), {"say", "fail", "1"}), "fail.");
    EXPECT_EQ(Shown(Example(), {"say", "\"a b\" [c]", "1"}), "\"a b\" [c].");
    EXPECT_EQ(Shown(Example(), {"say", "--", "--loud", "1"}), "--loud.");
}

TEST(Tool, ACommandOfAGroupTakesOptionalArguments) {
    const auto shown = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"group", "print"});
        return Shown(Elaborate(), arguments);
    };
    EXPECT_EQ(shown({}), "WHAT: --times:7 --drop: --loud: none");
    EXPECT_EQ(shown({"a", "--times", "2"}), "WHAT=a --times=2 --drop: --loud: none");
    EXPECT_EQ(shown({"--times=2", "a", "--loud"}), "WHAT=a --times=2 --drop: --loud=true none");
    EXPECT_EQ(shown({"--drop"}), "WHAT: --times:7 --drop= --loud: none");
    EXPECT_EQ(shown({"--drop", "b"}), "WHAT: --times:7 --drop=b --loud: none");
    EXPECT_EQ(shown({"--drop=b"}), "WHAT: --times:7 --drop=b --loud: none");
}

TEST(Tool, ASettingComesBeforeTheCommand) {
    EXPECT_EQ(Shown(Elaborate(), {"--colour", "red", "group", "print"}),
              "WHAT: --times:7 --drop: --loud: red");
}

TEST(Tool, AnOptionalArgumentThatIsEmptyIsRefused) {
    const std::string complaint =
        ": expected a value, found nothing\nTry 'elaborate --help'.\n[2]\n";
    const auto refused = [&](const std::vector<std::string>& arguments, const std::string& name) {
        EXPECT_EQ(Shown(Elaborate(), arguments), "elaborate: " + name + complaint);
    };
    refused({"group", "print", ""}, "WHAT");
    refused({"group", "print", "--drop", ""}, "--drop");
    refused({"group", "print", "--drop="}, "--drop");
    refused({"group", "print", "--times=", "3"}, "--times");
    refused({"group", "print", "--loud="}, "--loud");
    refused({"--colour", "", "group", "print"}, "--colour");
    refused({"--colour=", "group", "print"}, "--colour");
}

TEST(Tool, WrongUsageInAGroupIsReported) {
    const std::string hint = "\nTry 'elaborate --help'.\n[2]\n";
    EXPECT_EQ(Shown(Elaborate(), {"group"}), "elaborate: a command is expected" + hint);
    EXPECT_EQ(Shown(Elaborate(), {"group", "prnt"}),
              "elaborate: 'prnt' is neither a command nor an option; did you mean print?" + hint);
    EXPECT_EQ(Shown(Elaborate(), {"group", "prnt", "--help"}),
              "elaborate: 'prnt' is neither a command nor an option; did you mean print?" + hint);
    EXPECT_EQ(Shown(Elaborate(), {"grp"}),
              "elaborate: 'grp' is neither a command nor an option; did you mean group?" + hint);
    // The wording of these complaints is that of the parser library.
    EXPECT_THAT(Shown(Elaborate(), {"group", "print", "a", "--drop"}),
                AllOf(HasSubstr("excludes"), EndsWith(hint)));
    EXPECT_EQ(Shown(Elaborate(), {"group", "print", "--times", "10"}),
              "elaborate: --times: '10' is not a number from 1 to 9" + hint);
    EXPECT_THAT(Shown(Elaborate(), {"group", "print", "--loud=false"}),
                AllOf(HasSubstr("loud"), EndsWith(hint)));
    EXPECT_THAT(Shown(Elaborate(), {"group", "print", "--times", "1", "--times", "2"}),
                AllOf(HasSubstr("--times"), EndsWith(hint)));
    EXPECT_EQ(Shown(Elaborate(), {"group", "refuse"}), "elaborate: no reason" + hint);
}

TEST(Tool, HelpListsTheCommands) {
    EXPECT_EQ(Shown(Example(), {"--help"}),
              "Serves as an example.\n"
              "Usage: example [OPTIONS] COMMAND\n"
              "\n"
              "Options:\n"
              "  -h,--help                                 Print this help message and exit\n"
              "  --commands                                Print the names of all commands, one a "
              "line, and exit\n"
              "  --version                                 Print the version and exit\n"
              "\n"
              "Commands:\n"
              "  say, tell                                 Say something\n"
              "  fail                                      Fail\n"
              "\n"
              "'example COMMAND --help' tells what a command takes.\n");
    EXPECT_EQ(Shown(Example(), {"-h"}), Shown(Example(), {"--help"}));
}

TEST(Tool, HelpOfACommandShowsItsArguments) {
    const std::string expected =
        "Say something\n"
        "Usage: example say [OPTIONS] WHAT TIMES\n"
        "\n"
        "Arguments:\n"
        "  WHAT REQUIRED                             What to say\n"
        "  TIMES REQUIRED                            How often\n"
        "\n"
        "Options:\n"
        "  -h,--help                                 Print this help message and exit\n"
        "  --loud                                    Say it loud\n";
    // Some releases of the library add an empty line.
    const std::string help = Shown(Example(), {"say", "--help"});
    EXPECT_THAT(help, AnyOf(expected, expected + "\n"));
    EXPECT_EQ(Shown(Example(), {"tell", "so", "--help"}), help);
}

TEST(Tool, PrintsItsVersion) {
    EXPECT_EQ(Shown(Example(), {"--version"}), std::string("example ") + KestalVersion() + "\n");
}

TEST(Tool, TheNamesOfTheCommandsCanBeListed) {
    EXPECT_EQ(Shown(Example(), {"--commands"}), "say\ntell\nfail\n");
}

TEST(Tool, WrongUsageIsReported) {
    const std::string hint = "\nTry 'example --help'.\n[2]\n";
    EXPECT_EQ(Shown(Example(), {}), "example: a command is expected" + hint);
    EXPECT_EQ(Shown(Example(), {"shout"}),
              "example: 'shout' is neither a command nor an option" + hint);
    EXPECT_EQ(Shown(Example(), {"Say"}),
              "example: 'Say' is neither a command nor an option; did you mean say?" + hint);
    EXPECT_EQ(Shown(Example(), {"--loud"}),
              "example: '--loud' is neither a command nor an option" + hint);
    EXPECT_EQ(Shown(Example(), {"shout", "--help"}),
              "example: 'shout' is neither a command nor an option" + hint);
    EXPECT_EQ(Shown(Example(), {"say", "so"}), "example: TIMES is required" + hint);
    EXPECT_EQ(Shown(Example(), {"say", "so", "4"}),
              "example: TIMES: '4' is not a number from 1 to 3" + hint);
    EXPECT_EQ(Shown(Example(), {"say", "so", "1", "more"}),
              "example: The following argument was not expected: more" + hint);
    EXPECT_EQ(Shown(Example(), {"fail", "--loud"}),
              "example: The following argument was not expected: --loud" + hint);
}

TEST(Tool, NamesTheCodesOfThePlatformAndOfItsBinding) {
    constexpr binding::EnumerationName kPlatform[] = {{3, "error_of_platform"}};
    constexpr binding::EnumerationName kBinding[] = {{1, "error_of_binding"}};
    const auto shown = [](const Tool& tool) { return Shown(tool, {"fail"}); };
    Tool tool = Example();
    tool.codes = kPlatform;
    EXPECT_THAT(shown(tool), HasSubstr("error code 3 (error_of_platform)\n"));
    tool.codes = {};
    tool.bindingCodes = kBinding;
    EXPECT_THAT(shown(tool), HasSubstr("error code 3 (no name; "));
    tool.bindingCodeBase = 2;
    EXPECT_THAT(shown(tool), HasSubstr("error code 3 (error_of_binding)\n"));
}

TEST(Tool, SuggestsTheNearestCommand) {
    EXPECT_EQ(Shown(SysintTool(), {"getSimStatus"}),
              "sysintcli: 'getSimStatus' is neither a command nor an option; did you mean "
              "getSIMStatus?\nTry 'sysintcli --help'.\n[2]\n");
    EXPECT_THAT(Shown(WebuiTool(), {"uri"}), Not(HasSubstr("did you mean")));
    EXPECT_THAT(Shown(MsgbusTool(), {"msgbusget"}), HasSubstr("did you mean MsgBusGet?"));
}

TEST(Tool, AFailingCallIsReported) {
    EXPECT_EQ(Shown(Example(), {"fail"}),
              "example: the_call failed, returned error code 3 (no name; what it means depends on "
              "the device)\n[1]\n");
}

/// A stream buffer that every write fails on.
class FullDisk : public std::streambuf {};

TEST(Tool, AnAnswerThatCannotBeWrittenIsAFailure) {
    FullDisk disk;
    std::ostream out(&disk);
    std::ostringstream errors;
    EXPECT_EQ(RunTool(Example(), {"say", "so", "1"}, out, errors), ExitCode::kFailed);
    EXPECT_EQ(errors.str(), "example: the output cannot be written\n");
}

class EveryTool : public testing::TestWithParam<Tool (*)(binding::Enumeration)> {};

TEST_P(EveryTool, HasHelpForEachNameOfACommandWithoutCallingThePlatform) {
    recording::Reset();
    const Tool tool = GetParam()({});
    for (const Command& command : tool.commands) {
        for (const std::string& name : command.names) {
            const std::string help = Shown(tool, {name, "--help"});
            EXPECT_THAT(help, HasSubstr("Usage: " + tool.name + " " + command.names.front()));
            EXPECT_THAT(help, Not(HasSubstr("[2]")));
        }
    }
    EXPECT_EQ(recording::TranscriptText(), "");
}

TEST_P(EveryTool, HasEachNameOnce) {
    std::set<std::string> names;
    const Tool tool = GetParam()({});
    for (const Command& command : tool.commands) {
        for (const std::string& name : command.names) {
            EXPECT_TRUE(names.insert(name).second) << name;
        }
    }
}

TEST_P(EveryTool, RefusesACommandWithoutItsArguments) {
    recording::Reset();
    const Tool tool = GetParam()({});
    for (const Command& command : tool.commands) {
        if (!command.parameters.empty()) {
            EXPECT_EQ(Shown(tool, {command.names.front()}),
                      tool.name + ": " + command.parameters.front().name + " is required\nTry '" +
                          tool.name + " --help'.\n[2]\n");
        }
    }
    EXPECT_EQ(recording::TranscriptText(), "");
}

TEST_P(EveryTool, RefusesASurplusArgument) {
    recording::Reset();
    const Tool tool = GetParam()({});
    for (const Command& command : tool.commands) {
        std::vector<std::string> arguments = Acceptable(command);
        arguments.emplace_back("surplus");
        EXPECT_EQ(Shown(tool, arguments), tool.name +
                                              ": The following argument was not expected: "
                                              "surplus\nTry '" +
                                              tool.name + " --help'.\n[2]\n");
    }
    EXPECT_EQ(recording::TranscriptText(), "");
}

INSTANTIATE_TEST_SUITE_P(Tools, EveryTool, testing::Values(SysintTool, WebuiTool, MsgbusTool));

}  // namespace
