// The board publishes what its sources tell, and no request waits for a source.
#include "bindings/linux/board.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <iterator>
#include <new>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "bindings/device/codes.h"
#include "bindings/posix/files/file_io.h"
#include "tests/support/scratch.h"
#include "tests/unit/bindings/linux/board_tasks.h"

namespace {

using binding::Board;
using binding::Device;
using binding::Source;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr binding::BoardLimits kNoLimits = {.firstAnswer = std::chrono::hours(1),
                                            .renewal = std::chrono::hours(1)};

/// A source whose state the test sets, as a daemon would.
class TestSource : public Source {
  public:
    explicit TestSource(Board& owner) : Source(owner, "position") {}

    void Start() override {
        if (!problem.empty()) {
            throw std::runtime_error(std::exchange(problem, ""));
        }
        if (startsAs != State::unknown) {
            Set(startsAs);
        }
    }
    void Fill(Device& device) const override { binding::Tell(device.getGPSStatus, status); }
    void Fail(Device& device, int code) const override {
        if (std::exchange(failsToFail, false)) {
            throw std::bad_alloc();
        }
        binding::FailAll(code, device.getGPSStatus);
    }
    nlohmann::json Said() const override { return status; }

    void Set(State state) {
        switch (state) {
            case State::absent:
                return Absent();
            case State::present:
                return Present();
            case State::lost:
                return Lost("it has gone");
            case State::unknown:
                return;
        }
    }

    void Say(int newStatus) {
        status = newStatus;
        Changed();
    }

    inline static State startsAs = State::present;
    /// Why it cannot be started, once.
    inline static std::string problem;
    /// Whether Fail throws, once.
    inline static bool failsToFail = false;
    int status = SYS_GPS_SEARCHING;
};

class BoardOfOneSource : public SimulatedDevice {
  protected:
    BoardOfOneSource() { Document("{}"); }

    void Begin(Source::State startsAs = Source::State::present,
               binding::BoardLimits limits = kNoLimits) {
        TestSource::startsAs = startsAs;
        tasks = std::make_shared<BoardTasks>();
        board = std::make_unique<Board>(
            [this, joined = tasks](Board& owner) {
                joined->Join(owner.Event());
                if (failures > 0) {
                    --failures;
                    throw std::runtime_error("no sources");
                }
                binding::Sources sources;
                auto made = std::make_unique<TestSource>(owner);
                source = made.get();
                ++madeCount;
                sources.push_back(std::move(made));
                return sources;
            },
            limits);
    }

    /// Runs @p task on the board's thread.
    void OnBoard(const std::function<void()>& task) { tasks->Run(task); }

    /// Waits until @p condition holds.
    static void AwaitThat(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "nothing has come";
            std::this_thread::yield();
        }
    }

    /// Waits until a snapshot fulfils @p condition.
    void Await(const std::function<bool(const Device&)>& condition) {
        AwaitThat([&] { return condition(*board->Newest()); });
    }

    void AwaitStatus(int status) {
        Await([status](const Device& now) {
            return now.getGPSStatus.error == 0 && now.getGPSStatus.value == status;
        });
    }

    /// Puts the source into @p state, and waits until the answer has the code @p error.
    void Put(Source::State state, int error) {
        OnBoard([&] { source->Set(state); });
        Await([error](const Device& now) { return now.getGPSStatus.error == error; });
    }

    void BreakLoop() {
        OnBoard([this] {
            const binding::FileDescriptor other(open("/dev/null", O_RDONLY | O_CLOEXEC));
            ASSERT_GE(dup3(other.Number(), sd_event_get_fd(board->Event()), O_CLOEXEC), 0);
        });
    }

    binding::Answer<int> GpsStatus() { return board->Newest()->getGPSStatus; }

    std::shared_ptr<BoardTasks> tasks;
    std::unique_ptr<Board> board;
    TestSource* source = nullptr;
    std::atomic<int> madeCount = 0;
    /// How often the sources cannot be made.
    std::atomic<int> failures = 0;
};

TEST_F(BoardOfOneSource, FirstSnapshotHasWhatTheSourceTells) {
    Begin();
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
}

TEST_F(BoardOfOneSource, ChangeIsPublishedAsANewSnapshotAndAnOldOneStays) {
    Begin();
    const auto before = board->Newest();
    OnBoard([this] { source->Say(SYS_GPS_GOT_FIX); });
    AwaitStatus(SYS_GPS_GOT_FIX);
    EXPECT_EQ(before->getGPSStatus.value, SYS_GPS_SEARCHING);
}

TEST_F(BoardOfOneSource, WithoutAChangeTheSnapshotIsTheSame) {
    Begin();
    EXPECT_EQ(board->Newest(), board->Newest());
}

TEST_F(BoardOfOneSource, AbsentSourceAnswersLikeADeviceWithoutThisHardware) {
    Begin(Source::State::absent);
    EXPECT_EQ(GpsStatus().error, 0);
    EXPECT_EQ(GpsStatus().value, SYS_GPS_OFF);
}

TEST_F(BoardOfOneSource, LostSourceFailsItsCallsUntilItIsBackAndEachIsLoggedOnce) {
    Begin();
    for (int again = 0; again < 3; ++again) {
        Put(Source::State::lost, binding::kSourceLost);
    }
    for (int again = 0; again < 3; ++again) {
        Put(Source::State::present, 0);
    }
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - position: lost: it has gone",
                                   "[LINUX]:[NOTICE] - position: is back"));
}

TEST_F(BoardOfOneSource, LostSourceIsLoggedToBeBackAlsoWhenItsHardwareIsAbsentThen) {
    Begin();
    Put(Source::State::lost, binding::kSourceLost);
    Put(Source::State::absent, 0);
    Put(Source::State::present, 0);
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - position: lost: it has gone",
                                   "[LINUX]:[NOTICE] - position: is back"));
}

TEST_F(BoardOfOneSource, LostSourceLeavesWhatAnotherOneTells) {
    class LostSource : public TestSource {
      public:
        using TestSource::TestSource;
        void Start() override { Set(State::lost); }
    };
    TestSource::startsAs = Source::State::present;
    Board both(
        [](Board& owner) {
            binding::Sources sources;
            sources.push_back(std::make_unique<TestSource>(owner));
            sources.push_back(std::make_unique<LostSource>(owner));
            return sources;
        },
        kNoLimits);
    EXPECT_EQ(both.Newest()->getGPSStatus.error, 0);
    EXPECT_EQ(both.Newest()->getGPSStatus.value, SYS_GPS_SEARCHING);
}

TEST_F(BoardOfOneSource, SourceThatDoesNotTellWhetherItIsThereDelaysOnlyTheFirstAnswer) {
    Begin(Source::State::unknown, {.firstAnswer = std::chrono::microseconds(1)});
    // What the document says is answered, although the source is not known.
    Document("{\"sys\": {\"getSMSUnreadCount\": 2}}");
    const auto first = board->Newest();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->getGPSStatus.value, SYS_GPS_OFF);
}

TEST_F(BoardOfOneSource, ChangeOfTheDocumentIsNoticed) {
    Begin();
    Document("{\"sys\": {\"getGPSStatus\": 7}}");
    AwaitStatus(7);
    Document("{}");
    AwaitStatus(SYS_GPS_SEARCHING);
    EXPECT_EQ(madeCount, 1);
}

TEST_F(BoardOfOneSource, DamagedDocumentIsLoggedOnceAndTheLastGoodOneStays) {
    Document("{\"sys\": {\"getGPSStatus\": 7}}");
    Begin();
    AwaitStatus(7);
    Document("{");
    AwaitThat([this] { return !Log().empty(); });
    Document("{");
    // That one has been read when the one after it has.
    Document("[");
    AwaitThat([this] { return Log().size() > 1; });
    EXPECT_EQ(GpsStatus().value, 7);
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("(keeping the last good document)"),
                                   HasSubstr("(keeping the last good document)")));
}

TEST_F(BoardOfOneSource, OtherSettingsStartTheSourcesAnew) {
    Begin();
    (void)board->Newest();
    Document("{\"linux\": {\"apn\": \"internet\"}, \"sys\": {\"getSMSUnreadCount\": 2}}");
    Await([](const Device& now) { return now.getSMSUnreadCount.value == 2; });
    EXPECT_EQ(madeCount, 2);
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
}

/// Documents with other settings, which also show that they are in force.
class NewSettings : public BoardOfOneSource {
  protected:
    /// Changes the settings; the new source does not tell yet whether it is there.
    void Renew() {
        OnBoard([] { TestSource::startsAs = Source::State::unknown; });
        Document("{\"linux\": {\"apn\": \"internet\"}, \"sys\": {\"getSMSUnreadCount\": 2}}");
        AwaitThat([this] { return madeCount >= 2; });
        // The loop has turns for whatever it would do now.
        for (int turn = 0; turn < 100; ++turn) {
            OnBoard([] {});
        }
    }

    static bool AreInForce(const Device& device) { return device.getSMSUnreadCount.value == 2; }
};

TEST_F(NewSettings, LeaveTheSnapshotUntilAllNewSourcesAreKnown) {
    Begin();
    const auto before = board->Newest();
    Renew();
    EXPECT_EQ(board->Newest(), before);
    OnBoard([this] {
        source->Set(Source::State::present);
        source->Say(SYS_GPS_GOT_FIX);
    });
    Await(AreInForce);
    EXPECT_EQ(GpsStatus().value, SYS_GPS_GOT_FIX);
}

TEST_F(NewSettings, DoNotWaitLongForSourcesThatDoNotTell) {
    Begin(Source::State::present, {.renewal = std::chrono::microseconds(1)});
    (void)board->Newest();
    Renew();
    Await(AreInForce);
    EXPECT_EQ(GpsStatus().value, SYS_GPS_OFF);
}

TEST_F(BoardOfOneSource, WithoutADocumentTheSourcesAnswer) {
    std::filesystem::remove(device);
    Begin();
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
    EXPECT_THAT(Log(), Contains(HasSubstr("No such file or directory (no document)")));
}

/// A data call that remembers what it was asked for, and does what is asked for at once.
class TestDataCall : public binding::DataCall {
  public:
    binding::DataOutlook Outlook() const override {
        return {.readiness = SYS_SUCCESS,
                .afterConnect = SYS_DATA_CONNECTION_CONNECTING,
                .afterDisconnect = SYS_DATA_CONNECTION_READY};
    }
    void Make(binding::DataRequest request) override { requests.push_back(request); }
    bool IsSending() const override { return false; }

    std::vector<binding::DataRequest> requests;
};

class DataRequests : public NewSettings {
  protected:
    using Request = binding::DataRequest;

    void SetUp() override {
        Begin();
        OnBoard([this] { board->SetDataCall(&call); });
        // A request is accepted from then on.
        AwaitThat([this] { return board->StartDataCall() == SYS_SUCCESS; });
        AwaitRequests(1);
        OnBoard([this] { call.requests.clear(); });
    }

    // The board uses the call until it ends.
    void TearDown() override { board.reset(); }

    /// Waits until the call has got @p count requests, and the status is that of the call again.
    void AwaitRequests(std::size_t count) {
        AwaitThat([&] {
            std::size_t made = 0;
            OnBoard([&] { made = call.requests.size(); });
            return made >= count;
        });
        Await([](const Device& now) {
            return now.getCellularDataConnectionStatus.value == SYS_DATA_CONNECTION_READY;
        });
    }

    int Status() { return board->Newest()->getCellularDataConnectionStatus.value; }

    TestDataCall call;
};

TEST_F(DataRequests, StatusTellsARequestFromTheMomentItIsAccepted) {
    int before = 0;
    int after = 0;
    // The board's thread does nothing else meanwhile.
    OnBoard([&] {
        before = Status();
        EXPECT_EQ(board->StartDataCall(), SYS_SUCCESS);
        after = Status();
    });
    EXPECT_EQ(before, SYS_DATA_CONNECTION_READY);
    EXPECT_EQ(after, SYS_DATA_CONNECTION_CONNECTING);
    AwaitRequests(1);
    EXPECT_THAT(call.requests, ElementsAre(Request::connect));
}

TEST_F(DataRequests, ARequestReplacesOneThatTheThreadHasNotTakenYet) {
    int status = 0;
    OnBoard([&] {
        for (int again = 0; again < 1000; ++again) {
            EXPECT_EQ(board->StartDataCall(), SYS_SUCCESS);
        }
        EXPECT_EQ(board->StopDataCall(), SYS_SUCCESS);
        status = Status();
    });
    EXPECT_EQ(status, SYS_DATA_CONNECTION_READY);
    AwaitRequests(1);
    EXPECT_THAT(call.requests, ElementsAre(Request::disconnect));
}

TEST_F(DataRequests, ARequestWaitsForTheSourcesOfNewSettings) {
    Renew();
    EXPECT_EQ(board->StartDataCall(), SYS_SUCCESS);
    // The thread has been woken up by the request before.
    OnBoard([] {});
    OnBoard([this] {
        EXPECT_THAT(call.requests, IsEmpty());
        board->SetDataCall(&call);
        source->Set(Source::State::present);
    });
    AwaitRequests(1);
}

TEST_F(DataRequests, ARequestThatWaitsForTheSourcesOfNewSettingsIsMadeBeforeTheEnd) {
    Renew();
    EXPECT_EQ(board->StartDataCall(), SYS_SUCCESS);
    constexpr std::uint64_t kMillisecond = 1'000;
    binding::EventSource known;
    OnBoard([&] {
        known.After(board->Event(), kMillisecond, 0, [this, &owner = *board] {
            owner.SetDataCall(&call);
            source->Set(Source::State::present);
        });
    });
    board.reset();
    EXPECT_THAT(call.requests, ElementsAre(Request::connect));
}

TEST_F(BoardOfOneSource, RequestsFailWithoutAnythingToConnect) {
    Begin();
    EXPECT_EQ(board->StartDataCall(), binding::kNothingToConnect);
    EXPECT_EQ(board->StopDataCall(), binding::kNothingToConnect);
}

/// How long the data call lasts, as @p device tells.
std::uint64_t Duration(const Device& device) {
    return device.getCellularDataConnectionStats.value.duration;
}

TEST_F(BoardOfOneSource, TrafficIsThatOfTheDataCallOfTheSameSnapshot) {
    Begin();
    std::shared_ptr<const Device> meanwhile = board->Newest();
    OnBoard([&] {
        board->SetTraffic(binding::TrafficMeter::Connection{
            .interface = "lo",
            .since = std::chrono::steady_clock::now() - std::chrono::seconds(90),
            .atBegin = {}});
        source->Say(SYS_GPS_GOT_FIX);
        meanwhile = board->Newest();
    });
    EXPECT_EQ(Duration(*meanwhile), 0U);
    AwaitStatus(SYS_GPS_GOT_FIX);
    EXPECT_GE(Duration(*board->Newest()), 90U);
    OnBoard([&] {
        board->SetTraffic(std::nullopt);
        source->Say(SYS_GPS_SEARCHING);
        meanwhile = board->Newest();
    });
    EXPECT_GE(Duration(*meanwhile), 90U);
    AwaitStatus(SYS_GPS_SEARCHING);
    EXPECT_EQ(Duration(*board->Newest()), 0U);
}

TEST_F(BoardOfOneSource, PlanThatIsUsedUpIsToldAlthoughNoSourceSaysAnything) {
    Document(R"({"linux": {"planBytes": 1000}})");
    Begin();
    OnBoard([&] {
        binding::TrafficCounters now;
        ASSERT_TRUE(binding::ReadTrafficCounters("/sys/class/net", "lo", now));
        board->SetTraffic(binding::TrafficMeter::Connection{
            .interface = "lo", .since = std::chrono::steady_clock::now(), .atBegin = now});
        source->Say(SYS_GPS_GOT_FIX);
    });
    AwaitStatus(SYS_GPS_GOT_FIX);
    const binding::FileDescriptor out(socket(AF_INET, SOCK_DGRAM, 0));
    sockaddr_in nobody{};
    nobody.sin_family = AF_INET;
    nobody.sin_port = htons(9);
    nobody.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const std::array<char, 2000> packet{};
    ASSERT_EQ(sendto(out.Number(), packet.data(), packet.size(), 0,
                     reinterpret_cast<const sockaddr*>(&nobody), sizeof nobody),
              static_cast<ssize_t>(packet.size()));
    constexpr std::size_t kNone = sizeof(std::int32_t);
    Await([](const Device& now) {
        const auto found = now.channels.find(ANS_NOTIFICATION_CHANNEL);
        return found != now.channels.end() && found->second.value.size() > kNone;
    });
}

TEST_F(BoardOfOneSource, SourceThatCannotBeStartedIsLost) {
    TestSource::problem = "no descriptor";
    Begin();
    EXPECT_EQ(GpsStatus().error, binding::kSourceLost);
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - position: lost: not started: no descriptor"));
}

TEST_F(BoardOfOneSource, WhenItsLoopBreaksTheCallsOfTheSourcesFailUntilItHasStartedAnew) {
    Document("{\"sys\": {\"getSMSUnreadCount\": 2}}");
    Begin();
    AwaitStatus(SYS_GPS_SEARCHING);
    BreakLoop();
    Await([](const Device& now) { return now.getGPSStatus.error == binding::kSourceLost; });
    EXPECT_EQ(board->Newest()->getSMSUnreadCount.value, 2);
    EXPECT_EQ(board->StartDataCall(), binding::kNothingToConnect);
    AwaitStatus(SYS_GPS_SEARCHING);
    EXPECT_EQ(madeCount, 2);
    OnBoard([this] { source->Say(SYS_GPS_GOT_FIX); });
    AwaitStatus(SYS_GPS_GOT_FIX);
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("the board's thread has failed and starts anew: ")));
}

TEST_F(BoardOfOneSource, WhenItFailsAgainAtTheRestartTheCallsOfTheSourcesStillFail) {
    Begin();
    AwaitStatus(SYS_GPS_SEARCHING);
    failures = 1;
    BreakLoop();
    Await([](const Device& now) { return now.getGPSStatus.error == binding::kSourceLost; });
    Await([](const Device& now) { return now.getGPSStatus.error == 0; });
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
    EXPECT_EQ(failures, 0);
}

TEST_F(BoardOfOneSource, WhenTheSourcesOfNewSettingsCannotBeMadeTheCallsFailUntilTheyCan) {
    Begin();
    AwaitStatus(SYS_GPS_SEARCHING);
    failures = 1;
    Document("{\"linux\": {\"apn\": \"internet\"}}");
    Await([](const Device& now) { return now.getGPSStatus.error == binding::kSourceLost; });
    Await([](const Device& now) { return now.getGPSStatus.error == 0; });
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
}

/// While it lives, no thread can be started.
class NoThreads {
  public:
    NoThreads() {
        EXPECT_EQ(pthread_getattr_default_np(&before), 0);
        pthread_attr_t huge = {};
        EXPECT_EQ(pthread_attr_init(&huge), 0);
        // More than any machine has addresses for.
        EXPECT_EQ(pthread_attr_setstacksize(&huge, std::size_t{1} << 60U), 0);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        EXPECT_EQ(pthread_attr_destroy(&huge), 0);
    }
    ~NoThreads() {
        EXPECT_EQ(pthread_setattr_default_np(&before), 0);
        EXPECT_EQ(pthread_attr_destroy(&before), 0);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

  private:
    pthread_attr_t before = {};
};

TEST_F(BoardOfOneSource, WithoutAThreadTheBoardLeavesNothingBehind) {
    const auto openFiles = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    const auto isBlocked = [] {
        sigset_t blocked;
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        return sigismember(&blocked, SIGTERM) == 1;
    };
    const auto before = openFiles();
    {
        const NoThreads noThreads;
        EXPECT_THROW(Begin(), std::system_error);
    }
    // Those of the tasks that the test has for the board's thread.
    tasks.reset();
    EXPECT_EQ(openFiles(), before);
    EXPECT_FALSE(isBlocked());
}

TEST_F(BoardOfOneSource, ShortageWhileItsLoopBreaksLeavesTheLastAnswersUntilItHasStartedAnew) {
    Begin();
    AwaitStatus(SYS_GPS_SEARCHING);
    OnBoard([] { TestSource::failsToFail = true; });
    BreakLoop();
    AwaitThat([this] {
        EXPECT_EQ(GpsStatus().error, 0);
        return madeCount >= 2;
    });
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("the board's thread has failed and starts anew: "),
                                   HasSubstr("the last answers stand until then: ")));
}

class Reports : public BoardOfOneSource {
  protected:
    Reports() { environment.Set("KESTAL_SOURCES", path); }

    /// What the board answers on its socket; empty without one.
    std::string Ask() const {
        const binding::FileDescriptor connection(socket(AF_UNIX, SOCK_STREAM, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(path.begin(), path.end(), address.sun_path);
        if (connect(connection.Number(), reinterpret_cast<const sockaddr*>(&address),
                    sizeof address) != 0) {
            return "";
        }
        std::string answer;
        std::array<char, 512> part{};
        ssize_t size = 0;
        while ((size = read(connection.Number(), part.data(), part.size())) > 0) {
            answer.append(part.data(), static_cast<std::size_t>(size));
        }
        return answer;
    }

    const std::string path = directory / "sources";
};

TEST_F(Reports, TellNameStateAndWhatASourceHasSaid) {
    Begin();
    OnBoard([] {});
    const auto present = nlohmann::json::parse(Ask());
    ASSERT_EQ(present.size(), 1U);
    EXPECT_EQ(present[0]["name"], "position");
    EXPECT_EQ(present[0]["state"], "present");
    EXPECT_EQ(present[0]["said"], SYS_GPS_SEARCHING);
    EXPECT_GT(present[0]["since"], 1'600'000'000);
    OnBoard([this] { source->Set(Source::State::lost); });
    const auto lost = nlohmann::json::parse(Ask());
    EXPECT_EQ(lost[0]["state"], "lost");
    EXPECT_EQ(lost[0]["reason"], "it has gone");
}

TEST_F(Reports, OnlyTheOwnUserCanAsk) {
    Begin();
    OnBoard([] {});
    const auto permissions = std::filesystem::status(path).permissions();
    EXPECT_EQ(
        permissions & (std::filesystem::perms::group_all | std::filesystem::perms::others_all),
        std::filesystem::perms::none);
}

TEST_F(Reports, AnotherProgramWithTheSamePathDoesNotTakeThePlaceOfTheService) {
    Begin();
    OnBoard([] {});
    const std::unique_ptr<Board> service = std::move(board);
    Begin();
    OnBoard([] {});
    board.reset();
    EXPECT_NE(Ask(), "");
    EXPECT_THAT(Log(), Contains(HasSubstr("Address already in use")));
}

TEST_F(Reports, SocketThatAKilledServiceLeftBehindIsReplaced) {
    {
        const binding::FileDescriptor left(socket(AF_UNIX, SOCK_STREAM, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(path.begin(), path.end(), address.sun_path);
        ASSERT_EQ(bind(left.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
    }
    Begin();
    OnBoard([] {});
    EXPECT_NE(Ask(), "");
}

}  // namespace
