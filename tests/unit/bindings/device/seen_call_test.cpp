// Whoever watches sees each call with its argument, its code and what it has delivered.
#include "bindings/device/seen_call.h"

#include <array>
#include <cstring>

#include "platform/msgbus.h"
#include "platform/sysint.h"
#include "platform/webui.h"
#include "tests/support/scratch.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class WatchedCalls : public SimulatedDevice, public binding::CallWatcher {
  protected:
    WatchedCalls() {
        Document(R"({
            "sys": {"getSIMStatus": 7, "getGPSStatus": {"error": 5},
                    "getUIFieldShowEnabled": {"apn": 3},
                    "getWiFiGuestProfileEnabled": {"2": 1},
                    "getSMSUnreadCount": {"error": null, "delay": 0.002, "healed": 4}},
            "webui": {"commonFeatures": {"a": 1, "b": 2}, "i18nSettings": {"language": "de_DE"}},
            "msgbus": {"zelt.ans.notifications": []}})");
        binding::theCallWatcher = this;
    }
    ~WatchedCalls() override { binding::theCallWatcher = nullptr; }
    WatchedCalls(const WatchedCalls&) = delete;
    WatchedCalls& operator=(const WatchedCalls&) = delete;

    void Saw(const binding::SeenCall& call) noexcept override {
        std::string text(call.name);
        text += call.argument.number ? " " + std::to_string(*call.argument.number)
                                     : " " + std::string(call.argument.text);
        text += " code " + std::to_string(call.code) + ", " + std::to_string(call.answer.size());
        if (call.answer.size() == sizeof(int)) {
            int number = 0;
            std::memcpy(&number, call.answer.data(), sizeof number);
            text += ": " + std::to_string(number);
        }
        seen.push_back(text);
    }

    void Waits(const binding::FaultPlan& plan) noexcept override {
        seen.push_back(plan.call + " waits");
    }

    std::vector<std::string> seen;
};

TEST_F(WatchedCalls, AreSeenWithArgumentCodeAndAnswer) {
    int number = 0;
    sys_sdkInitialize();
    sys_getSIMStatus(&number);
    sys_getGPSStatus(&number);
    sys_getUIFieldShowEnabled("apn", &number);
    sys_getUIFieldShowEnabled(nullptr, &number);
    sys_getWiFiGuestProfileEnabled(SYS_WIFI_GUEST_5_GHZ, &number);
    sys_cellularDataConnect(0);
    sys_sdkShutdown();
    EXPECT_THAT(
        seen,
        ElementsAre("sys_sdkInitialize  code 0, 0", "sys_getSIMStatus  code 0, 4: 7",
                    "sys_getGPSStatus  code 5, 0", "sys_getUIFieldShowEnabled apn code 0, 4: 3",
                    "sys_getUIFieldShowEnabled  code 9001, 0",
                    "sys_getWiFiGuestProfileEnabled 2 code 0, 4: 1",
                    "sys_cellularDataConnect  code 0, 0", "sys_sdkShutdown  code 0, 0"));
}

TEST_F(WatchedCalls, ListsAreSeenOnlyWhenTheyAreDelivered) {
    int count = 0;
    std::array<webui_feature_t, 3> features{};
    webui_get_common_features(nullptr, &count);
    count = features.size();
    webui_get_common_features(features.data(), &count);
    unsigned int size = 8;
    std::array<std::byte, 8> block{};
    MsgbusHandler bus(nullptr);
    bus.Initialize();
    bus.GetData("zelt.ans.notifications", block.data(), size);
    EXPECT_THAT(seen, ElementsAre("webui_get_common_features  code 983043, 0",
                                  "webui_get_common_features  code 983040, " +
                                      std::to_string(2 * sizeof(webui_feature_t)),
                                  "MsgbusHandler::GetData zelt.ans.notifications code 0, 4: 0"));
}

TEST_F(WatchedCalls, ASlowCallIsSeenWhenItBeginsToWait) {
    int number = 0;
    sys_getSMSUnreadCount(&number);
    EXPECT_THAT(seen,
                ElementsAre("sys.getSMSUnreadCount waits", "sys_getSMSUnreadCount  code 0, 4: 4"));
}

TEST_F(WatchedCalls, AreNotSeenWhenNobodyWatches) {
    binding::theCallWatcher = nullptr;
    int number = 0;
    sys_sdkInitialize();
    EXPECT_EQ(sys_getSIMStatus(&number), SYS_SUCCESS);
    sys_sdkShutdown();
    EXPECT_THAT(seen, IsEmpty());
}

}  // namespace
