// The messages of SWUpdate's progress socket.
#include "bindings/linux/update/swupdate_progress.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using binding::UpdateStatus;

struct Numbers {
    std::uint32_t status = 0;
    std::uint32_t downloadPercent = 0;
    std::uint32_t steps = 0;
    std::uint32_t step = 0;
    std::uint32_t stepPercent = 0;
    std::uint32_t source = 0;
};

/// The layout on a machine with 64 bits, the same in SWUpdate 2022.12 and 2024.12.
std::vector<std::byte> Message(const Numbers& numbers, const std::string& info = "") {
    std::vector<std::byte> bytes(2416);
    const auto put = [&](std::size_t at, std::uint32_t number) {
        std::memcpy(bytes.data() + at, &number, sizeof(number));
    };
    put(4, numbers.status);
    put(8, numbers.downloadPercent);
    put(24, numbers.steps);
    put(28, numbers.step);
    put(32, numbers.stepPercent);
    put(356, numbers.source);
    std::memcpy(bytes.data() + 364, info.data(), info.size());
    return bytes;
}

TEST(SwupdateProgress, FollowsAnUpdateFromDownloadToSuccess) {
    binding::SwupdateProgress progress;
    EXPECT_EQ(progress.State().status, UpdateStatus::none);
    EXPECT_TRUE(progress.Read(Message({.status = 5, .downloadPercent = 30})));
    EXPECT_EQ(progress.State().status, UpdateStatus::downloading);
    EXPECT_EQ(progress.State().percent, 30);
    progress.Read(Message({.status = 8, .steps = 2, .step = 2, .stepPercent = 50}));
    EXPECT_EQ(progress.State().status, UpdateStatus::installing);
    EXPECT_EQ(progress.State().percent, 75);
    progress.Read(Message({.status = 3}));
    EXPECT_EQ(progress.State().status, UpdateStatus::installed);
    progress.Read(Message({.status = 6}));
    progress.Read(Message({.status = 0}));
    EXPECT_EQ(progress.State().status, UpdateStatus::installed);
}

TEST(SwupdateProgress, TellsWhyAnUpdateFailed) {
    binding::SwupdateProgress progress;
    progress.Read(Message({.status = 4}, "ERROR: no such slot"));
    EXPECT_EQ(progress.State().status, UpdateStatus::failed);
    EXPECT_EQ(progress.State().problem, "ERROR: no such slot");
}

TEST(SwupdateProgress, TellsTheVersionOfTheUpdate) {
    binding::SwupdateProgress progress;
    progress.Read(Message({.status = 2}, R"({"0": {"VERSION" : "2.0"}})"));
    EXPECT_EQ(progress.State().version, "2.0");
    progress.Read(Message({.status = 3}, R"({"0": {"VERSION" : "2.0"}})"));
    EXPECT_EQ(progress.State().version, "2.0");
    // After a failure, too, it is no reason.
    progress.Read(Message({.status = 4}, R"({"0": {"VERSION" : "2.0"}})"));
    EXPECT_EQ(progress.State().version, "2.0");
    EXPECT_EQ(progress.State().problem, "");
    progress.Read(Message({.status = 4}, R"({"0": [], "1": {"VERSION" : 2}})"));
    EXPECT_EQ(progress.State().version, "");
}

TEST(SwupdateProgress, AnUpdateThatIsGivenUpIsNoneAnyMore) {
    binding::SwupdateProgress progress;
    progress.Read(Message({.status = 2}));
    progress.Read(Message({.status = 0}));
    EXPECT_EQ(progress.State().status, UpdateStatus::none);
}

TEST(SwupdateProgress, TheUserAsksForWhatComesFromThePageOrTheShell) {
    binding::SwupdateProgress progress;
    progress.Read(Message({.status = 2, .source = 1}));
    EXPECT_TRUE(progress.State().userInitiated);
    progress.Read(Message({.status = 2, .source = 2}));
    EXPECT_FALSE(progress.State().userInitiated);
}

TEST(SwupdateProgress, MessagesComeInPieces) {
    binding::SwupdateProgress progress;
    for (const std::byte byte : Message({.status = 2})) {
        EXPECT_EQ(progress.State().status, UpdateStatus::none);
        progress.Read(std::span(&byte, 1));
    }
    EXPECT_EQ(progress.State().status, UpdateStatus::installing);
}

TEST(SwupdateProgress, TheGreetingOfNewerVersionsIsNoMessage) {
    std::vector<std::byte> bytes(8);
    std::memcpy(bytes.data() + 4, "ACK", 4);
    const auto message = Message({.status = 2});
    bytes.insert(bytes.end(), message.begin(), message.end());
    binding::SwupdateProgress progress;
    EXPECT_TRUE(progress.Read(bytes));
    EXPECT_EQ(progress.State().status, UpdateStatus::installing);
}

TEST(SwupdateProgress, ANewConnectionBeginsWithAWholeMessage) {
    binding::SwupdateProgress progress;
    auto message = Message({.status = 3});
    progress.Read(std::span(message).first(1000));
    progress.Restart();
    EXPECT_TRUE(progress.Read(message));
    EXPECT_EQ(progress.State().status, UpdateStatus::installed);
}

TEST(SwupdateProgress, ANewConnectionKeepsResultsAndNothingThatWasUnderWay) {
    for (const std::uint32_t underWay : {2U, 5U}) {
        binding::SwupdateProgress progress;
        progress.Read(Message({.status = underWay}));
        progress.Restart();
        EXPECT_EQ(progress.State(), binding::UpdateState()) << underWay;
    }
    for (const std::uint32_t result : {3U, 4U}) {
        binding::SwupdateProgress progress;
        progress.Read(Message({.status = result}));
        const binding::UpdateState before = progress.State();
        progress.Restart();
        EXPECT_EQ(progress.State(), before) << result;
    }
}

TEST(SwupdateProgress, AnUnknownStateIsAProblemAndTheNextMessageIsRead) {
    binding::SwupdateProgress progress;
    EXPECT_FALSE(progress.Read(Message({.status = 77})));
    EXPECT_EQ(progress.Problem(), "what SWUpdate sends is no message or has an unknown state, 77");
    EXPECT_TRUE(progress.Read(Message({.status = 2})));
    EXPECT_EQ(progress.Problem(), "");
    for (const std::uint32_t unconcerned : {6U, 7U}) {
        EXPECT_FALSE(progress.Read(Message({.status = unconcerned})));
        EXPECT_EQ(progress.Problem(), "");
    }
}

TEST(SwupdateProgress, AfterAnotherGreetingMessagesAreFoundAgain) {
    for (const std::size_t size : {8U, 100U}) {
        std::vector<std::byte> bytes(size, std::byte{'x'});
        const auto message = Message({.status = 3});
        bytes.insert(bytes.end(), message.begin(), message.end());
        binding::SwupdateProgress progress;
        progress.Read(bytes);
        EXPECT_NE(progress.Problem(), "") << size;
        EXPECT_TRUE(progress.Read(Message({.status = 2}))) << size;
        EXPECT_EQ(progress.State().status, UpdateStatus::installing) << size;
        EXPECT_EQ(progress.Problem(), "") << size;
    }
}

TEST(SwupdateProgress, NumbersThatCannotBeAreCorrected) {
    binding::SwupdateProgress progress;
    progress.Read(
        Message({.status = 8, .steps = 0, .step = 0xffffffff, .stepPercent = 0xffffffff}));
    EXPECT_EQ(progress.State().percent, 100);
}

}  // namespace
