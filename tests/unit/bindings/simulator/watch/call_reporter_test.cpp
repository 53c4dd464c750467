// Calls are reported to the socket beside the document, and never wait for whoever reads it.
#include "bindings/simulator/watch/call_reporter.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <memory>

#include "bindings/device/seen_call.h"
#include "bindings/posix/files/file_io.h"
#include "bindings/posix/request_title.h"
#include "bindings/simulator/watch/watch_message.h"
#include "platform/sysint.h"
#include "tests/support/scratch.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ReportedCalls : public SimulatedDevice {
  protected:
    ReportedCalls() { Document(R"({"sys": {"getSIMStatus": 7}})"); }

    /// A socket to which callers connect, as that of kestal-sim.
    class Watcher {
      public:
        explicit Watcher(const std::string& path)
            : listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK, 0)) {
            sockaddr_un address{};
            address.sun_family = AF_UNIX;
            path.copy(&address.sun_path[0], path.size());
            (void)unlink(path.c_str());
            const auto* const name = reinterpret_cast<const sockaddr*>(&address);
            EXPECT_EQ(bind(listener.Number(), name, sizeof address), 0);
            EXPECT_EQ(listen(listener.Number(), 4), 0);
        }

        /// What has arrived, one text for each message.
        std::vector<std::string> Read() {
            if (!connection) {
                connection = std::make_unique<binding::FileDescriptor>(
                    accept(listener.Number(), nullptr, nullptr));
            }
            std::vector<std::string> texts;
            std::array<std::byte, binding::kMostWatchBytes> bytes{};
            ssize_t size = 0;
            while ((size = recv(connection->Number(), bytes.data(), bytes.size(), MSG_DONTWAIT)) >
                   0) {
                const auto message = binding::DecodedWatchMessage(
                    std::span(bytes).first(static_cast<std::size_t>(size)));
                texts.push_back(message ? Text(*message) : "no message");
            }
            return texts;
        }

      private:
        static std::string Text(const binding::WatchMessage& message) {
            return std::string(message.request) + "|" + std::string(message.call) + "|" +
                   std::to_string(message.answerSize) + "|" + std::to_string(message.missed);
        }

        binding::FileDescriptor listener;
        std::unique_ptr<binding::FileDescriptor> connection;
    };

    std::string Socket() const { return binding::WatchSocketPath(device); }

    static void Ask() {
        int status = 0;
        sys_sdkInitialize();
        EXPECT_EQ(sys_getSIMStatus(&status), SYS_SUCCESS);
        sys_sdkShutdown();
    }
};

TEST_F(ReportedCalls, AreThoseOfTheSessionThatFindsTheWatcherAndOfLaterOnes) {
    Ask();
    EXPECT_EQ(binding::theCallWatcher, nullptr);
    Watcher watcher(Socket());
    binding::NoteRequest("GET", "/srv/status", "");
    Ask();
    EXPECT_THAT(watcher.Read(), ElementsAre("GET /srv/status|sys_sdkInitialize|0|0",
                                            "|sys_getSIMStatus|4|0", "|sys_sdkShutdown|0|0"));
    Ask();
    EXPECT_THAT(watcher.Read(), ElementsAre("|sys_sdkInitialize|0|0", "|sys_getSIMStatus|4|0",
                                            "|sys_sdkShutdown|0|0"));
}

TEST_F(ReportedCalls, DoNotWaitForAWatcherThatDoesNotReadAndAreCounted) {
    Watcher watcher(Socket());
    constexpr std::size_t kSessions = 2000;
    for (std::size_t session = 0; session < kSessions; ++session) {
        Ask();
    }
    const std::size_t arrived = watcher.Read().size();
    EXPECT_LT(arrived, 3 * kSessions);
    Ask();
    EXPECT_THAT(watcher.Read(),
                ElementsAre("|sys_sdkInitialize|0|" + std::to_string(3 * kSessions - arrived),
                            "|sys_getSIMStatus|4|0", "|sys_sdkShutdown|0|0"));
}

TEST_F(ReportedCalls, EndWithTheWatcherAndBeginWithTheNextOne) {
    {
        Watcher watcher(Socket());
        Ask();
        EXPECT_EQ(watcher.Read().size(), 3U);
    }
    // The socket of the watcher that was killed is still there.
    Ask();
    EXPECT_EQ(binding::theCallWatcher, nullptr);
    Ask();
    EXPECT_EQ(binding::theCallWatcher, nullptr);
    Watcher next(Socket());
    Ask();
    EXPECT_EQ(next.Read().size(), 3U);
}

TEST_F(ReportedCalls, AreNotReportedToAFileThatIsNoSocket) {
    WriteFile(Socket(), "");
    Ask();
    EXPECT_EQ(binding::theCallWatcher, nullptr);
    EXPECT_EQ(ReadFile(Socket()), "");
}

TEST(WatchMessage, CutsAnAnswerThatIsTooLongAndKeepsItsSize) {
    const std::array<std::byte, 64> answer{};
    std::array<std::byte, 80> room{};
    const auto bytes =
        binding::Encoded({.call = "sys_x", .answer = answer, .answerSize = 64}, room);
    const auto message = binding::DecodedWatchMessage(bytes);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->call, "sys_x");
    EXPECT_EQ(message->answer.size(), room.size() - (bytes.size() - message->answer.size()));
    EXPECT_EQ(message->answerSize, 64U);
}

TEST(WatchMessage, IsNotReadFromOtherBytes) {
    std::array<std::byte, 200> room{};
    const auto bytes = binding::Encoded({.call = "sys_getSIMStatus"}, room);
    EXPECT_FALSE(binding::DecodedWatchMessage(bytes.first(bytes.size() - 1)));
    EXPECT_FALSE(binding::DecodedWatchMessage(bytes.first(20)));
    room[0] ^= std::byte{1};
    EXPECT_FALSE(binding::DecodedWatchMessage(bytes));
    std::array<std::byte, 8> none{};
    EXPECT_THAT(binding::Encoded({}, none), IsEmpty());
}

}  // namespace
