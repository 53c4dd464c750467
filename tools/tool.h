// What the tools have in common: a tool is a table of commands, each of which makes one call of the
// platform and writes what it answers.
#pragma once

#include <functional>
#include <iosfwd>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/arguments.h"
#include "tools/enumerations.h"

/// Exit codes of the tools.
enum class ExitCode {
    kSuccess = 0,
    kFailed = 1,
    kUsage = 2,
};

/// A command of a tool.
struct Command {
    /// The command's name, then further ones under which people know it.
    std::vector<std::string> names;
    std::string description;
    std::vector<Parameter> parameters;
    /// Makes the call and writes its answer; throws CallFailed.
    std::function<void(const Arguments&, std::ostream&)> run;
    /// A switch of the command, such as "--raw"; empty when it has none.
    std::string option = {};
    std::string optionDescription = {};
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

struct Tool {
    std::string name;
    std::string description;
    /// Names of the codes with which calls fail.
    Enumeration codes;
    std::vector<Command> commands;
};

/// Runs the command that @p arguments (without the program's name) ask for. Answers go to @p out,
/// complaints to @p errors.
ExitCode RunTool(const Tool& tool, const std::vector<std::string>& arguments, std::ostream& out,
                 std::ostream& errors);

/// The same for main().
int RunTool(const Tool& tool, int argc, char** argv);
