// The command that takes another one as JSON and answers as JSON, for callers that are not shells.
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "bindings/posix/json/json_text.h"
#include "tools/kestal_sim/commands.h"

namespace {

using json = nlohmann::ordered_json;

constexpr const char* kForm =
    R"(the request is not of the form {"command": ["set", "sys.getBatteryStatus.chargePercent", 9]})";

/// Reads at most this many bytes, far more than any device has.
constexpr std::size_t kMostBytes = 1U << 20U;

std::string Request() {
    std::string text(kMostBytes + 1, '\0');
    std::cin.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(std::cin.gcount()));
    if (text.size() > kMostBytes) {
        throw std::runtime_error("the request is longer than 1 MiB");
    }
    return text;
}

std::vector<std::string> Words(const std::string& request) {
    json parsed;
    try {
        parsed = binding::ParseStrictly(request);
    } catch (const binding::SyntaxError& error) {
        throw std::runtime_error("the request: " + std::string(error.what()));
    }
    const auto command = parsed.find("command");
    if (!parsed.is_object() || parsed.size() != 1 || command == parsed.end() ||
        !command->is_array() || command->empty()) {
        throw std::runtime_error(kForm);
    }
    std::vector<std::string> words;
    for (const json& word : *command) {
        words.push_back(word.is_string() ? word.get<std::string>() : word.dump());
    }
    return words;
}

/// What a shell would show: exit code, standard output and standard error.
json AnswerTo(const Tool& tool, const std::string& request) {
    std::ostringstream out;
    std::ostringstream errors;
    ExitCode code = ExitCode::kFailed;
    try {
        code = RunTool(tool, Words(request), out, errors);
    } catch (const std::exception& error) {
        errors << tool.name << ": " << error.what() << "\n";
    }
    return {{"exitCode", static_cast<int>(code)}, {"output", out.str()}, {"error", errors.str()}};
}

}  // namespace

Command ControlCommand(Tool tool) {
    return {
        .names = {"control"},
        .description = R"(Carry out the command on standard input, such as {"command": ["show"]}, )"
                       "and answer as JSON",
        .run = [tool = std::move(tool)](const Arguments& /*arguments*/, std::ostream& out) {
            out << AnswerTo(tool, Request()).dump(-1, ' ', false, json::error_handler_t::replace)
                << "\n";
        }};
}
