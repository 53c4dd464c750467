// The commands that log callers in to the web UI of the simulated device and out.
#include <limits>
#include <ostream>
#include <stdexcept>

#include "bindings/posix/session/session_login.h"
#include "bindings/posix/session/session_store.h"
#include "tools/kestal_sim/commands.h"

namespace {

using binding::Session;

void Open(const Arguments& arguments, std::ostream& out) {
    const auto idleSeconds = static_cast<std::uint32_t>(std::stoll(arguments.Value("--idle")));
    try {
        out << binding::OpenSession(arguments.Value("--address"), arguments.Value("--user-agent"),
                                    idleSeconds)
            << "\n";
    } catch (const std::invalid_argument& error) {
        throw UsageError("--address: " + std::string(error.what()));
    }
}

void Renew(const Arguments& arguments, std::ostream& /*out*/) {
    binding::RenewSession(binding::IdentifierIn(arguments.Value("COOKIE")));
}

void Close(const Arguments& arguments, std::ostream& /*out*/) {
    if (arguments.Given("COOKIE")) {
        binding::CloseSession(binding::IdentifierIn(arguments.Value("COOKIE")));
    } else if (arguments.Given("--all")) {
        binding::CloseAllSessions();
    } else {
        throw UsageError("COOKIE or --all is required");
    }
}

/// The beginning of a digest, which is enough to tell one session or user agent from another.
std::string Short(const std::string& digest) {
    constexpr std::size_t kDigits = 12;
    return digest.substr(0, kDigits);
}

void List(const Arguments& /*arguments*/, std::ostream& out) {
    const std::int64_t now = binding::Now();
    const std::string noUserAgent = binding::DigestOf("");
    for (const Session& session : binding::LiveSessions()) {
        out << Short(session.digest) << " " << session.address << " opened " << now - session.opened
            << " s ago, idle " << now - session.renewed << " of " << session.idleSeconds << " s, "
            << (session.userAgentDigest == noUserAgent
                    ? "no user agent"
                    : "user agent " + Short(session.userAgentDigest))
            << "\n";
    }
}

}  // namespace

Command SessionCommand() {
    return {.names = {"session"},
            .description = "Manage the sessions of the web UI",
            .commands = {
                {.names = {"open"},
                 .description = "Open a session and print its cookie",
                 .run = Open,
                 .options = {{.name = "--address",
                              .description = "Address of the caller",
                              .value = "ADDRESS",
                              .preset = "127.0.0.1"},
                             {.name = "--user-agent",
                              .description = "User agent of the caller",
                              .value = "TEXT"},
                             {.name = "--idle",
                              .description = "Seconds after which the session ends unless it is "
                                             "renewed",
                              .value = "SECONDS",
                              .preset = "600",
                              .range = {{1, std::numeric_limits<std::uint32_t>::max()}}}}},
                {.names = {"renew"},
                 .description = "Restart the idle time of a session",
                 .parameters = {{"COOKIE", "Cookie that open printed, or the identifier in it"}},
                 .run = Renew},
                {.names = {"close"},
                 .description = "End a session, or all",
                 .parameters = {{.name = "COOKIE",
                                 .description = "What open printed, or the identifier in it",
                                 .isOptional = true}},
                 .run = Close,
                 .options = {{.name = "--all",
                              .description = "End all sessions",
                              .excludes = {"COOKIE"}}}},
                {.names = {"list"}, .description = "Print who is logged in", .run = List}}};
}
