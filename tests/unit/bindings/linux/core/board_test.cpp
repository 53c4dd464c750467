// The board publishes what its sources tell, and no request waits for a source.
#include "bindings/linux/board.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <future>
#include <nlohmann/json.hpp>

#include "bindings/device/codes.h"
#include "bindings/posix/files/file_io.h"
#include "tests/support/scratch.h"

namespace {

using binding::Board;
using binding::Device;
using binding::Source;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A source whose state the test sets, as a daemon would.
class TestSource : public Source {
  public:
    explicit TestSource(Board& owner) : Source(owner, "position") {}

    void Start() override {
        if (startsAs != State::unknown) {
            Set(startsAs);
        }
    }
    void Fill(Device& device) const override { binding::Tell(device.getGPSStatus, status); }
    void Fail(Device& device, int code) const override {
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
    int status = SYS_GPS_SEARCHING;
};

class BoardOfOneSource : public SimulatedDevice {
  protected:
    BoardOfOneSource() { Document("{}"); }

    void Begin(Source::State startsAs = Source::State::present) {
        TestSource::startsAs = startsAs;
        board = std::make_unique<Board>([this](Board& owner) {
            binding::Sources sources;
            auto made = std::make_unique<TestSource>(owner);
            source = made.get();
            ++madeCount;
            sources.push_back(std::move(made));
            return sources;
        });
    }

    /// Runs @p task on the board's thread.
    void OnBoard(const std::function<void()>& task) {
        std::promise<void> done;
        board->Post([&] {
            task();
            done.set_value();
        });
        done.get_future().wait();
    }

    /// Runs @p task, which changes what is told, and waits for the snapshot that has it.
    void Publish(const std::function<void()>& task) {
        const auto before = board->Newest();
        OnBoard(task);
        while (board->Newest() == before) {
            std::this_thread::yield();
        }
    }

    binding::Answer<int> GpsStatus() { return board->Newest()->getGPSStatus; }

    /// Waits until the answer has the value @p status.
    bool WaitFor(int status) {
        for (int tries = 0; tries < 1000; ++tries) {
            if (GpsStatus().value == status) {
                return true;
            }
            OnBoard([] {});
        }
        return false;
    }

    std::unique_ptr<Board> board;
    TestSource* source = nullptr;
    std::atomic<int> madeCount = 0;
};

TEST_F(BoardOfOneSource, FirstSnapshotHasWhatTheSourceTells) {
    Begin();
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
}

TEST_F(BoardOfOneSource, ChangeIsPublishedAsANewSnapshotAndAnOldOneStays) {
    Begin();
    const auto before = board->Newest();
    Publish([this] { source->Say(SYS_GPS_GOT_FIX); });
    EXPECT_EQ(before->getGPSStatus.value, SYS_GPS_SEARCHING);
    EXPECT_EQ(GpsStatus().value, SYS_GPS_GOT_FIX);
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
        Publish([this] { source->Set(Source::State::lost); });
        EXPECT_EQ(GpsStatus().error, binding::kSourceLost);
    }
    for (int again = 0; again < 3; ++again) {
        Publish([this] { source->Set(Source::State::present); });
        EXPECT_EQ(GpsStatus().error, 0);
    }
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - position: lost: it has gone",
                                   "[LINUX]:[NOTICE] - position: is back"));
}

TEST_F(BoardOfOneSource, LostSourceIsLoggedToBeBackAlsoWhenItsHardwareIsAbsentThen) {
    Begin();
    Publish([this] { source->Set(Source::State::lost); });
    Publish([this] { source->Set(Source::State::absent); });
    EXPECT_EQ(GpsStatus().error, 0);
    Publish([this] { source->Set(Source::State::present); });
    EXPECT_THAT(Log(), ElementsAre("[LINUX]:[ERROR] - position: lost: it has gone",
                                   "[LINUX]:[NOTICE] - position: is back"));
}

TEST_F(BoardOfOneSource, SourceThatDoesNotTellWhetherItIsThereDelaysOnlyTheFirstAnswer) {
    Begin(Source::State::unknown);
    // What the document says is answered, although the source is not known.
    Document("{\"sys\": {\"getSMSUnreadCount\": 2}}");
    const auto first = board->Newest();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->getGPSStatus.value, SYS_GPS_OFF);
}

TEST_F(BoardOfOneSource, ChangeOfTheDocumentIsNoticed) {
    Begin();
    Document("{\"sys\": {\"getGPSStatus\": 7}}");
    EXPECT_TRUE(WaitFor(7));
    Document("{}");
    EXPECT_TRUE(WaitFor(SYS_GPS_SEARCHING));
    EXPECT_EQ(madeCount, 1);
}

TEST_F(BoardOfOneSource, DamagedDocumentIsLoggedOnceAndTheLastGoodOneStays) {
    Document("{\"sys\": {\"getGPSStatus\": 7}}");
    Begin();
    ASSERT_TRUE(WaitFor(7));
    for (int again = 0; again < 2; ++again) {
        Document("{");
        while (Log().empty()) {
            OnBoard([] {});
        }
    }
    EXPECT_EQ(GpsStatus().value, 7);
    EXPECT_THAT(Log(), ElementsAre(HasSubstr("(keeping the last good document)")));
}

TEST_F(BoardOfOneSource, OtherSettingsStartTheSourcesAnew) {
    Begin();
    (void)board->Newest();
    Document("{\"linux\": {\"apn\": \"internet\"}, \"sys\": {\"getSMSUnreadCount\": 2}}");
    while (board->Newest()->getSMSUnreadCount.value != 2) {
        OnBoard([] {});
    }
    EXPECT_EQ(madeCount, 2);
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
}

TEST_F(BoardOfOneSource, WithoutADocumentTheSourcesAnswer) {
    std::filesystem::remove(device);
    Begin();
    EXPECT_EQ(GpsStatus().value, SYS_GPS_SEARCHING);
    EXPECT_THAT(Log(), Contains(HasSubstr("No such file or directory (no document)")));
}

/// A data call that remembers what it was told to do.
class TestDataCall : public binding::DataCall {
  public:
    int Readiness() const override { return SYS_SUCCESS; }
    void Connect() override { actions.emplace_back("connect"); }
    void Disconnect() override { actions.emplace_back("disconnect"); }

    std::vector<std::string> actions;
};

TEST_F(BoardOfOneSource, ActionsAreHandedOverInTheirOrder) {
    Begin();
    TestDataCall call;
    Publish([&] { board->SetDataCall(&call); });
    EXPECT_EQ(board->StartDataCall(), SYS_SUCCESS);
    EXPECT_EQ(board->StopDataCall(), SYS_SUCCESS);
    EXPECT_EQ(board->StartDataCall(), SYS_SUCCESS);
    OnBoard([] {});
    EXPECT_THAT(call.actions, ElementsAre("connect", "disconnect", "connect"));
}

TEST_F(BoardOfOneSource, ActionsFailWithoutAnythingToConnect) {
    Begin();
    EXPECT_EQ(board->StartDataCall(), binding::kNothingToConnect);
    EXPECT_EQ(board->StopDataCall(), binding::kNothingToConnect);
}

TEST_F(BoardOfOneSource, TrafficIsThatOfTheInterfaceOfTheDataCall) {
    Begin();
    Publish([this] {
        board->SetTraffic(binding::TrafficMeter::Connection{
            .interface = "lo",
            .since = std::chrono::steady_clock::now() - std::chrono::seconds(90),
            .atBegin = {}});
        board->Changed();
    });
    const auto& stats = board->Newest()->getCellularDataConnectionStats;
    EXPECT_EQ(stats.error, 0);
    EXPECT_GE(stats.value.duration, 90U);
    Publish([this] {
        board->SetTraffic(std::nullopt);
        board->Changed();
    });
    EXPECT_EQ(board->Newest()->getCellularDataConnectionStats.value.duration, 0U);
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
    Publish([this] { source->Set(Source::State::lost); });
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
