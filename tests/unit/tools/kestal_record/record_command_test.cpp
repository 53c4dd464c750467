// What becomes of a recording when the device or its binding is in trouble.
#include "tools/kestal_record/record_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "bindings/recording/recording.h"
#include "platform/sysint.h"
#include "tests/support/scratch.h"
#include "tools/json_output.h"

using recording::Given;
using testing::MatchesRegex;

namespace {

class RecordCommandTest : public SimulatedDevice {
  protected:
    RecordCommandTest() { recording::Reset(); }

    /// Returns what is said.
    std::string Record(const RecordedBinding& binding, std::vector<std::string> options = {}) {
        const Tool tool = {.name = "record",
                           .description = "Records.",
                           .codes = {},
                           .commands = {RecordCommand("", binding)}};
        options.push_back(file);
        std::ostringstream out;
        std::ostringstream errors;
        testing::internal::CaptureStderr();
        const ExitCode code = RunTool(tool, options, out, errors);
        EXPECT_EQ(code, ExitCode::kSuccess);
        return out.str() + errors.str() + testing::internal::GetCapturedStderr();
    }

    const std::string file = directory / "recorded.json";
};

TEST_F(RecordCommandTest, ALookThatFailsEndsTheRecordingWhichIsWritten) {
    Given("sys_getConnectedDeviceList").WritesNothing().Writes<unsigned int>(0);
    Given("sys_getSMSUnreadCount").Writes<int>(1);
    Given("sys_getSMSUnreadCount").Writes<int>(2);
    Given("sys_getConnectedDeviceList").WritesNothing().Writes<unsigned int>(0);
    Given("sys_getConnectedDeviceList")
        .Returns(SYS_ERROR_BUFFER_NEEDED)
        .WritesNothing()
        .Writes<unsigned int>(UINT_MAX);
    EXPECT_THAT(Record({"recording", {}}, {"--for", "1000", "--every", "100ms"}),
                MatchesRegex("the recording ended after [0-9]+ s: sys_getConnectedDeviceList says "
                             "that it has 4294967295 records\n"));
    EXPECT_EQ(Json::parse(ReadFile(file)).at("sys").at("getSMSUnreadCount"), 1);
    const Json scenario = Json::parse(ReadFile(directory / "recorded-scenario.json"));
    EXPECT_EQ(scenario.at("events").back().at("set").dump(), R"({"sys.getSMSUnreadCount":2})");
}

TEST_F(RecordCommandTest, WhatTheBindingRemarksIsSaid) {
    EXPECT_EQ(Record({.name = "recording", .codes = {}, .remark = [] { return "half of it"; }}),
              "half of it\n");
    std::filesystem::remove(file);
    EXPECT_EQ(Record({.name = "recording", .codes = {}, .remark = [] { return ""; }}), "");
}

}  // namespace
