// Calls that are slow, hang, or fail only now and then.
#include "bindings/device/fault.h"

#include <csignal>

#include "bindings/device/codes.h"
#include "platform/msgbus.h"
#include "platform/sysint.h"
#include "platform/webui.h"
#include "tests/support/fake_device_clock.h"
#include "tests/support/scratch.h"

namespace {

using std::chrono::milliseconds;
using namespace std::chrono_literals;
using ::testing::ElementsAre;

class FaultyCalls : public SimulatedDevice {
  protected:
    void Gps(const std::string& entry) const {
        Document("{\"sys\": {\"getGPSStatus\": " + entry + "}}");
    }

    /// The value that the call gives, or the code with which it fails, plus 1000.
    static int Gps() {
        int status = -1;
        const int code = sys_getGPSStatus(&status);
        return code == 0 ? status : 1000 + code;
    }

    static std::vector<int> Gps(int calls) {
        std::vector<int> results;
        for (int call = 0; call < calls; ++call) {
            results.push_back(Gps());
        }
        return results;
    }

    FakeDeviceClock clock;
};

TEST_F(FaultyCalls, FailSomeTimesAndThenAnswer) {
    Gps(R"({"error": 5, "times": 3, "healed": 2})");
    EXPECT_THAT(Gps(5), ElementsAre(1005, 1005, 1005, 2, 2));
    EXPECT_EQ(clock.passed, 0ms);
}

TEST_F(FaultyCalls, AreCountedAcrossSessions) {
    Gps(R"({"error": 5, "times": 2, "healed": 2})");
    std::vector<int> results;
    for (int session = 0; session < 3; ++session) {
        EXPECT_EQ(sys_sdkInitialize(), 0);
        results.push_back(Gps());
        EXPECT_EQ(sys_sdkShutdown(), 0);
    }
    EXPECT_THAT(results, ElementsAre(1005, 1005, 2));
}

TEST_F(FaultyCalls, AreCountedOnThoughOtherThingsInTheDocumentChange) {
    Gps(R"({"error": 5, "times": 2, "healed": 2})");
    EXPECT_EQ(Gps(), 1005);
    Document(R"({"sys": {"getSIMStatus": 7, "getGPSStatus": {"error": 5, "times": 2,
                 "healed": 3}}})");
    EXPECT_THAT(Gps(2), ElementsAre(1005, 3));
}

TEST_F(FaultyCalls, AreCountedAnewWhenTheFaultIsAnother) {
    Gps(R"({"error": 5, "times": 1, "since": "2026-11-21T12:00:00.000Z", "healed": 2})");
    EXPECT_THAT(Gps(2), ElementsAre(1005, 2));
    Gps(R"({"error": 5, "times": 1, "since": "2026-11-21T12:00:00.001Z", "healed": 2})");
    EXPECT_THAT(Gps(2), ElementsAre(1005, 2));
    Gps(R"({"error": 6, "times": 1, "since": "2026-11-21T12:00:00.001Z", "healed": 2})");
    EXPECT_THAT(Gps(2), ElementsAre(1006, 2));
}

TEST_F(FaultyCalls, AreCountedAnewAfterTheFaultWasGone) {
    Gps(R"({"error": 5, "times": 1, "healed": 2})");
    EXPECT_THAT(Gps(2), ElementsAre(1005, 2));
    Gps("2");
    EXPECT_EQ(Gps(), 2);
    Gps(R"({"error": 5, "times": 1, "healed": 2})");
    EXPECT_THAT(Gps(2), ElementsAre(1005, 2));
}

TEST_F(FaultyCalls, FailWithAProbabilityInTheSequenceOfTheSeed) {
    const auto sequence = [&](const std::string& seed) {
        Gps("2");
        EXPECT_EQ(Gps(), 2);
        Gps(R"({"error": 5, "probability": 0.5, "seed": )" + seed + R"(, "healed": 2})");
        return Gps(200);
    };
    const std::vector<int> seven = sequence("7");
    EXPECT_EQ(sequence("7"), seven);
    EXPECT_NE(sequence("8"), seven);
    const auto failures = std::count(seven.begin(), seven.end(), 1005);
    EXPECT_GT(failures, 70);
    EXPECT_LT(failures, 130);
    // The numbers of the generator are the same on all machines.
    EXPECT_THAT(std::vector<int>(seven.begin(), seven.begin() + 8),
                ElementsAre(1005, 1005, 2, 1005, 1005, 2, 2, 1005));
}

TEST_F(FaultyCalls, NeverOrAlwaysFailAtTheLimitsOfTheProbability) {
    Gps(R"({"error": 5, "probability": 0, "healed": 2})");
    EXPECT_EQ(Gps(50), std::vector<int>(50, 2));
    Gps(R"({"error": 5, "probability": 1, "healed": 2})");
    EXPECT_EQ(Gps(50), std::vector<int>(50, 1005));
}

TEST_F(FaultyCalls, FailAtMostSoManyTimesWithAProbability) {
    Gps(R"({"error": 5, "times": 3, "probability": 0.5, "seed": 7, "healed": 2})");
    EXPECT_THAT(Gps(8), ElementsAre(1005, 1005, 2, 1005, 2, 2, 2, 2));
}

TEST_F(FaultyCalls, AnswerOrFailAfterTheDelay) {
    Gps(R"({"error": null, "delay": 2, "healed": 2})");
    EXPECT_EQ(Gps(), 2);
    EXPECT_EQ(clock.passed, 2s);
    Gps(R"({"error": 5, "delay": 0.25, "healed": 2})");
    EXPECT_EQ(Gps(), 1005);
    EXPECT_EQ(clock.passed, 2250ms);
}

TEST_F(FaultyCalls, AreDelayedWhenTheCallIsMadeAndNotByTheSnapshot) {
    Gps(R"({"error": null, "delay": 2, "healed": 2})");
    EXPECT_EQ(sys_sdkInitialize(), 0);
    EXPECT_EQ(clock.passed, 0s);
    EXPECT_EQ(Gps(), 2);
    EXPECT_EQ(clock.passed, 2s);
    EXPECT_EQ(sys_sdkShutdown(), 0);
}

TEST_F(FaultyCalls, HangUntilTheFaultIsClearedAndThenAnswerFromTheirSnapshot) {
    Gps(R"({"error": null, "hang": true, "healed": 2})");
    clock.whileWaiting = [&] {
        if (clock.passed >= 1min) {
            Gps("3");
        }
    };
    EXPECT_EQ(sys_sdkInitialize(), 0);
    EXPECT_EQ(Gps(), 2);
    EXPECT_GE(clock.passed, 1min);
    EXPECT_LE(clock.passed, 1min + 1s);
    EXPECT_EQ(sys_sdkShutdown(), 0);
    EXPECT_EQ(Gps(), 3);
}

TEST_F(FaultyCalls, HangOnWhateverElseChangesOrBreaksInTheDocument) {
    Gps(R"({"error": null, "hang": true, "healed": 2})");
    int looks = 0;
    clock.whileWaiting = [&] {
        switch (++looks) {
            case 10:
                Document(R"({"sys": {"getSIMStatus": 1, "getGPSStatus":
                             {"error": null, "hang": true, "healed": 3}}})");
                break;
            case 20:
                Document("{");
                break;
            case 30:
                std::filesystem::remove(device);
                break;
            case 40:
                Document("{}");
                break;
            default:
                break;
        }
    };
    EXPECT_EQ(Gps(), 2);
    EXPECT_EQ(looks, 40);
}

TEST_F(FaultyCalls, HangUntilTheProcessIsAskedToEndAndThenFail) {
    Document(R"({"sys": {"getGPSStatus": {"error": null, "hang": true, "healed": 2}},
                 "webui": {"i18nSettings": {"error": null, "delay": 9, "healed": {}}}})");
    clock.isAskedToEnd = true;
    EXPECT_EQ(Gps(), 1000 + binding::kInterrupted);
    webui_i18n_settings_t settings{};
    EXPECT_EQ(webui_get_i18n_settings(&settings), binding::kWebuiCodeBase + binding::kInterrupted);
}

TEST_F(FaultyCalls, OtherwiseAnswerAsIfHealed) {
    Gps(R"({"error": 5, "times": 1, "healed": null})");
    EXPECT_THAT(Gps(2), ElementsAre(1005, 1000 + binding::kNotAnswered));
    Gps(R"({"error": 7, "times": 1, "healed": {"error": 6}})");
    EXPECT_THAT(Gps(2), ElementsAre(1007, 1006));
}

TEST_F(FaultyCalls, AreOfEveryKind) {
    Document(R"({
        "sys": {
            "sdkInitialize": {"error": 1, "times": 1, "healed": null},
            "cellularDataConnect": {"error": 2, "times": 1, "healed": null},
            "getSIMCarrierGID": {"error": 3, "times": 1, "healed":
                {"0": [7], "1": {"error": 4, "times": 1, "healed": [8]}}},
            "getUIFieldShowEnabled": {"error": 5, "times": 1, "healed":
                {"apn": {"error": 6, "times": 1, "healed": 1}}},
            "getConnectedDeviceList": {"error": 8, "times": 1, "healed": []}
        },
        "webui": {"uriData": {"gps": {"error": 9, "times": 1, "healed": {"address": "/gps"}}}},
        "msgbus": {"a": {"error": 10, "times": 1, "healed": {"bytes": ""}}}
    })");
    const auto codes = [](auto call) { return std::vector<int>{call(), call(), call()}; };
    EXPECT_THAT(codes([] { return sys_sdkInitialize(); }), ElementsAre(1, 0, 0));
    EXPECT_EQ(sys_sdkShutdown(), 0);
    EXPECT_THAT(codes([] { return sys_cellularDataConnect(0); }), ElementsAre(2, 0, 0));
    const auto groupId = [](std::uint8_t index) {
        return [index] {
            std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{};
            std::uint8_t length = 0;
            return sys_getSIMCarrierGID(gid.data(), &length, index);
        };
    };
    EXPECT_THAT(codes(groupId(1)), ElementsAre(3, 4, 0));
    EXPECT_THAT(codes(groupId(0)), ElementsAre(0, 0, 0));
    int shown = 0;
    EXPECT_THAT(codes([&] { return sys_getUIFieldShowEnabled("apn", &shown); }),
                ElementsAre(5, 6, 0));
    EXPECT_EQ(shown, 1);
    unsigned int count = 0;
    EXPECT_THAT(codes([&] { return sys_getConnectedDeviceList(nullptr, &count); }),
                ElementsAre(8, 0, 0));
    webui_uri_data_t data{};
    EXPECT_THAT(codes([&] { return webui_get_uri_data("gps", &data); }),
                ElementsAre(9, WEBUI_SUCCESS, WEBUI_SUCCESS));
    MsgbusHandler bus(nullptr);
    EXPECT_EQ(bus.Initialize(), 0);
    unsigned int size = 0;
    EXPECT_THAT(codes([&] { return bus.GetData("a", nullptr, size); }), ElementsAre(10, 4, 4));
}

/// Blocks SIGTERM, as the service does while it serves a request.
class HeldBackTermination {
  public:
    HeldBackTermination() {
        (void)sigemptyset(&signals);
        (void)sigaddset(&signals, SIGTERM);
        (void)pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    }
    ~HeldBackTermination() {
        int taken = 0;
        (void)sigwait(&signals, &taken);
        (void)pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    }
    HeldBackTermination(const HeldBackTermination&) = delete;
    HeldBackTermination& operator=(const HeldBackTermination&) = delete;

  private:
    sigset_t signals{};
};

TEST(RealDeviceClock, SeesATerminationThatIsHeldBackAndLeavesItPending) {
    binding::DeviceClock& clock = binding::CurrentDeviceClock();
    EXPECT_TRUE(clock.WaitUntil(clock.Now() + 1ms));
    const HeldBackTermination held;
    EXPECT_TRUE(clock.WaitUntil(clock.Now() + 1ms));
    EXPECT_EQ(kill(getpid(), SIGTERM), 0);
    EXPECT_FALSE(clock.WaitUntil(clock.Now() + 1h));
}

}  // namespace
