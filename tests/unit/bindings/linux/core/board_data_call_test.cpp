// The board hands requests for the data call to its thread, and counts what the call carries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "bindings/device/codes.h"
#include "tests/unit/bindings/linux/core/board_of_one_source.h"

namespace {

using binding::Device;
using binding::Source;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A data call that remembers what it was asked for, and does what is asked for at once.
class TestDataCall : public binding::DataCall {
  public:
    binding::DataOutlook Outlook() const override {
        return {.readiness = SYS_SUCCESS,
                .afterConnect = SYS_DATA_CONNECTION_CONNECTING,
                .afterDisconnect = SYS_DATA_CONNECTION_READY};
    }
    void Make(binding::DataRequest request) override {
        requests.push_back(request);
        isSending = neverAnswered;
        if (made) {
            made();
        }
    }
    bool IsSending() const override {
        if (ending) {
            std::exchange(ending, nullptr)();
        }
        return isSending;
    }

    std::vector<binding::DataRequest> requests;
    bool neverAnswered = false;
    /// Is called with each request.
    std::function<void()> made;
    /// Is called once when the board ends: only then does it want to know what has been sent.
    mutable std::function<void()> ending;

  private:
    bool isSending = false;
};

class DataRequests : public NewSettings {
  protected:
    using Request = binding::DataRequest;

    void SetUp() override { BeginWith(kNoLimits); }

    void BeginWith(const binding::BoardLimits& limits) {
        Begin(Source::State::present, limits);
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
    TestDataCall first;
    first.ending = [this, &owner = *board] {
        owner.SetDataCall(&call);
        source->Set(Source::State::present);
    };
    OnBoard([&] { board->SetDataCall(&first); });
    board.reset();
    EXPECT_THAT(first.requests, IsEmpty());
    EXPECT_THAT(call.requests, ElementsAre(Request::connect));
}

TEST_F(DataRequests, TheEndHasOneLimitForTheSourcesOfNewSettingsAndTheAnswer) {
    board.reset();
    binding::BoardLimits limits = kNoLimits;
    limits.finish = std::chrono::milliseconds(1);
    BeginWith(limits);
    Renew();
    EXPECT_EQ(board->StartDataCall(), SYS_SUCCESS);
    call.neverAnswered = true;
    binding::EventSource next;
    bool hasGoneOn = false;
    call.made = [&, event = board->Event()] { next.Defer(event, [&] { hasGoneOn = true; }); };
    OnBoard([this] { board->SetDataCall(&call); });
    board.reset();
    EXPECT_THAT(call.requests, ElementsAre(Request::connect));
    // The limit has passed while the sources said nothing.
    EXPECT_FALSE(hasGoneOn);
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

}  // namespace
