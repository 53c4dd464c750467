// kestal-sim session, as it is run from a shell.
#include <arpa/inet.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>

#include "bindings/posix/session/session_store.h"
#include "platform/auth_session.h"
#include "platform/cgi_helper.h"
#include "tests/support/scratch.h"

namespace {

using ::testing::ContainsRegex;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

struct Outcome {
    int exitCode;
    std::string output;
};

class SessionCommand : public SimulatedDevice {
  protected:
    SessionCommand() : store(device.string() + ".sessions") {}

    /// Runs the command; the output is that of both streams.
    static Outcome Run(const std::string& arguments) {
        const std::string command =
            std::string(KESTAL_SIM_COMMAND) + " session " + arguments + " 2>&1";
        std::FILE* pipe = popen(command.c_str(), "r");
        EXPECT_NE(pipe, nullptr);
        Outcome outcome{};
        std::array<char, 4096> bytes{};
        std::size_t size = 0;
        while ((size = std::fread(bytes.data(), 1, bytes.size(), pipe)) > 0) {
            outcome.output.append(bytes.data(), size);
        }
        outcome.exitCode = WEXITSTATUS(pclose(pipe));
        return outcome;
    }

    /// Opens a session and returns its identifier.
    static std::string Open(const std::string& options = "") {
        const Outcome opened = Run("open " + options);
        EXPECT_EQ(opened.exitCode, 0);
        EXPECT_THAT(opened.output, MatchesRegex("torusess=[0-9a-f]+\n"));
        EXPECT_EQ(opened.output.size(), 9U + 64U + 1U);
        return opened.output.substr(9, 64);
    }

    static bool IsLoggedIn(const std::string& id, const std::string& ip = "127.0.0.1",
                           const std::string& userAgent = "") {
        webui_addr_t address{};
        int family = 0;
        EXPECT_EQ(GetIPAddressFamily(ip, &family), 0);
        EXPECT_EQ(inet_pton(family, ip.c_str(), address.address), 1);
        address.family = static_cast<std::uint32_t>(family);
        return AuthSession().Init(id, address, userAgent, 2) == 0;
    }

    std::filesystem::path store;
};

TEST_F(SessionCommand, OpensASession) {
    EXPECT_TRUE(IsLoggedIn(Open()));
    EXPECT_TRUE(
        IsLoggedIn(Open("--address ::ffff:10.0.0.1 --user-agent 'a b'"), "10.0.0.1", "a b"));
    EXPECT_TRUE(IsLoggedIn(Open("--idle 5 --address fe80::1"), "fe80::1"));
}

TEST_F(SessionCommand, StoreHoldsNoIdentifierAndIsPrivate) {
    const std::string id = Open("--user-agent secret");
    EXPECT_THAT(ReadFile(store), Not(HasSubstr(id)));
    EXPECT_THAT(ReadFile(store), Not(HasSubstr("secret")));
    struct stat status = {};
    ASSERT_EQ(stat(store.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(SessionCommand, ClosesTheSessionItIsGivenByCookieOrIdentifier) {
    const std::string first = Open();
    const std::string second = Open();
    const std::string third = Open();
    EXPECT_EQ(Run("close " + first).exitCode, 0);
    EXPECT_EQ(Run("close torusess=" + second).exitCode, 0);
    EXPECT_FALSE(IsLoggedIn(first));
    EXPECT_FALSE(IsLoggedIn(second));
    EXPECT_TRUE(IsLoggedIn(third));
    const Outcome again = Run("close " + first);
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(again.output, "kestal-sim: no such session\n");
}

TEST_F(SessionCommand, ClosesAllSessionsOnlyWhenItIsTold) {
    const std::string first = Open();
    const std::string second = Open();
    EXPECT_EQ(Run("close").exitCode, 2);
    EXPECT_TRUE(IsLoggedIn(first));
    EXPECT_TRUE(IsLoggedIn(second));
    EXPECT_EQ(Run("close --all").exitCode, 0);
    EXPECT_FALSE(IsLoggedIn(first));
    EXPECT_FALSE(IsLoggedIn(second));
}

TEST_F(SessionCommand, RenewsASessionByCookieOrIdentifier) {
    const std::string id = Open();
    for (const std::string& cookie : {id, "torusess=" + id}) {
        std::string aged = ReadFile(store);
        const std::size_t renewed = aged.find("\"renewed\": ") + 11;
        const std::int64_t before = std::stoll(aged.substr(renewed)) - 500;
        aged.replace(renewed, aged.find(',', renewed) - renewed, std::to_string(before));
        WriteFile(store, aged);
        EXPECT_EQ(Run("renew " + cookie).exitCode, 0);
        EXPECT_THAT(Run("list").output, MatchesRegex(".* idle [0-9][0-9]? of 600 s, .*\n"));
    }
    EXPECT_EQ(Run("renew unknown").exitCode, 1);
    EXPECT_EQ(Run("renew ''").exitCode, 1);
}

TEST_F(SessionCommand, ListsLiveSessionsByDigest) {
    EXPECT_THAT(Run("list").output, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(store));
    const std::string id = Open("--idle 77");
    (void)Open("--address fe80::1 --user-agent me");
    const Outcome listed = Run("list");
    EXPECT_EQ(listed.exitCode, 0);
    EXPECT_THAT(listed.output,
                MatchesRegex("[0-9a-f]+ 127\\.0\\.0\\.1 opened [0-9]+ s ago, idle [0-9]+ of 77 s, "
                             "no user agent\n"
                             "[0-9a-f]+ fe80::1 opened [0-9]+ s ago, idle [0-9]+ of 600 s, "
                             "user agent 2744ccd10c75\n"));
    EXPECT_THAT(listed.output, StartsWith(binding::DigestOf(id).substr(0, 12) + " "));
    EXPECT_THAT(listed.output, Not(HasSubstr(id.substr(0, 12))));
}

TEST_F(SessionCommand, RefusesADamagedStore) {
    WriteFile(store, "{");
    for (const std::string command : {"open", "renew a", "close a", "close --all", "list"}) {
        EXPECT_EQ(Run(command).exitCode, 1) << command;
    }
    EXPECT_EQ(ReadFile(store), "{");
}

TEST_F(SessionCommand, PrintsItsHelp) {
    const Outcome help = Run("--help");
    EXPECT_EQ(help.exitCode, 0);
    for (const std::string command : {"open", "renew", "close", "list"}) {
        EXPECT_THAT(help.output, HasSubstr("\n  " + command + " "));
        EXPECT_THAT(Run(command + " --help").output,
                    HasSubstr("\nUsage: kestal-sim session " + command + " "));
    }
    EXPECT_THAT(Run("open --help").output, ContainsRegex("--idle SECONDS(=600| \\[600\\]) "));
}

TEST_F(SessionCommand, ReportsWrongUsage) {
    const std::string hint = "Try 'kestal-sim --help'.\n";
    EXPECT_EQ(Run("").output, "kestal-sim: a command is expected\n" + hint);
    EXPECT_EQ(Run("lst").output,
              "kestal-sim: 'lst' is neither a command nor an option; did you mean list?\n" + hint);
    EXPECT_EQ(Run("open --idle x").output,
              "kestal-sim: --idle: 'x' is not a number from 1 to 4294967295\n" + hint);
    EXPECT_EQ(Run("open --address localhost").output,
              "kestal-sim: --address: 'localhost' is not an IP address\n" + hint);
    EXPECT_EQ(Run("close").output, "kestal-sim: COOKIE or --all is required\n" + hint);
    EXPECT_EQ(Run("close ''").output,
              "kestal-sim: COOKIE: expected a value, found nothing\n" + hint);
    for (const std::string wrong :
         {"", "lst", "lst --help", "--user-agent a", "open --idle", "open --idle 0",
          "open --idle x", "open --idle 4294967296",
          "open --user-agent=", "open --address localhost", "open extra", "open --colour red",
          "renew", "renew a b", "close", "close a b", "close ''", "close a --all", "list all"}) {
        const Outcome outcome = Run(wrong);
        EXPECT_EQ(outcome.exitCode, 2) << wrong;
        EXPECT_THAT(outcome.output, StartsWith("kestal-sim: ")) << wrong;
        EXPECT_THAT(outcome.output, EndsWith(hint)) << wrong;
    }
    EXPECT_FALSE(std::filesystem::exists(store));
}

}  // namespace
