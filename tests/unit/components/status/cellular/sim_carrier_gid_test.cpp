#include "components/status/cellular/sim_carrier_gid.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"
#include "tests/support/transcript.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kGid = " - void GetSIMCarrierGID(uint8_t*, uint8_t*, uint8_t)";

class SimCarrierGidTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{};
    std::uint8_t length = 0;
};

TEST_F(SimCarrierGidTest, FillsIdentifierAndLengthAndLogsTheFirstByte) {
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> identifier{};
    identifier.front() = 254;
    identifier.back() = 7;
    Given("sys_getSIMCarrierGID").Writes(identifier).Writes<std::uint8_t>(255);
    GetSIMCarrierGID(gid.data(), &length, 1);
    EXPECT_EQ(gid, identifier);
    EXPECT_EQ(length, 255);
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kGid + " - BEGIN"), "sys_getSIMCarrierGID(index 1)",
                                       Log(7, kGid + " - simGid: 254"), Log(7, kGid + " - END")}));
}

TEST_F(SimCarrierGidTest, AsksForTheIdentifierThatTheCallerWants) {
    Given("sys_getSIMCarrierGID").Returns(SYS_SUCCESS);
    GetSIMCarrierGID(gid.data(), &length, 255);
    EXPECT_EQ(recording::CallCount("sys_getSIMCarrierGID"), 1U);
    EXPECT_EQ(TranscriptText("sys_"), Steps({"sys_getSIMCarrierGID(index 255)"}));
}

TEST_F(SimCarrierGidTest, FailureIsLoggedAndKeepsWhatTheCallerHad) {
    gid.front() = 2;
    length = 1;
    Given("sys_getSIMCarrierGID").Returns(17);
    GetSIMCarrierGID(gid.data(), &length, 1);
    EXPECT_EQ(gid.front(), 2);
    EXPECT_EQ(length, 1);
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGid + " - BEGIN"), "sys_getSIMCarrierGID(index 1)",
                     Failure(kGid + " - sys_getSIMCarrierGID failed, returned error code [17]. "
                                    "Try sysintcli getSIMCarrierGID from command line."),
                     Log(7, kGid + " - END")}));
}

TEST_F(SimCarrierGidTest, ValuesOfAFailedReadingAreUndone) {
    gid.front() = 2;
    gid.back() = 5;
    length = 1;
    const auto known = gid;
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> garbage{};
    garbage.fill(0xff);
    Given("sys_getSIMCarrierGID").Returns(17).Writes(garbage).Writes<std::uint8_t>(9);
    GetSIMCarrierGID(gid.data(), &length, 1);
    EXPECT_EQ(gid, known);
    EXPECT_EQ(length, 1);
}

}  // namespace
