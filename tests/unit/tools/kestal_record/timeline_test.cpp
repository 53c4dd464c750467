// The scenario of what changes while a device is recorded.
#include "tools/kestal_record/timeline.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "bindings/json/formatted.h"
#include "bindings/posix/files/file_io.h"
#include "tools/kestal_record/document_form.h"

namespace {

using std::chrono::milliseconds;

Json Device(const std::string& sys) {
    return {{"sys", Json::parse(sys)},
            {"webui", Json::object()},
            {"msgbus", Json::parse(R"({"a.b": []})")}};
}

TEST(Timeline, HasOnlyWhatChanges) {
    Timeline timeline(Device(R"({"a": {"x": 1, "y": 2}, "b": 3, "c": {"error": 5}})"));
    EXPECT_TRUE(timeline.Add(milliseconds(1000),
                             Device(R"({"a": {"x": 1, "y": 2}, "b": 3, "c": {"error": 5}})")));
    EXPECT_TRUE(
        timeline.Add(milliseconds(1500), Device(R"({"a": {"x": 7, "y": 2}, "b": 3, "c": 4})")));
    Json last = Device(R"({"a": {"error": 9}, "b": 3, "c": 4, "d": 1})");
    last["msgbus"]["a.b"] = {{"bytes", "00"}};
    EXPECT_TRUE(timeline.Add(milliseconds(3000), last));
    EXPECT_EQ(timeline.Scenario(milliseconds(4000)), Json::parse(R"({
        "duration": 4,
        "events": [
            {"at": 0, "say": "The recording begins",
             "set": {"msgbus.a.b": [], "sys.a": {"x": 1, "y": 2}, "sys.c": {"error": 5}}},
            {"at": 1.5, "say": "a, c", "set": {"sys.a.x": 7, "sys.c": 4}},
            {"at": 3, "say": "a, d, a.b",
             "set": {"sys.a": {"error": 9}, "sys.d": 1, "msgbus.a.b": {"bytes": "00"}}}
        ]
    })"));
}

TEST(Timeline, NamesThatAPathCannotSayAreSetWithTheirObject) {
    Timeline timeline(Device(R"({"a": {"x.y": 1, "z[0]": 2}})"));
    EXPECT_TRUE(timeline.Add(milliseconds(1), Device(R"({"a": {"x.y": 1, "z[0]": 3}})")));
    EXPECT_EQ(timeline.Scenario(milliseconds(1))["events"][1]["set"],
              Json::parse(R"({"sys.a": {"x.y": 1, "z[0]": 3}})"));
}

TEST(Timeline, EndsWhenAScenarioCanHoldNoMore) {
    constexpr int kCalls = 300;
    Json device = Device("{}");
    Json other = device;
    for (int index = 0; index < kCalls; ++index) {
        device["sys"]["c" + std::to_string(index)] = 0;
        other["sys"]["c" + std::to_string(index)] = 1;
    }
    Timeline timeline(device);
    std::size_t moments = 0;
    while (timeline.Add(milliseconds(moments + 1), moments % 2 == 0 ? other : device)) {
        ASSERT_LT(++moments, 400U);
    }
    EXPECT_EQ(moments, 300U);
    EXPECT_EQ(timeline.Scenario(milliseconds(1000))["events"].size(), moments + 1);
}

TEST(Timeline, EndsBeforeAScenarioIsTooLongToBeRead) {
    // Seven of these, the value at the beginning among them, would be too long.
    constexpr std::size_t kSize = 610'000;
    const auto device = [](std::size_t index) {
        Json made = Device(R"({"stays": 1})");
        made["sys"]["call"] =
            RawText(std::string(kSize, static_cast<char>('a' + index)), kSize + 1);
        return made;
    };
    Timeline timeline(device(0));
    std::size_t moments = 0;
    while (timeline.Add(milliseconds(moments + 1), device(moments + 1))) {
        ASSERT_LT(++moments, 9U);
    }
    const auto same = [](const std::string& text) { return text; };
    const Json scenario = Finished(timeline.Scenario(milliseconds(moments)), same);
    const std::size_t bytes = binding::Formatted(scenario).size();
    EXPECT_LE(bytes, binding::kLargestFile);
    EXPECT_GT(bytes, binding::kLargestFile / 5 * 4);
}

}  // namespace
