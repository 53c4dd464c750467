// The board publishes what its sources tell, and no request waits for a source.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "bindings/device/codes.h"
#include "tests/unit/bindings/linux/core/board_of_one_source.h"

namespace {

using binding::Board;
using binding::Device;
using binding::Source;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

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
    EXPECT_FALSE(board->IsWhole());
    Put(Source::State::present, 0);
    AwaitStatus(SYS_GPS_SEARCHING);
    EXPECT_TRUE(board->IsWhole());
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

class Reports : public BoardOfOneSource {
  protected:
    Reports() { environment.Set("KESTAL_SOURCES", path); }

    void Begin() {
        binding::BoardLimits limits = kNoLimits;
        limits.isService = true;
        BoardOfOneSource::Begin(Source::State::present, limits);
    }

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

TEST_F(Reports, ProgramThatIsNotTheServiceTellsNothingInItsPlace) {
    BoardOfOneSource::Begin();
    OnBoard([] {});
    EXPECT_EQ(Ask(), "");
}

TEST_F(Reports, AnotherServiceWithTheSamePathDoesNotTakeThePlaceOfTheFirst) {
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
