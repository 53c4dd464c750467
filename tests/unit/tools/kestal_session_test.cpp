// kestal-session, as it is run from a shell.
#include <arpa/inet.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>

#include "platform/auth_session.h"
#include "platform/cgi_helper.h"
#include "tests/support/scratch.h"

namespace {

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
        const std::string command = std::string(KESTAL_SESSION_COMMAND) + " " + arguments + " 2>&1";
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

TEST_F(SessionCommand, ClosesTheSessionItIsGiven) {
    const std::string first = Open();
    const std::string second = Open();
    EXPECT_EQ(Run("close " + first).exitCode, 0);
    EXPECT_FALSE(IsLoggedIn(first));
    EXPECT_TRUE(IsLoggedIn(second));
    EXPECT_EQ(Run("close " + first).exitCode, 1);
}

TEST_F(SessionCommand, RenewsASession) {
    const std::string id = Open();
    std::string aged = ReadFile(store);
    const std::size_t renewed = aged.find("\"renewed\": ") + 11;
    const std::int64_t before = std::stoll(aged.substr(renewed)) - 500;
    aged.replace(renewed, aged.find(',', renewed) - renewed, std::to_string(before));
    WriteFile(store, aged);
    EXPECT_EQ(Run("renew " + id).exitCode, 0);
    EXPECT_THAT(Run("list").output,
                MatchesRegex("[0-9a-f]+ 127\\.0\\.0\\.1 idle [0-9][0-9]? of 600 s\n"));
    EXPECT_EQ(Run("renew unknown").exitCode, 1);
}

TEST_F(SessionCommand, ListsLiveSessionsWithoutIdentifiers) {
    EXPECT_THAT(Run("list").output, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(store));
    const std::string id = Open("--idle 77");
    const Outcome listed = Run("list");
    EXPECT_EQ(listed.exitCode, 0);
    EXPECT_THAT(listed.output, MatchesRegex("[0-9a-f]+ 127\\.0\\.0\\.1 idle [0-9]+ of 77 s\n"));
    EXPECT_THAT(listed.output, Not(HasSubstr(id.substr(0, 12))));
}

TEST_F(SessionCommand, RefusesADamagedStore) {
    WriteFile(store, "{");
    EXPECT_EQ(Run("open").exitCode, 1);
    EXPECT_EQ(Run("list").exitCode, 1);
    EXPECT_EQ(ReadFile(store), "{");
}

TEST_F(SessionCommand, ExplainsItself) {
    const Outcome help = Run("--help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.output, StartsWith("usage: kestal-session open"));
    for (const std::string wrong :
         {"", "shut", "open --idle", "open --idle 0", "open --idle x", "open --address localhost",
          "open extra", "open --colour red", "renew", "close a b", "list all"}) {
        const Outcome outcome = Run(wrong);
        EXPECT_EQ(outcome.exitCode, 2) << wrong;
        EXPECT_THAT(outcome.output, StartsWith("kestal-session: "));
    }
    EXPECT_FALSE(std::filesystem::exists(store));
}

}  // namespace
