// The common part of the command-line tools. A tool is a table of commands, each of which takes
// arguments and writes an answer.
#pragma once

#include <functional>
#include <iosfwd>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "bindings/names/enumerations.h"
#include "tools/arguments.h"

/// Exit codes of the tools.
enum class ExitCode {
    kSuccess = 0,
    kFailed = 1,
    kUsage = 2,
};

/// A command of a tool.
struct Command {
    /// The command's name, then alternative names.
    std::vector<std::string> names;
    std::string description;
    std::vector<Parameter> parameters = {};
    /// Does what the command is for and writes its answer. Throws CallFailed, UsageError and, for
    /// any other failure, std::exception.
    std::function<void(const Arguments&, std::ostream&)> run = {};
    std::vector<Option> options = {};
    /// The commands of a group; a group has neither arguments nor anything to run.
    std::vector<Command> commands = {};
};

/// A call of the platform has failed.
class CallFailed : public std::runtime_error {
  public:
    CallFailed(const std::string& call, int newCode) : std::runtime_error(call), code(newCode) {}

    int Code() const { return code; }

  private:
    int code;
};

/// Throws CallFailed when @p code, which @p call has returned, is not @p success.
inline void Check(const std::string& call, int code, int success) {
    if (code != success) {
        throw CallFailed(call, code);
    }
}

/// The arguments of a command are wrong in a way that its table cannot express.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// An option of the tool as a whole, which is given before the command. It takes a value.
struct Setting {
    Option option;
    /// Called with the value before the command runs.
    std::function<void(const std::string&)> apply;
};

struct Tool {
    std::string name;
    std::string description;
    /// Names of the codes with which calls fail.
    binding::Enumeration codes;
    /// A tool with one command that has no name takes the arguments of that command itself.
    std::vector<Command> commands;
    std::vector<Setting> settings = {};
    /// Names of the codes of the binding that the tool is linked with, and what the binding adds to
    /// these codes.
    binding::Enumeration bindingCodes = {};
    int bindingCodeBase = 0;
};

/// Runs the command that @p arguments (without the program's name) ask for. Answers go to @p out,
/// complaints to @p errors. Throws what the command throws, except for CallFailed and UsageError.
ExitCode RunTool(const Tool& tool, const std::vector<std::string>& arguments, std::ostream& out,
                 std::ostream& errors);

/// The same for main(). Any exception leads to a complaint and exit code 1.
int RunTool(const Tool& tool, int argc, char** argv);
