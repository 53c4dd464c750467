// kestal-session: opens, renews, closes and lists web UI sessions of the simulated device.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bindings/simulator/session_store.h"
#include "platform/web_common.h"

namespace {

using simulator::Session;

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
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

using Arguments = std::vector<std::string>;

std::string NewIdentifier() {
    std::array<std::uint8_t, 32> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        throw std::runtime_error("no random bytes");
    }
    std::string text;
    for (const std::uint8_t byte : bytes) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text;
}

std::string CanonicalAddress(const std::string& text) {
    webui_addr_t address{};
    int family = 0;
    if (GetIPAddressFamily(text, &family) != 0 ||
        inet_pton(family, text.c_str(), address.address) != 1) {
        throw UsageError("'" + text + "' is not an IP address");
    }
    address.family = static_cast<std::uint32_t>(family);
    return simulator::AddressText(address);
}

std::int64_t IdleSeconds(const std::string& text) {
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
    const std::string identifier = NewIdentifier();
    const std::int64_t now = simulator::Now();
    const Session session{.digest = simulator::DigestOf(identifier),
                          .address = CanonicalAddress(options["--address"]),
                          .userAgentDigest = simulator::DigestOf(options["--user-agent"]),
                          .opened = now,
                          .renewed = now,
                          .idleSeconds = IdleSeconds(options["--idle"])};
    simulator::UpdateSessions([&](std::vector<Session>& sessions) { sessions.push_back(session); });
    std::printf("torusess=%s\n", identifier.c_str());
}

/// Runs @p change on the session that the only argument names.
void ChangeOne(
    const Arguments& arguments,
    const std::function<void(std::vector<Session>&, std::vector<Session>::iterator)>& change) {
    if (arguments.size() != 1) {
        throw UsageError("expected one session identifier");
    }
    const std::string digest = simulator::DigestOf(arguments.front());
    simulator::UpdateSessions([&](std::vector<Session>& sessions) {
        const auto found = std::find_if(
            sessions.begin(), sessions.end(),
            [&](const Session& session) { return simulator::SameDigest(session.digest, digest); });
        if (found == sessions.end()) {
            throw std::runtime_error("no such session");
        }
        change(sessions, found);
    });
}

void Renew(const Arguments& arguments) {
    ChangeOne(arguments,
              [](auto& /*sessions*/, auto session) { session->renewed = simulator::Now(); });
}

void Close(const Arguments& arguments) {
    ChangeOne(arguments, [](auto& sessions, auto session) { sessions.erase(session); });
}

void List(const Arguments& arguments) {
    if (!arguments.empty()) {
        throw UsageError("list takes no arguments");
    }
    const std::int64_t now = simulator::Now();
    for (const Session& session : simulator::LiveSessions()) {
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
    } catch (const UsageError& error) {
        (void)std::fprintf(stderr, "kestal-session: %s\n%s", error.what(), kUsage);
        return 2;
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "kestal-session: %s\n", error.what());
        return 1;
    }
}
