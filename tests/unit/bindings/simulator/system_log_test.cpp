// Lines for the system log: whole, with their priority, and lost rather than waited for.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/toru_dbg.h"
#include "tests/unit/bindings/simulator/scratch.h"

namespace {

using ::testing::EndsWith;

/// The system log's end.
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

  private:
    int socketNumber;
};

class SystemLog : public SimulatedDevice {
  protected:
    SystemLog() : path(directory / "syslog.sock") {
        environment.Set("KESTAL_SYSLOG", path);
        environment.Set("KESTAL_LOG_LEVEL", "0");
        (void)toru_dbg_start("kestal.cgi");
    }

    static std::string Head() { return "<138>kestal.cgi[" + std::to_string(getpid()) + "]: "; }

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

TEST_F(SystemLog, GetsNothingThatATerminalWouldObeyAndNoBytesThatAreNotUtf8) {
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

TEST_F(SystemLog, ThatHangsLosesLinesAndIsNotWaitedFor) {
    const Receiver log(path);
    for (int i = 0; i < 5000; ++i) {
        toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "%d", i);
    }
    int taken = 0;
    for (std::string line = log.Next(); !line.empty(); line = log.Next()) {
        EXPECT_EQ(line, Head() + std::to_string(taken));
        ++taken;
    }
    EXPECT_GT(taken, 0);
    EXPECT_LT(taken, 5000);
    toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "again");
    EXPECT_EQ(log.Next(), Head() + "again");
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
    EXPECT_EQ(log.Next(), Head() + "after");
    EXPECT_EQ(log.Next(), "");
}

}  // namespace
