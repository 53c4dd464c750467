// The debug log: it writes each line with one system call, filters by level, and makes every
// message harmless.
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <thread>

#include "bindings/posix/files/file_io.h"
#include "bindings/posix/log/repeated_lines.h"
#include "platform/toru_dbg.h"
#include "tests/support/scratch.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::MatchesRegex;

class DebugLog : public SimulatedDevice {
  protected:
    void Level(const std::string& level) {
        environment.Set("KESTAL_LOG_LEVEL", level);
        (void)toru_dbg_start("kestal.cgi");
    }
};

/// Replaces the standard error stream, and keeps each write separate.
class StandardError {
  public:
    StandardError() : original(dup(STDERR_FILENO)) {
        std::array<int, 2> ends{};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()), 0);
        EXPECT_EQ(dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
        (void)close(ends[1]);
        reader = ends[0];
    }
    ~StandardError() {
        (void)dup2(original, STDERR_FILENO);
        (void)close(original);
        (void)close(reader);
    }
    StandardError(const StandardError&) = delete;
    StandardError& operator=(const StandardError&) = delete;

    /// The text of each write so far.
    std::vector<std::string> Writes() const {
        std::vector<std::string> writes;
        std::array<char, 8192> bytes{};
        ssize_t size = 0;
        while ((size = recv(reader, bytes.data(), bytes.size(), MSG_DONTWAIT)) >= 0) {
            writes.emplace_back(bytes.data(), static_cast<std::size_t>(size));
        }
        return writes;
    }

  private:
    int original;
    int reader = -1;
};

/// A pipe in place of the standard error stream, whose writers wait for the reader.
class StandardErrorPipe {
  public:
    StandardErrorPipe() : original(dup(STDERR_FILENO)) {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe(ends.data()), 0);
        EXPECT_EQ(dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
        (void)close(ends[1]);
        reader = ends[0];
    }
    ~StandardErrorPipe() {
        (void)dup2(original, STDERR_FILENO);
        (void)close(original);
        CloseReader();
    }
    StandardErrorPipe(const StandardErrorPipe&) = delete;
    StandardErrorPipe& operator=(const StandardErrorPipe&) = delete;

    /// Fills the pipe.
    static void Fill() {
        const std::string piece(4096, '-');
        pollfd state{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
        while (poll(&state, 1, 0) == 1) {
            ASSERT_GT(write(STDERR_FILENO, piece.data(), piece.size()), 0);
        }
    }

    /// Empties the pipe and returns what was in it.
    std::string Drain() const {
        std::string contents;
        std::array<char, 8192> bytes{};
        pollfd state{.fd = reader, .events = POLLIN, .revents = 0};
        while (poll(&state, 1, 0) == 1) {
            const ssize_t size = read(reader, bytes.data(), bytes.size());
            contents.append(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        }
        return contents;
    }

    void CloseReader() {
        if (reader >= 0) {
            (void)close(reader);
        }
        reader = -1;
    }

  private:
    int original;
    int reader = -1;
};

TEST_F(DebugLog, LineHasTimeProgramAndProcess) {
    toru_dbg_log("M", TORU_DBG_ERROR, "[%s]:[%s] - %s", "M", "ERROR", "text");
    const std::string line = ReadFile(directory / "log");
    std::smatch parts;
    ASSERT_TRUE(
        std::regex_match(line, parts,
                         std::regex("(\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d)\\.\\d{3}Z "
                                    "kestal\\.cgi\\[(\\d+)\\] \\[M\\]:\\[ERROR\\] - text\n")))
        << line;
    EXPECT_EQ(parts[2], std::to_string(getpid()));
    std::tm broken{};
    ASSERT_NE(strptime(parts[1].str().c_str(), "%Y-%m-%dT%H:%M:%S", &broken), nullptr);
    EXPECT_NEAR(static_cast<double>(timegm(&broken)), static_cast<double>(time(nullptr)), 120);
}

/// The standard error stream as JOURNAL_STREAM names it.
std::string StandardErrorName() {
    struct stat state = {};
    EXPECT_EQ(fstat(STDERR_FILENO, &state), 0);
    return std::to_string(state.st_dev) + ":" + std::to_string(state.st_ino);
}

TEST_F(DebugLog, TellsTheJournalTheLevelOfALineAndNobodyElse) {
    const StandardError error;
    const std::string journal = StandardErrorName();
    const auto writtenFor = [&](const std::string& stream) {
        environment.Set("JOURNAL_STREAM", stream);
        (void)toru_dbg_start("kestal.cgi");
        (void)error.Writes();
        toru_dbg_log("M", TORU_DBG_NOTICE, "text");
        return error.Writes();
    };
    environment.Unset("KESTAL_LOG");
    EXPECT_THAT(writtenFor(journal), ElementsAre(MatchesRegex("<5>20[^<>]* text\n")));
    // Whoever has this environment from the service, but another stream, is not the journal.
    for (const std::string& other : {journal + "0", "1" + journal, journal.substr(1), journal + " ",
                                     journal.substr(0, journal.find(':')), std::string()}) {
        EXPECT_THAT(writtenFor(other), ElementsAre(MatchesRegex("20[^<>]* text\n"))) << other;
    }
    environment.Set("KESTAL_LOG", directory / "log");
    EXPECT_THAT(writtenFor(journal), ElementsAre());
    EXPECT_THAT(ReadFile(directory / "log"), MatchesRegex("20[^<>]* text\n"));
}

TEST(DebugLogDeathTest, FirstLineNamesTheProgramEvenIfTheCallerDoesNot) {
    // The line is written once in a process, so it needs one of its own.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            (void)unsetenv("KESTAL_LOG");
            (void)unsetenv("KESTAL_LOG_LEVEL");
            (void)toru_dbg_start(nullptr);
            _exit(0);
        },
        testing::ExitedWithCode(0), "BINDING.:.NOTICE. - posix_test");
}

TEST_F(DebugLog, ShowsNoticesAndMoreSevereLinesByDefault) {
    toru_dbg_log("M", TORU_DBG_NOTICE, "shown");
    toru_dbg_log("M", TORU_DBG_INFO, "hidden");
    EXPECT_THAT(Log(), ElementsAre("shown"));
}

TEST_F(DebugLog, LevelComesFromTheEnvironment) {
    Level("7");
    toru_dbg_log("M", TORU_DBG_DEBUG, "debug");
    Level("3");
    toru_dbg_log("M", TORU_DBG_ERROR, "error");
    toru_dbg_log("M", TORU_DBG_NOTICE, "notice");
    Level("0");
    toru_dbg_log("M", TORU_DBG_ERROR, "error");
    EXPECT_THAT(Log(), ElementsAre("debug", "error"));
}

TEST_F(DebugLog, InvalidLevelCountsAsFive) {
    for (const std::string level : {"", "x", "8", "-1", "5x", " 7", "99999999999"}) {
        Level(level);
        toru_dbg_log("M", TORU_DBG_NOTICE, "shown");
        toru_dbg_log("M", TORU_DBG_INFO, "hidden");
    }
    EXPECT_EQ(Log(), std::vector<std::string>(7, "shown"));
}

TEST_F(DebugLog, OneTrailingLineFeedIsDropped) {
    toru_dbg_log("M", TORU_DBG_ERROR, "one\n");
    toru_dbg_log("M", TORU_DBG_ERROR, "two\n\n");
    toru_dbg_log("M", TORU_DBG_ERROR, "\n");
    EXPECT_THAT(Log(), ElementsAre("one", "two?", ""));
}

TEST_F(DebugLog, ControlCharactersAreMadeHarmless) {
    toru_dbg_log("M", TORU_DBG_ERROR, "a\nb\rc\td\033[1me\x7f g\xc3\xa9");
    toru_dbg_log("M", TORU_DBG_ERROR, "C1 \u0080 \u0085 \u009b31m \u009f \u00a0");
    EXPECT_THAT(Log(), ElementsAre("a?b?c?d?[1me? g\xc3\xa9", "C1 ? ? ?31m ? \u00a0"));
}

TEST_F(DebugLog, SeparatorsOfLinesAreMadeHarmless) {
    toru_dbg_log("M", TORU_DBG_ERROR, "a\u2028b\u2029c \u2027 \u202f");
    EXPECT_THAT(Log(), ElementsAre("a?b?c \u2027 \u202f"));
}

TEST_F(DebugLog, CharactersThatChangeTheDirectionOfTextAreMadeHarmless) {
    toru_dbg_log("M", TORU_DBG_ERROR,
                 "\u061c\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069");
    toru_dbg_log("M", TORU_DBG_ERROR, "\u061b\u200d\u2010\u2065\u206a \u0627");
    EXPECT_THAT(Log(), ElementsAre("????????????", "\u061b\u200d\u2010\u2065\u206a \u0627"));
}

TEST_F(DebugLog, BytesThatAreNotUtf8AreMadeHarmless) {
    toru_dbg_log("M", TORU_DBG_ERROR, "lone \x80, no byte \xff, short \xe2\x82, \xf0\x9f\x98\x80");
    toru_dbg_log("M", TORU_DBG_ERROR, "overlong \xc0\x8a, surrogate \xed\xa0\x80, end \xc3");
    EXPECT_THAT(Log(), ElementsAre("lone ?, no byte ?, short ??, \xf0\x9f\x98\x80",
                                   "overlong ??, surrogate ???, end ?"));
}

TEST_F(DebugLog, BytesThatAreNotUtf8AreNotCutOffWithTheEnd) {
    toru_dbg_log("M", TORU_DBG_ERROR, "%s", std::string(5000, '\x80').c_str());
    ASSERT_EQ(Log().size(), 1U);
    EXPECT_GT(Log().front().size(), 3900U);
    EXPECT_THAT(Log().front(), MatchesRegex("\\?+\\.\\.\\.\\[cut\\]"));
}

TEST_F(DebugLog, ProgramNameIsMadeHarmless) {
    (void)toru_dbg_start("a\n\xff\u202e");
    toru_dbg_log("M", TORU_DBG_ERROR, "text");
    EXPECT_THAT(ReadFile(directory / "log"), MatchesRegex("[^ ]+Z a\\?\\?\\?\\[[0-9]+\\] text\n"));
}

TEST_F(DebugLog, LongLinesAreCutVisibly) {
    toru_dbg_log("M", TORU_DBG_ERROR, "%s", std::string(100'000, 'x').c_str());
    const std::string line = ReadFile(directory / "log");
    EXPECT_LE(line.size(), 4096U);
    EXPECT_GT(line.size(), 4000U);
    EXPECT_THAT(line, EndsWith("xxx...[cut]\n"));
}

TEST_F(DebugLog, EveryLengthAroundTheLimitIsComplete) {
    for (std::size_t length = 3900; length < 4100; ++length) {
        const std::string text = std::string(length, 'x') + "\n";
        toru_dbg_log("M", TORU_DBG_ERROR, "%s", text.c_str());
    }
    for (const std::string& line : Log()) {
        EXPECT_THAT(line, MatchesRegex("x+(\\.\\.\\.\\[cut\\])?"));
    }
    EXPECT_EQ(Log().size(), 200U);
}

TEST_F(DebugLog, CharactersAreNotCutInTheMiddle) {
    for (std::size_t offset = 0; offset < 4; ++offset) {
        std::string text(offset, 'x');
        for (int count = 0; count < 2000; ++count) {
            text += "\xe2\x82\xac";
        }
        toru_dbg_log("M", TORU_DBG_ERROR, "%s", text.c_str());
    }
    for (const std::string& line : Log()) {
        EXPECT_THAT(line, MatchesRegex("x*(\xe2\x82\xac)+\\.\\.\\.\\[cut\\]"));
    }
}

TEST_F(DebugLog, LineIsOneWrite) {
    environment.Unset("KESTAL_LOG");
    const StandardError standardError;
    (void)toru_dbg_start("kestal.cgi");
    toru_dbg_log("M", TORU_DBG_ERROR, "one %s", "two");
    toru_dbg_log("M", TORU_DBG_ERROR, "three");
    EXPECT_THAT(standardError.Writes(),
                ElementsAre(EndsWith("] one two\n"), EndsWith("] three\n")));
}

TEST_F(DebugLog, WorksBeforeItIsStarted) {
    environment.Unset("KESTAL_LOG");
    const StandardError standardError;
    toru_dbg_stop();
    toru_dbg_log("M", TORU_DBG_ERROR, "early");
    EXPECT_THAT(standardError.Writes(), ElementsAre(EndsWith("] early\n")));
}

TEST_F(DebugLog, GoesToTheStandardErrorStreamWhenTheFileIsUnusable) {
    environment.Set("KESTAL_LOG", directory / "no" / "such" / "directory");
    const StandardError standardError;
    (void)toru_dbg_start("kestal.cgi");
    toru_dbg_log("M", TORU_DBG_ERROR, "text");
    EXPECT_EQ(standardError.Writes().size(), 1U);
}

TEST_F(DebugLog, NeverWaitsForTheReaderOfTheStandardErrorStream) {
    environment.Unset("KESTAL_LOG");
    StandardErrorPipe pipe;
    (void)toru_dbg_start("kestal.cgi");
    pipe.Fill();
    errno = 0;
    toru_dbg_log("M", TORU_DBG_ERROR, "lost");
    EXPECT_EQ(errno, 0);
    pipe.Drain();
    toru_dbg_log("M", TORU_DBG_ERROR, "%s", std::string(5000, 'x').c_str());
    EXPECT_THAT(pipe.Drain(), MatchesRegex(".*\\] x+\\.\\.\\.\\[cut\\]\n"));
}

TEST_F(DebugLog, SurvivesTheReaderOfTheStandardErrorStream) {
    environment.Unset("KESTAL_LOG");
    StandardErrorPipe pipe;
    (void)toru_dbg_start("kestal.cgi");
    pipe.CloseReader();
    toru_dbg_log("M", TORU_DBG_ERROR, "lost");
}

TEST_F(DebugLog, IsAppendedTo) {
    std::ofstream(directory / "log") << "before\n";
    (void)toru_dbg_start("kestal.cgi");
    toru_dbg_log("M", TORU_DBG_ERROR, "after");
    EXPECT_THAT(Log(), ElementsAre("before", "after"));
}

TEST_F(DebugLog, FullDiskLosesTheLineOnly) {
    environment.Set("KESTAL_LOG", "/dev/full");
    (void)toru_dbg_start("kestal.cgi");
    errno = 0;
    toru_dbg_log("M", TORU_DBG_ERROR, "text");
    EXPECT_EQ(errno, 0);
}

/// A debug log in a file whose size is limited.
class DebugLogWithoutRoom : public DebugLog {
  protected:
    DebugLogWithoutRoom() : signalBefore(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    }
    ~DebugLogWithoutRoom() override {
        MakeRoom();
        (void)std::signal(SIGXFSZ, signalBefore);
    }

    static void Write(const char* text) { toru_dbg_log("M", TORU_DBG_ERROR, "%s", text); }

    /// Lets the file grow by @p bytes at most.
    void Limit(std::size_t bytes) const {
        rlimit limit = before;
        limit.rlim_cur = static_cast<rlim_t>(std::filesystem::file_size(directory / "log")) + bytes;
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }

    void MakeRoom() const { EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0); }

    /// Leaves half a line at the end of the file.
    void WriteHalfALine() const {
        Write("before");
        Limit(10);
        Write("cut");
        Write("lost");
        MakeRoom();
    }

    rlimit before{};
    void (*signalBefore)(int);
};

TEST_F(DebugLogWithoutRoom, AddsNothingToHalfALine) {
    WriteHalfALine();
    Write("after");
    Write("and after");
    EXPECT_THAT(ReadFile(directory / "log"),
                MatchesRegex("[^\n]+ before\n[0-9T:-]{10}\n[^\n]+ after\n[^\n]+ and after\n"));
}

TEST_F(DebugLogWithoutRoom, EndsHalfALineOnceWhenThereIsRoomForNothingElse) {
    WriteHalfALine();
    Limit(1);
    Write("lost");
    Write("lost");
    MakeRoom();
    Write("after");
    EXPECT_THAT(ReadFile(directory / "log"),
                MatchesRegex("[^\n]+ before\n[0-9T:-]{10}\n[^\n]+ after\n"));
}

TEST_F(DebugLogWithoutRoom, HasNoEmptyLineWhereTheFileWasEmptied) {
    WriteHalfALine();
    std::filesystem::resize_file(directory / "log", 0);
    Write("after");
    EXPECT_THAT(ReadFile(directory / "log"), MatchesRegex("[^\n]+ after\n"));
}

TEST_F(DebugLog, KeepsTheErrorNumberOfItsCaller) {
    errno = ENOENT;
    toru_dbg_log("M", TORU_DBG_ERROR, "text");
    EXPECT_EQ(errno, ENOENT);
}

/// A debug log whose clock the test sets.
class DebugLogOfAPermanentFault : public DebugLog {
  protected:
    DebugLogOfAPermanentFault() {
        now = {};
        binding::SetLogClock([] { return now; });
    }
    ~DebugLogOfAPermanentFault() override { binding::SetLogClock(nullptr); }

    static void Fail(int code) { toru_dbg_log("M", TORU_DBG_ERROR, "call failed [%d]", code); }

    static inline binding::RepeatedLines::TimePoint now;
};

TEST_F(DebugLogOfAPermanentFault, HasALineAtOnceAndThenOneAMinute) {
    for (int poll = 0; poll <= 40; ++poll) {
        Fail(5);
        now += std::chrono::seconds(3);
    }
    EXPECT_THAT(Log(), ElementsAre("call failed [5]", "call failed [5] [20 times]",
                                   "call failed [5] [20 times]"));
}

TEST_F(DebugLogOfAPermanentFault, HasALineForEachOtherFault) {
    Fail(5);
    Fail(6);
    Fail(5);
    EXPECT_THAT(Log(), ElementsAre("call failed [5]", "call failed [6]"));
}

TEST_F(DebugLogOfAPermanentFault, TellsTheJournalTheLevelOfLinesThatWereHeldBack) {
    const StandardError error;
    environment.Unset("KESTAL_LOG");
    environment.Set("JOURNAL_STREAM", StandardErrorName());
    (void)toru_dbg_start("kestal.cgi");
    (void)error.Writes();
    for (int count = 0; count < 2; ++count) {
        toru_dbg_log("M", TORU_DBG_ERROR, "text");
    }
    toru_dbg_stop();
    EXPECT_THAT(error.Writes(),
                ElementsAre(MatchesRegex("<3>20[^<>]* text\n"),
                            MatchesRegex("<3>20[^<>]* text .1 times, last 0 s ago.\n")));
}

TEST_F(DebugLogOfAPermanentFault, HasOtherLinesInFull) {
    toru_dbg_log("M", TORU_DBG_NOTICE, "connected");
    toru_dbg_log("M", TORU_DBG_NOTICE, "connected");
    EXPECT_THAT(Log(), ElementsAre("connected", "connected"));
}

TEST_F(DebugLogOfAPermanentFault, LogsTheCountsWithTheNextLineAfterTheMinute) {
    Fail(5);
    Fail(5);
    toru_dbg_log("M", TORU_DBG_NOTICE, "early");
    now += std::chrono::seconds(100);
    toru_dbg_log("M", TORU_DBG_DEBUG, "not shown");
    toru_dbg_log("M", TORU_DBG_NOTICE, "late");
    EXPECT_THAT(Log(), ElementsAre("call failed [5]", "early",
                                   "call failed [5] [1 times, last 100 s ago]", "late"));
}

TEST_F(DebugLogOfAPermanentFault, LogsTheCountsAtItsEnd) {
    Fail(5);
    Fail(5);
    toru_dbg_stop();
    toru_dbg_stop();
    EXPECT_THAT(Log(), ElementsAre("call failed [5]", "call failed [5] [1 times, last 0 s ago]"));
}

TEST_F(DebugLogOfAPermanentFault, LogsTheCountsWhenTheProcessExits) {
    EXPECT_EXIT(
        {
            Fail(5);
            Fail(5);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_THAT(Log(), ElementsAre("call failed [5]", "call failed [5] [1 times, last 0 s ago]"));
}

TEST_F(DebugLogOfAPermanentFault, HasEveryLineAtLevelSeven) {
    Level("7");
    Fail(5);
    Fail(5);
    EXPECT_THAT(Log(), ElementsAre("call failed [5]", "call failed [5]"));
}

TEST_F(DebugLogOfAPermanentFault, LogsTheCountsBeforeACrashAndEveryFrameOfIt) {
    Fail(5);
    Fail(5);
    std::array<char, 65536> memory{};
    stack_t before{};
    const stack_t stack{.ss_sp = memory.data(), .ss_flags = 0, .ss_size = memory.size()};
    ASSERT_EQ(sigaltstack(&stack, &before), 0);
    struct sigaction action = {};
    action.sa_handler = [](int /*signo*/) {
        for (int frame = 0; frame < 3; ++frame) {
            Fail(5);
        }
    };
    action.sa_flags = SA_ONSTACK;
    sigaction(SIGUSR1, &action, nullptr);
    (void)raise(SIGUSR1);
    (void)sigaltstack(&before, nullptr);
    EXPECT_THAT(Log(), ElementsAre("call failed [5]", "call failed [5] [1 times, last 0 s ago]",
                                   "call failed [5]", "call failed [5]", "call failed [5]"));
}

TEST_F(DebugLogOfAPermanentFault, LosesNothingToSeveralThreads) {
    constexpr int kThreads = 4;
    constexpr int kLines = 500;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([] {
            for (int line = 0; line < kLines; ++line) {
                Fail(5);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    toru_dbg_stop();
    int count = 0;
    for (const std::string& line : Log()) {
        std::smatch note;
        count +=
            std::regex_search(line, note, std::regex("\\[(\\d+) times")) ? std::stoi(note[1]) : 1;
    }
    EXPECT_EQ(count, kThreads * kLines);
}

TEST_F(DebugLog, LevelsHaveTheirSyslogNames) {
    const std::vector<std::string> names = {"EMERG",   "ALERT",  "CRIT", "ERROR",
                                            "WARNING", "NOTICE", "INFO", "DEBUG"};
    for (int level = 0; level < 8; ++level) {
        EXPECT_EQ(toru_dbg_get_level_name(level), names[static_cast<std::size_t>(level)]);
    }
    EXPECT_STREQ(toru_dbg_get_level_name(-1), "UNKNOWN");
    EXPECT_STREQ(toru_dbg_get_level_name(8), "UNKNOWN");
}

}  // namespace
