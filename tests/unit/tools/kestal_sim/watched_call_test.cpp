// What kestal-sim watch prints about a call.
#include "tools/kestal_sim/watched_call.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "platform/webui.h"

namespace {

using binding::WatchKind;
using binding::WatchMessage;

TEST(WatchedCall, IsALineWithTimeCallArgumentAndName) {
    const std::array<std::int32_t, 1> ready = {7};
    const auto bytes = std::as_bytes(std::span(ready));
    EXPECT_EQ(LineAbout({.time = std::chrono::microseconds(1234),
                         .call = "sys_getSIMStatus",
                         .answer = bytes,
                         .answerSize = bytes.size()}),
              "    1.234 ms  sys_getSIMStatus: ready");
    EXPECT_EQ(LineAbout({.call = "sys_getUIFieldShowEnabled",
                         .argument = "a field",
                         .answer = bytes,
                         .answerSize = bytes.size()}),
              "    0.000 ms  sys_getUIFieldShowEnabled \"a field\": 7");
}

TEST(WatchedCall, NamesTheCodeOfAFailureInItsLibrary) {
    const auto failing = [](std::string_view call, int code) {
        return LineAbout({.code = code, .call = call}).substr(14);
    };
    EXPECT_EQ(failing("sys_getSDCardInfo", 2001),
              "sys_getSDCardInfo: fails: error_no_sd_card (2001)");
    EXPECT_EQ(failing("sys_getGPSStatus", 5), "sys_getGPSStatus: fails: 5");
    EXPECT_EQ(failing("webui_get_uri_data", WEBUI_SUCCESS + 9001),
              "webui_get_uri_data: fails: not_answered (992041)");
    EXPECT_EQ(failing("MsgbusHandler::GetData", 4), "MsgbusHandler::GetData: needs a buffer");
    EXPECT_EQ(failing("webui_get_uri_data", WEBUI_SUCCESS), "webui_get_uri_data: done");
}

TEST(WatchedCall, CountsAllEntriesOfAListOfWhichItHasOnlyTheBeginning) {
    std::vector<webui_configuration_t> list(4);
    list[0].name[0] = 'a';
    list[0].value[0] = '1';
    const auto bytes = std::as_bytes(std::span(list));
    EXPECT_EQ(LineAbout({.code = WEBUI_SUCCESS,
                         .call = "webui_get_common_configurations",
                         .answer = bytes.first(bytes.size() - 1),
                         .answerSize = 200 * sizeof(webui_configuration_t)})
                  .substr(14),
              R"(webui_get_common_configurations: 200 entries: name=a value=1, name="" value="", )"
              R"(name="" value="", ...)");
}

TEST(WatchedCall, IsOneLineWhateverItsTextsAre) {
    EXPECT_EQ(LineAbout({.kind = WatchKind::waits,
                         .time = std::chrono::seconds(2),
                         .call = "webui.uriData.a\n\x1b[2J"}),
              "              webui.uriData.a??[2J waits for 2000 ms ...");
    EXPECT_EQ(LineAbout({.kind = WatchKind::waits, .time = binding::kForEver, .call = "a"}),
              "              a hangs ...");
}

}  // namespace
