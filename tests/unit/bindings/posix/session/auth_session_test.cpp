// Who counts as logged in.
#include "platform/auth_session.h"

#include <arpa/inet.h>

#include <cstdint>

#include "bindings/posix/session/session_codes.h"
#include "bindings/posix/session/session_store.h"
#include "platform/cgi_helper.h"
#include "tests/support/scratch.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr int kOnlyAsks = 2;

webui_addr_t Address(const std::string& text) {
    webui_addr_t address{};
    int family = 0;
    EXPECT_EQ(GetIPAddressFamily(text, &family), 0);
    EXPECT_EQ(inet_pton(family, text.c_str(), address.address), 1);
    address.family = static_cast<std::uint32_t>(family);
    return address;
}

class AuthSessions : public SimulatedDevice {
  protected:
    AuthSessions() : store(device.string() + ".sessions") {}

    /// Writes a store with one session, renewed @p age seconds ago, with the idle time @p idle.
    void Store(const std::string& id, std::int64_t age = 0, std::int64_t idle = 60,
               const std::string& address = "192.168.1.2") const {
        const std::string renewed = std::to_string(binding::Now() - age);
        WriteFile(store, R"({"sessions": [{"digest": ")" + binding::DigestOf(id) +
                             R"(", "address": ")" + address + R"(", "userAgentDigest": ")" +
                             binding::DigestOf("browser") + R"(", "opened": )" + renewed +
                             R"(, "renewed": )" + renewed + R"(, "idleSeconds": )" +
                             std::to_string(idle) + "}]}");
    }

    static int Init(const std::string& id, const std::string& address = "192.168.1.2",
                    const std::string& userAgent = "browser", int mode = kOnlyAsks) {
        return AuthSession().Init(id, Address(address), userAgent, mode);
    }

    std::filesystem::path store;
};

TEST_F(AuthSessions, LiveSessionOfThisCallerIsLoggedIn) {
    Store("id");
    AuthSession session;
    EXPECT_EQ(session.Init("id", Address("192.168.1.2"), "browser", kOnlyAsks), 0);
    bool loggedOn = false;
    EXPECT_EQ(session.LoggedOn(loggedOn), 0);
    EXPECT_TRUE(loggedOn);
}

TEST_F(AuthSessions, LoggedOnNeedsASuccessfulInit) {
    Store("id");
    AuthSession session;
    bool loggedOn = true;
    EXPECT_NE(session.LoggedOn(loggedOn), 0);
    EXPECT_EQ(session.Init("id", Address("192.168.1.2"), "browser", kOnlyAsks), 0);
    EXPECT_NE(session.Init("other", Address("192.168.1.2"), "browser", kOnlyAsks), 0);
    EXPECT_NE(session.LoggedOn(loggedOn), 0);
    EXPECT_TRUE(loggedOn) << "nothing is written";
}

TEST_F(AuthSessions, EachPartMustMatch) {
    Store("id");
    EXPECT_EQ(Init("other"), binding::kSessionUnknown);
    EXPECT_EQ(Init("ID"), binding::kSessionUnknown);
    EXPECT_EQ(Init("id", "192.168.1.3"), binding::kSessionOtherAddress);
    EXPECT_EQ(Init("id", "::1"), binding::kSessionOtherAddress);
    EXPECT_EQ(Init("id", "192.168.1.2", "robot"), binding::kSessionOtherUserAgent);
    EXPECT_EQ(Init("id", "192.168.1.2", ""), binding::kSessionOtherUserAgent);
    EXPECT_EQ(Init("id", "192.168.1.2", "browser", 1), binding::kSessionMode);
    EXPECT_EQ(Init("id"), 0);
}

TEST_F(AuthSessions, AddressOfUnknownFamilyIsRefused) {
    Store("id", 0, 60, "");
    EXPECT_EQ(AuthSession().Init("id", webui_addr_t{}, "browser", kOnlyAsks),
              binding::kSessionOtherAddress);
}

TEST_F(AuthSessions, EmptyIdentifierIsUnknownAndTouchesNoFile) {
    WriteFile(store, "damaged");
    EXPECT_EQ(Init(""), binding::kSessionUnknown);
    EXPECT_TRUE(Log().empty());
}

TEST_F(AuthSessions, LongAndBinaryIdentifiersAreUnknown) {
    Store("id");
    EXPECT_EQ(Init(std::string(65536, 'x')), binding::kSessionUnknown);
    EXPECT_EQ(Init(std::string("id\0", 3)), binding::kSessionUnknown);
    EXPECT_EQ(Init("\xff\xfe"), binding::kSessionUnknown);
}

TEST_F(AuthSessions, SessionsExpireWhenIdle) {
    Store("id", 59, 600);
    EXPECT_EQ(Init("id"), 0);
    Store("id", 61, 60);
    EXPECT_EQ(Init("id"), binding::kSessionExpired);
    Store("id", -3600, 60);
    EXPECT_EQ(Init("id"), binding::kSessionExpired) << "the clock was set back";
}

TEST_F(AuthSessions, SessionsLiveAtLeastTheirIdleTime) {
    // Renewed late in second 100 and idle for 2 seconds: live until late in second 102.
    binding::Session session;
    session.renewed = 100;
    session.idleSeconds = 2;
    EXPECT_FALSE(session.IsLive(99));
    EXPECT_TRUE(session.IsLive(100));
    EXPECT_TRUE(session.IsLive(102));
    EXPECT_FALSE(session.IsLive(103));
}

TEST_F(AuthSessions, ChecksDoNotRenewASession) {
    Store("id");
    const std::string before = ReadFile(store);
    EXPECT_EQ(Init("id"), 0);
    EXPECT_EQ(ReadFile(store), before);
}

TEST_F(AuthSessions, MappedAddressesCountAsTheirIpv4Address) {
    Store("id");
    EXPECT_EQ(Init("id", "::ffff:192.168.1.2"), 0);
    EXPECT_EQ(Init("id", "::192.168.1.2"), binding::kSessionOtherAddress);
    Store("id", 0, 60, "fe80::1");
    EXPECT_EQ(Init("id", "fe80:0::0:1"), 0);
}

TEST_F(AuthSessions, WithoutAStoreNobodyHasASessionAndNothingIsLogged) {
    EXPECT_EQ(Init("id"), binding::kSessionUnknown);
    EXPECT_TRUE(Log().empty());
}

TEST_F(AuthSessions, ChangedStoreIsReadAgain) {
    Store("id");
    EXPECT_EQ(Init("id"), 0);
    Store("other");
    EXPECT_EQ(Init("id"), binding::kSessionUnknown);
    EXPECT_EQ(Init("other"), 0);
    std::filesystem::remove(store);
    EXPECT_EQ(Init("other"), binding::kSessionUnknown);
}

TEST_F(AuthSessions, DamagedStoreLogsNobodyInAndIsLoggedOnce) {
    const std::string entry =
        R"("digest": "", "address": "", "userAgentDigest": "", "opened": 1, "renewed": 1)";
    for (const std::string& damaged :
         {std::string("{"), std::string("[]"), std::string("{\"sessions\": [7]}"),
          std::string("{\"sessions\": [{}]}"), std::string("{\"sessions\": []}\0", 17),
          "{\"sessions\": [{" + entry + ", \"idleSeconds\": 1e300}]}"}) {
        Store("id");
        EXPECT_EQ(Init("id"), 0);
        const std::size_t before = Log().size();
        WriteFile(store, damaged);
        EXPECT_EQ(Init("id"), binding::kSessionUnknown);
        EXPECT_EQ(Init("id"), binding::kSessionUnknown);
        ASSERT_EQ(Log().size(), before + 1) << damaged;
        EXPECT_THAT(Log().back(), HasSubstr("(nobody is logged in)"));
    }
}

TEST_F(AuthSessions, StoreMayBeElsewhere) {
    environment.Set("KESTAL_SESSIONS", directory / "elsewhere");
    EXPECT_EQ(binding::SessionStorePath(), directory / "elsewhere");
    environment.Unset("KESTAL_SESSIONS");
    EXPECT_EQ(binding::SessionStorePath(), store);
}

TEST_F(AuthSessions, DigestIsSha256) {
    EXPECT_EQ(binding::DigestOf("abc"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_TRUE(binding::SameDigest("ab", "ab"));
    EXPECT_FALSE(binding::SameDigest("ab", "aB"));
    EXPECT_FALSE(binding::SameDigest("ab", "abc"));
}

}  // namespace
