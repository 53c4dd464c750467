// kestal-session: opens, renews, closes and lists web UI sessions of the simulated device.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "bindings/posix/session/session_login.h"
#include "bindings/posix/session/session_store.h"

namespace {

using binding::Session;

constexpr const char* kUsage =
    "usage: kestal-session open [--address ADDRESS] [--user-agent TEXT] [--idle SECONDS]\n"
    "       kestal-session renew ID\n"
    "       kestal-session close ID\n"
    "       kestal-session list\n"
    "\n"
    "Manages the web UI sessions of the simulated device. open prints the session cookie for a\n"
    "caller from ADDRESS (127.0.0.1) whose user agent is TEXT (empty); the session ends SECONDS\n"
    "(600) after it was opened or renewed. ID is the value of the cookie.\n"
    "\n"
    "The sessions are in the file that KESTAL_SESSIONS names, or beside the device document\n"
    "(KESTAL_DEVICE), in a file with \".sessions\" added to its name.\n";

/// The command line is wrong.
class UsageError : public std::invalid_argument {
    using std::invalid_argument::invalid_argument;
};

using Arguments = std::vector<std::string>;

std::uint32_t IdleSeconds(const std::string& text) {
    std::uint32_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error != std::errc() || end != text.data() + text.size() || seconds == 0) {
        throw UsageError("'" + text + "' is not a number of seconds");
    }
    return seconds;
}

void Open(const Arguments& arguments) {
    std::map<std::string, std::string> options = {
        {"--address", "127.0.0.1"}, {"--user-agent", ""}, {"--idle", "600"}};
    for (std::size_t index = 0; index < arguments.size(); index += 2) {
        const auto option = options.find(arguments[index]);
        if (option == options.end() || index + 1 == arguments.size()) {
            throw UsageError("'" + arguments[index] + "' is no option, or lacks its value");
        }
        option->second = arguments[index + 1];
    }
    const std::string cookie = binding::OpenSession(options["--address"], options["--user-agent"],
                                                    IdleSeconds(options["--idle"]));
    std::printf("%s\n", cookie.c_str());
}

const std::string& OnlyIdentifier(const Arguments& arguments) {
    if (arguments.size() != 1) {
        throw UsageError("expected one session identifier");
    }
    return arguments.front();
}

void Renew(const Arguments& arguments) {
    binding::RenewSession(OnlyIdentifier(arguments));
}

void Close(const Arguments& arguments) {
    binding::CloseSession(OnlyIdentifier(arguments));
}

void List(const Arguments& arguments) {
    if (!arguments.empty()) {
        throw UsageError("list takes no arguments");
    }
    const std::int64_t now = binding::Now();
    for (const Session& session : binding::LiveSessions()) {
        std::printf("%.12s %s idle %lld of %lld s\n", session.digest.c_str(),
                    session.address.c_str(), static_cast<long long>(now - session.renewed),
                    static_cast<long long>(session.idleSeconds));
    }
}

void RunCommand(const Arguments& arguments) {
    static const std::map<std::string, std::function<void(const Arguments&)>> kCommands = {
        {"open", Open}, {"renew", Renew}, {"close", Close}, {"list", List}};
    const auto command = arguments.empty() ? kCommands.end() : kCommands.find(arguments.front());
    if (command == kCommands.end()) {
        throw UsageError("expected open, renew, close or list");
    }
    command->second(Arguments(arguments.begin() + 1, arguments.end()));
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Arguments arguments(argv + 1, argv + argc);
        if (std::find(arguments.begin(), arguments.end(), "--help") != arguments.end()) {
            (void)std::fputs(kUsage, stdout);
            return 0;
        }
        RunCommand(arguments);
        return std::fflush(stdout) == 0 ? 0 : 1;
    } catch (const std::invalid_argument& error) {
        (void)std::fprintf(stderr, "kestal-session: %s\n%s", error.what(), kUsage);
        return 2;
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "kestal-session: %s\n", error.what());
        return 1;
    }
}
