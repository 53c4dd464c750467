// Lines for the system log are sent whole and with their priority; the service loses a line rather
// than wait long for the log.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <regex>
#include <thread>

#include "bindings/posix/datagram.h"
#include "bindings/posix/log/repeated_lines.h"
#include "platform/toru_dbg.h"
#include "tests/support/scratch.h"

namespace {

using ::testing::EndsWith;

/// The receiving end of the system log.
class Receiver {
  public:
    explicit Receiver(const std::string& path)
        : socketNumber(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        EXPECT_EQ(bind(socketNumber, reinterpret_cast<const sockaddr*>(&address), sizeof(address)),
                  0);
    }
    ~Receiver() { (void)close(socketNumber); }
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    /// The next line; empty when there is none.
    std::string Next() const {
        std::array<char, 8192> bytes{};
        const ssize_t size = recv(socketNumber, bytes.data(), bytes.size(), MSG_DONTWAIT);
        return size < 0 ? "" : std::string(bytes.data(), static_cast<std::size_t>(size));
    }

    /// Reads all lines that are waiting.
    void Drain() const {
        while (!Next().empty()) {
        }
    }

  private:
    int socketNumber;
};

void WaitUntilAsleep(pid_t thread) {
    char state = 'R';
    while (state != 'S') {
        std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
        std::string name;
        file >> name >> name >> state;
    }
}

class SystemLog : public SimulatedDevice {
  protected:
    SystemLog() : path(directory / "syslog.sock") {
        environment.Set("KESTAL_SYSLOG", path);
        environment.Set("KESTAL_LOG_LEVEL", "0");
        (void)toru_dbg_start("kestal.cgi");
    }

    static void Fail() {
        toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "[%s]:[%s] - failed", "M", "ERROR");
    }

    static std::string Head() { return "<138>kestal.cgi[" + std::to_string(getpid()) + "]: "; }

    /// Fills the socket, so that there is no room for another line.
    void Fill() const {
        while (binding::SendDatagram(path, "filler") == 0) {
        }
    }

    std::string path;
};

TEST_F(SystemLog, GetsEveryLineWithItsPriority) {
    const Receiver log(path);
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "%s %d", "text", 5);
    EXPECT_EQ(log.Next(), Head() + "text 5");
    EXPECT_EQ(log.Next(), "");
    EXPECT_TRUE(Log().empty());
}

TEST_F(SystemLog, GetsTheBeginningOfALineThatIsTooLong) {
    const Receiver log(path);
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "%s", std::string(5000, 'x').c_str());
    const std::string line = log.Next();
    EXPECT_LE(line.size(), 4096U);
    EXPECT_GT(line.size(), 4000U);
    EXPECT_THAT(line, EndsWith("xxx...[cut]"));
}

TEST_F(SystemLog, GetsNoControlCharactersAndOnlyUtf8) {
    const Receiver log(path);
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "a\nb\u009bc\u2028d\u202ee\xff\n");
    EXPECT_EQ(log.Next(), Head() + "a?b?c?d?e?");
}

TEST_F(SystemLog, NamesTheErrorOfTheCallerAndLeavesIt) {
    const Receiver log(path);
    errno = ENOENT;
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "%m");
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(log.Next(), Head() + "No such file or directory");
}

TEST_F(SystemLog, ThatIsAbsentLosesLinesOnly) {
    errno = EINTR;
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "text");
    EXPECT_EQ(errno, EINTR);
}

TEST_F(SystemLog, ThatHangsLosesLinesAndGetsTheirNumberLater) {
    const Receiver log(path);
    Fill();
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "lost");
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "lost, too");
    log.Drain();
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "again");
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "and again");
    EXPECT_EQ(log.Next(), Head() + "again [2 lines lost before]");
    EXPECT_EQ(log.Next(), Head() + "and again");
    EXPECT_EQ(log.Next(), "");
}

TEST_F(SystemLog, ThatIsSlowIsWaitedFor) {
    const Receiver log(path);
    bool isTaken = false;
    // Several attempts, because on a busy machine the reader may be too late.
    for (int round = 0; round < 1000 && !isTaken; ++round) {
        log.Drain();
        Fill();
        std::thread reader([&log, sender = gettid()] {
            WaitUntilAsleep(sender);
            log.Drain();
        });
        toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "line %d", round);
        reader.join();
        isTaken = log.Next().starts_with(Head() + "line " + std::to_string(round));
    }
    EXPECT_TRUE(isTaken);
}

TEST_F(SystemLog, ThatNeedsMillisecondsForALineGetsTheNumberOfLostLines) {
    constexpr int kLines = 53;
    const Receiver log(path);
    std::atomic<bool> isEnd = false;
    std::vector<std::string> lines;
    const auto take = [&] {
        for (std::string line = log.Next(); !line.empty(); line = log.Next()) {
            lines.push_back(line);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    };
    std::thread reader([&] {
        while (!isEnd) {
            take();
        }
    });
    for (int i = 0; i < kLines; ++i) {
        toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "line %d", i);
    }
    isEnd = true;
    reader.join();
    take();
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "last");
    take();
    RecordProperty("taken", static_cast<int>(lines.size()) - 1);
    std::size_t count = lines.size() - 1;
    for (const std::string& line : lines) {
        std::smatch note;
        count += std::regex_search(line, note, std::regex("\\[(\\d+) lines lost before\\]"))
                     ? std::stoul(note[1])
                     : 0;
    }
    EXPECT_EQ(count, std::size_t{kLines});
}

TEST_F(SystemLog, HoldsBackRepeatedLines) {
    binding::SetLogClock([] { return binding::RepeatedLines::TimePoint(); });
    const Receiver log(path);
    Fail();
    Fail();
    Fail();
    EXPECT_EQ(log.Next(), Head() + "[M]:[ERROR] - failed");
    EXPECT_EQ(log.Next(), "");
    toru_dbg_stop();
    binding::SetLogClock(nullptr);
    EXPECT_EQ(log.Next(), Head() + "[M]:[ERROR] - failed [2 times, last 0 s ago]");
    EXPECT_EQ(log.Next(), "");
}

TEST_F(SystemLog, GetsEveryLineThatIsNoFailure) {
    const Receiver log(path);
    for (const std::string text : {"[M]:[NOTICE] - connecting", "[M]:[NOTICE] - [N]:[ERROR]",
                                   "ERROR", "]:[ERROR]", "[M]:"}) {
        for (int count = 0; count < 2; ++count) {
            toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "%s", text.c_str());
            EXPECT_EQ(log.Next(), Head() + text);
        }
    }
}

TEST_F(SystemLog, GetsTheCountsWithAnyLineAfterTheMinute) {
    static binding::RepeatedLines::TimePoint now;
    binding::SetLogClock([] { return now; });
    const Receiver log(path);
    Fail();
    Fail();
    log.Drain();
    now += std::chrono::seconds(100);
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "[M]:[NOTICE] - connecting");
    binding::SetLogClock(nullptr);
    EXPECT_EQ(log.Next(), Head() + "[M]:[ERROR] - failed [1 times, last 100 s ago]");
    EXPECT_EQ(log.Next(), Head() + "[M]:[NOTICE] - connecting");
}

TEST_F(SystemLog, GetsEveryLineAtLevelSeven) {
    environment.Set("KESTAL_LOG_LEVEL", "7");
    (void)toru_dbg_start("kestal.cgi");
    const Receiver log(path);
    Fail();
    Fail();
    EXPECT_EQ(log.Next(), Head() + "[M]:[ERROR] - failed");
    EXPECT_EQ(log.Next(), Head() + "[M]:[ERROR] - failed");
}

TEST_F(SystemLog, ThatIsNoSocketIsReportedInTheDebugLog) {
    environment.Set("KESTAL_LOG_LEVEL", "3");
    const std::string tooLong = "/" + std::string(107, 'x');
    for (const std::string& name : {std::string("syslog.sock"), std::string("./s"), tooLong}) {
        environment.Set("KESTAL_SYSLOG", name);
        (void)toru_dbg_start("kestal.cgi");
        ASSERT_FALSE(Log().empty());
        EXPECT_EQ(Log().back(),
                  "[BINDING]:[ERROR] - KESTAL_SYSLOG: expected a path from the root or \"@\" and "
                  "a name, at most 107 bytes, found \"" +
                      name + "\" (lines for the system log are lost)");
    }
    const std::size_t before = Log().size();
    for (const std::string& name : {std::string(), std::string("@name"), tooLong.substr(0, 107)}) {
        environment.Set("KESTAL_SYSLOG", name);
        (void)toru_dbg_start("kestal.cgi");
    }
    EXPECT_EQ(Log().size(), before);
}

TEST_F(SystemLog, ThatIsStartedAgainGetsTheNextLine) {
    {
        const Receiver log(path);
        toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "before");
    }
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "meanwhile");
    (void)unlink(path.c_str());
    const Receiver log(path);
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "after");
    EXPECT_EQ(log.Next(), Head() + "after [1 lines lost before]");
    EXPECT_EQ(log.Next(), "");
}

}  // namespace
