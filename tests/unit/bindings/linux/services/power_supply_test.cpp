// The battery, as the kernel and UPower describe it.
#include "bindings/linux/power/power_supply.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "bindings/linux/power/upower.h"
#include "tests/unit/bindings/linux/services/folder.h"

namespace {

using nlohmann::json;

class PowerSupplyTest : public ::testing::Test {
  protected:
    sys_battery_status_t Battery() const {
        return binding::BatteryRecord(binding::ReadPowerSupplies(folder.Path()));
    }

    void WriteBattery() const {
        folder.Write("BAT0/type", "Battery\n");
        folder.Write("BAT0/present", "1\n");
        folder.Write("BAT0/capacity", "81\n");
        folder.Write("BAT0/status", "Charging\n");
    }

    Folder folder;
};

TEST_F(PowerSupplyTest, WithoutABatteryNoneIsPresent) {
    EXPECT_EQ(Battery().detection, SYS_BATTERY_NOT_PRESENT);
    EXPECT_EQ(Battery().chargePercent, 0);
    EXPECT_EQ(binding::BatteryRecord(binding::ReadPowerSupplies("/nonexistent")).detection,
              SYS_BATTERY_NOT_PRESENT);
    WriteBattery();
    folder.Write("BAT0/present", "0\n");
    EXPECT_EQ(Battery().detection, SYS_BATTERY_NOT_PRESENT);
}

TEST_F(PowerSupplyTest, ABatteryTellsItsChargeAndWhetherItCharges) {
    WriteBattery();
    EXPECT_EQ(Battery().detection, SYS_BATTERY_PRESENT);
    EXPECT_EQ(Battery().chargePercent, 81);
    EXPECT_EQ(Battery().chargingState, 1);
    folder.Write("BAT0/status", "Discharging\n");
    EXPECT_EQ(Battery().chargingState, 0);
    folder.Write("BAT0/status", "Full\n");
    EXPECT_EQ(Battery().chargingState, 0);
}

TEST_F(PowerSupplyTest, TheChargerIsTheOneThatIsOnline) {
    WriteBattery();
    folder.Write("AC/type", "Mains\n");
    folder.Write("AC/online", "0\n");
    folder.Write("usb/type", "USB\n");
    folder.Write("usb/online", "0\n");
    EXPECT_EQ(Battery().chargingSource, SYS_CHARGING_SOURCE_NONE);
    folder.Write("AC/online", "1\n");
    EXPECT_EQ(Battery().chargingSource, SYS_CHARGING_SOURCE_AC);
    folder.Write("usb/online", "1\n");
    EXPECT_EQ(Battery().chargingSource, SYS_CHARGING_SOURCE_USB);
    folder.Write("usb/type", "USB_PD\n");
    EXPECT_EQ(Battery().chargingSource, SYS_CHARGING_SOURCE_USB);
}

TEST_F(PowerSupplyTest, TheBatteryOfAMouseIsNotTheDevices) {
    folder.Write("hid/type", "Battery\n");
    folder.Write("hid/scope", "Device\n");
    folder.Write("hid/capacity", "20\n");
    EXPECT_EQ(Battery().detection, SYS_BATTERY_NOT_PRESENT);
}

TEST_F(PowerSupplyTest, AGaugeThatDoesNotDivideHasItsChargeDivided) {
    folder.Write("BAT0/type", "Battery\n");
    EXPECT_EQ(Battery().detection, SYS_BATTERY_INVALID) << "present, but of unknown charge";
    folder.Write("BAT0/charge_now", "1500\n");
    folder.Write("BAT0/charge_full", "2000\n");
    EXPECT_EQ(Battery().detection, SYS_BATTERY_PRESENT);
    EXPECT_EQ(Battery().chargePercent, 75);
}

TEST_F(PowerSupplyTest, ValuesThatCannotBeAreCorrected) {
    WriteBattery();
    folder.Write("BAT0/capacity", "130\n");
    EXPECT_EQ(Battery().chargePercent, 100);
    folder.Write("BAT0/capacity", "-3\n");
    EXPECT_EQ(Battery().chargePercent, 0);
    folder.Write("BAT0/capacity", std::string(100'000, '9'));
    EXPECT_EQ(Battery().detection, SYS_BATTERY_INVALID);
}

TEST(UPower, TellsTheBatteryAndTheKernelTheKindOfCharger) {
    const json charging = {{"IsPresent", true}, {"Percentage", 54.9}, {"State", 1U}};
    binding::PowerSupplies kernel;
    auto battery = binding::BatteryRecord(binding::ReadUPower(charging, kernel));
    EXPECT_EQ(battery.detection, SYS_BATTERY_PRESENT);
    EXPECT_EQ(battery.chargePercent, 54);
    EXPECT_EQ(battery.chargingState, 1);
    EXPECT_EQ(battery.chargingSource, SYS_CHARGING_SOURCE_AC);
    kernel.source = SYS_CHARGING_SOURCE_USB;
    battery = binding::BatteryRecord(binding::ReadUPower(charging, kernel));
    EXPECT_EQ(battery.chargingSource, SYS_CHARGING_SOURCE_USB);
}

TEST(UPower, ABatteryIsChargedFromNothingWhileItIsDischarged) {
    binding::PowerSupplies kernel;
    kernel.source = SYS_CHARGING_SOURCE_USB;
    const json discharging = {{"IsPresent", true}, {"Percentage", 9.0}, {"State", 2U}};
    const auto battery = binding::BatteryRecord(binding::ReadUPower(discharging, kernel));
    EXPECT_EQ(battery.chargePercent, 9);
    EXPECT_EQ(battery.chargingState, 0);
    EXPECT_EQ(battery.chargingSource, SYS_CHARGING_SOURCE_NONE);
    const json full = {{"IsPresent", true}, {"Percentage", 100.0}, {"State", 4U}};
    EXPECT_EQ(binding::BatteryRecord(binding::ReadUPower(full, kernel)).chargingState, 0);
}

TEST(UPower, KnowsWhetherThereIsABattery) {
    EXPECT_EQ(binding::BatteryRecord(binding::ReadUPower({{"IsPresent", false}}, {})).detection,
              SYS_BATTERY_NOT_PRESENT);
}

TEST_F(PowerSupplyTest, ABatteryThatHasBeenTakenOutIsNotThereWhateverUPowerTells) {
    WriteBattery();
    folder.Write("BAT0/present", "0\n");
    const json told = {{"IsPresent", true}, {"Percentage", 0.0}, {"State", 1U}};
    const auto battery =
        binding::BatteryRecord(ReadUPower(told, binding::ReadPowerSupplies(folder.Path())));
    EXPECT_EQ(battery.detection, SYS_BATTERY_NOT_PRESENT);
    folder.Write("BAT1/type", "Battery\n");
    EXPECT_TRUE(ReadUPower(told, binding::ReadPowerSupplies(folder.Path())).battery);
}

TEST(UPower, ThatTellsNothingOfUseLeavesTheKernelsValues) {
    binding::PowerSupplies kernel;
    kernel.battery = true;
    kernel.percent = 40;
    for (const json& properties :
         {json(), json::object(), json({{"IsPresent", "yes"}}),
          json({{"IsPresent", true}, {"Percentage", "54"}, {"State", -1.5}})}) {
        const auto battery = binding::BatteryRecord(binding::ReadUPower(properties, kernel));
        EXPECT_EQ(battery.detection, SYS_BATTERY_PRESENT) << properties;
        EXPECT_EQ(battery.chargePercent, 40) << properties;
    }
    const json wrong = {{"IsPresent", true}, {"Percentage", 1e300}};
    EXPECT_EQ(binding::ReadUPower(wrong, kernel).percent, 100);
}

}  // namespace
