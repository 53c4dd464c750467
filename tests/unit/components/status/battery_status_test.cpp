#include <limits>

#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kBattery = " - void StatusComponent::GetBatteryStatus(CTPP::CDT&)";

sys_battery_status_t Battery(std::int32_t percent, std::int32_t charging, std::int32_t detection,
                             std::int32_t source) {
    // The fields that must not be read have numbers that would be noticed in the answer.
    sys_battery_status_t battery{};
    battery.reserved0[0] = 71;
    battery.reserved0[1] = 72;
    battery.chargePercent = percent;
    battery.chargingState = charging;
    battery.reserved16 = 73;
    battery.detection = detection;
    battery.chargingSource = source;
    return battery;
}

class BatteryStatusTest : public StatusGroupTest {
  protected:
    std::string Json(const sys_battery_status_t& battery) {
        recording::Reset();
        Given("sys_getBatteryStatus").Writes(battery);
        component->GetBatteryStatus(statusData);
        return ToJson(statusData);
    }

    static std::string Texts(const std::string& percent, const std::string& charging,
                             const std::string& detection, const std::string& source) {
        return R"({"statusBarBatteryChargingSource":")" + source +
               R"(","statusBarBatteryChargingState":")" + charging +
               R"(","statusBarBatteryDetection":")" + detection +
               R"(","statusBarBatteryPercent":")" + percent + R"("})";
    }
};

TEST_F(BatteryStatusTest, FourTextsAreWrittenAndLogged) {
    EXPECT_EQ(Json(Battery(85, 1, 2, 2)), Texts("85", "true", "Present", "ChargingSourceUSB"));
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kBattery + " - BEGIN"), "sys_getBatteryStatus()",
                     Log(7, kBattery + " - battery percentage: 85 charging state: true battery "
                                       "detection: Present charging source: ChargingSourceUSB"),
                     Log(7, kBattery + " - END")}));
}

TEST_F(BatteryStatusTest, EveryKnownStateHasItsText) {
    EXPECT_EQ(Json(Battery(0, 0, 0, 0)), Texts("0", "false", "Invalid", "ChargingSourceNone"));
    EXPECT_EQ(Json(Battery(100, 1, 1, 1)), Texts("100", "true", "Notpresent", "ChargingSourceAC"));
}

TEST_F(BatteryStatusTest, UnknownDetectionIsAnEmptyText) {
    EXPECT_EQ(Json(Battery(50, 0, 3, 0)), Texts("50", "false", "", "ChargingSourceNone"));
}

TEST_F(BatteryStatusTest, UnknownStatesAreEmptyTexts) {
    EXPECT_EQ(Json(Battery(50, 2, -1, 3)), Texts("50", "", "", ""));
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kBattery + " - BEGIN"), "sys_getBatteryStatus()",
                     Log(7, kBattery + " - battery percentage: 50 charging state:  battery "
                                       "detection:  charging source: "),
                     Log(7, kBattery + " - END")}));
}

TEST_F(BatteryStatusTest, PercentageIsSignedAndNotLimited) {
    EXPECT_EQ(Json(Battery(-1, 0, 2, 0)), Texts("-1", "false", "Present", "ChargingSourceNone"));
    EXPECT_EQ(Json(Battery(std::numeric_limits<std::int32_t>::max(), 0, 2, 0)),
              Texts("2147483647", "false", "Present", "ChargingSourceNone"));
}

TEST_F(BatteryStatusTest, RecordThatIsNotWrittenIsZero) {
    Given("sys_getBatteryStatus").Returns(SYS_SUCCESS);
    component->GetBatteryStatus(statusData);
    EXPECT_EQ(ToJson(statusData), Texts("0", "false", "Invalid", "ChargingSourceNone"));
}

TEST_F(BatteryStatusTest, FailureLeavesAllKeysOutEvenWhenTheRecordWasWritten) {
    Given("sys_getBatteryStatus").Returns(2).Writes(Battery(85, 1, 2, 2));
    component->GetBatteryStatus(statusData);
    EXPECT_EQ(ToJson(statusData), "{}");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kBattery + " - BEGIN"), "sys_getBatteryStatus()",
               Failure(kBattery + " - sys_getBatteryStatus failed, returned error code [2]. Try "
                                  "sysintcli getBatteryStatus from command line"),
               Log(7, kBattery + " - END")}));
}

}  // namespace
