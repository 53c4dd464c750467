// Each query answers what the document says, fails with the code that it says, or is not simulated.
#include "platform/sysint.h"

#include <array>
#include <cstring>
#include <vector>

#include "bindings/device/codes.h"
#include "platform/sysint_queries.h"
#include "tests/support/scratch.h"

namespace {

using binding::kNoDevice;
using binding::kNotAnswered;

class Sysint : public SimulatedDevice {
  protected:
    /// A document with one entry.
    void Entry(const std::string& name, const std::string& value) const {
        Document("{\"sys\": {\"" + name + "\": " + value + "}}");
    }

    /// Expects that the call fails with @p code and leaves the caller's record alone.
    template <typename T>
    static void ExpectFailure(int (*call)(T*), int code, const char* name) {
        std::array<std::byte, sizeof(T)> preset{};
        preset.fill(std::byte{0x5A});
        T value{};
        std::memcpy(&value, preset.data(), sizeof(T));
        EXPECT_EQ(call(&value), code) << name;
        EXPECT_EQ(std::memcmp(&value, preset.data(), sizeof(T)), 0) << name;
    }

    template <typename T>
    void ExpectAnswer(int (*call)(T*), const char* name) const {
        constexpr bool kIsRecord = std::is_class_v<T>;
        Entry(name, kIsRecord ? "{}" : "7");
        T value{};
        std::memset(&value, 0x5A, sizeof(T));
        EXPECT_EQ(call(&value), SYS_SUCCESS) << name;
        T expected{};
        if constexpr (!kIsRecord) {
            expected = static_cast<T>(7);
        }
        EXPECT_EQ(std::memcmp(&value, &expected, sizeof(T)), 0) << name;
    }
};

TEST_F(Sysint, NamedQueriesAnswer) {
#define EXPECT_QUERY(Type, name, Meaning, field, description) ExpectAnswer(&sys_##name, #name);
    SYSINT_QUERIES(EXPECT_QUERY)
#undef EXPECT_QUERY
    EXPECT_TRUE(Log().empty());
}

TEST_F(Sysint, UnnamedQueriesFailAndWriteNothing) {
    Document("{}");
#define EXPECT_QUERY(Type, name, Meaning, field, description) \
    ExpectFailure(&sys_##name, kNotAnswered, #name);
    SYSINT_QUERIES(EXPECT_QUERY)
#undef EXPECT_QUERY
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{9};
    std::uint8_t length = 9;
    EXPECT_EQ(sys_getSIMCarrierGID(gid.data(), &length, 1), kNotAnswered);
    EXPECT_EQ(gid[0], 9);
    EXPECT_EQ(length, 9);
    int first = 9;
    int second = 9;
    EXPECT_EQ(sys_getCellular5GBand(&first, &second), kNotAnswered);
    EXPECT_EQ(sys_getWiFiGuestProfileEnabled(SYS_WIFI_GUEST_2_4_GHZ, &first), kNotAnswered);
    int third = 9;
    EXPECT_EQ(sys_getModemMnsInfo(&first, &second, &third), kNotAnswered);
    EXPECT_EQ(first, 9);
    EXPECT_EQ(second, 9);
    EXPECT_EQ(third, 9);
    unsigned int count = 9;
    EXPECT_EQ(sys_getConnectedDeviceList(nullptr, &count), kNotAnswered);
    EXPECT_EQ(count, 9U);
}

TEST_F(Sysint, QueriesFailAsTheDocumentSaysAndWriteNothing) {
#define EXPECT_QUERY(Type, name, Meaning, field, description) \
    Entry(#name, "{\"error\": 42}");                          \
    ExpectFailure(&sys_##name, 42, #name);
    SYSINT_QUERIES(EXPECT_QUERY);
#undef EXPECT_QUERY
}

TEST_F(Sysint, ShippedDocumentIsAWorkingHotspot) {
    environment.Set("KESTAL_DEVICE", KESTAL_SHIPPED_DEVICES "/default.json");
    EXPECT_EQ(sys_sdkInitialize(), 0);
    sys_battery_status_t battery{};
    EXPECT_EQ(sys_getBatteryStatus(&battery), 0);
    EXPECT_EQ(battery.chargePercent, 84);
    sys_cellular_service_stats_t stats{};
    EXPECT_EQ(sys_getCellularServiceStats(&stats), 0);
    EXPECT_EQ(stats.technology, SYS_TECHNOLOGY_5G);
    EXPECT_EQ(sys_sdkShutdown(), 0);
    EXPECT_TRUE(Log().empty());
}

TEST_F(Sysint, WithoutADocumentEverythingFails) {
    int value = 9;
    EXPECT_EQ(sys_sdkInitialize(), kNoDevice);
    EXPECT_EQ(sys_getSIMStatus(&value), kNoDevice);
    EXPECT_EQ(sys_cellularDataConnect(0), kNoDevice);
    EXPECT_EQ(value, 9);
}

TEST_F(Sysint, InitialisationMayFailAndStillTakesASnapshot) {
    Document(R"({"sys": {"sdkInitialize": {"error": 77}, "getSIMStatus": 7}})");
    EXPECT_EQ(sys_sdkInitialize(), 77);
    Document("{}");
    int status = 0;
    EXPECT_EQ(sys_getSIMStatus(&status), 0);
    EXPECT_EQ(status, 7);
}

TEST_F(Sysint, GroupIdentifierComesWithItsLength) {
    Document(R"({"sys": {"getSIMCarrierGID": {"0": [2, 17, 255], "1": {"error": 6}}}})");
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{};
    gid.fill(9);
    std::uint8_t length = 9;
    EXPECT_EQ(sys_getSIMCarrierGID(gid.data(), &length, 0), 0);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(gid[0], 2);
    EXPECT_EQ(gid[2], 255);
    EXPECT_EQ(gid[3], 9) << "nothing is written after the identifier";
    EXPECT_EQ(sys_getSIMCarrierGID(gid.data(), &length, 1), 6);
    EXPECT_EQ(sys_getSIMCarrierGID(gid.data(), &length, 2), kNotAnswered);
}

TEST_F(Sysint, NrBandComesWithTheSecond) {
    Entry("getCellular5GBand", R"({"band": 77, "second": 41})");
    int band = 0;
    int second = 0;
    EXPECT_EQ(sys_getCellular5GBand(&band, &second), 0);
    EXPECT_EQ(band, 77);
    EXPECT_EQ(second, 41);
}

TEST_F(Sysint, NetworkSelectionHasThreeValues) {
    Entry("getModemMnsInfo", R"({"allowed": 1, "selected": -2, "scanStatus": 3})");
    int allowed = 0;
    int selected = 0;
    int scanStatus = 0;
    EXPECT_EQ(sys_getModemMnsInfo(&allowed, &selected, &scanStatus), 0);
    EXPECT_EQ(allowed, 1);
    EXPECT_EQ(selected, -2);
    EXPECT_EQ(scanStatus, 3);
    Entry("getModemMnsInfo", "{\"error\": 5}");
    EXPECT_EQ(sys_getModemMnsInfo(&allowed, &selected, &scanStatus), 5);
    EXPECT_EQ(allowed, 1);
}

TEST_F(Sysint, SlotsComeWithTheirCount) {
    Entry("getAllSimSlotsInfo",
          R"({"slots": [{"networkName": "Orvane", "active": 1}, {"simStatus": 7}]})");
    sys_all_sim_slots_t all{};
    EXPECT_EQ(sys_getAllSimSlotsInfo(&all), 0);
    EXPECT_EQ(all.count, 2);
    EXPECT_STREQ(all.slots[0].networkName, "Orvane");
    EXPECT_EQ(all.slots[0].active, 1);
    EXPECT_EQ(all.slots[1].simStatus, SYS_SIM_READY);
}

TEST_F(Sysint, EachGpioPinHasItsOwnNames) {
    Document(R"({"sys": {
        "getGpioPin1CustomSettings": {"name": "Door", "lowState": "Closed", "highState": "Open"},
        "getGpioPin2CustomSettings": {"highState": "On"}}})");
    GpioCustomSettings settings{};
    EXPECT_EQ(sys_getGpioPin1CustomSettings(&settings), 0);
    EXPECT_STREQ(settings.name, "Door");
    EXPECT_STREQ(settings.lowState, "Closed");
    EXPECT_STREQ(settings.highState, "Open");
    EXPECT_EQ(sys_getGpioPin2CustomSettings(&settings), 0);
    EXPECT_STREQ(settings.name, "");
    EXPECT_STREQ(settings.lowState, "");
    EXPECT_STREQ(settings.highState, "On");
}

TEST_F(Sysint, EachGuestProfileHasItsOwnAnswer) {
    Entry("getWiFiGuestProfileEnabled", R"({"1": {"error": 5}, "2": 1})");
    int enabled = 9;
    EXPECT_EQ(sys_getWiFiGuestProfileEnabled(SYS_WIFI_GUEST_2_4_GHZ, &enabled), 5);
    EXPECT_EQ(enabled, 9);
    EXPECT_EQ(sys_getWiFiGuestProfileEnabled(SYS_WIFI_GUEST_5_GHZ, &enabled), 0);
    EXPECT_EQ(enabled, 1);
    Entry("getWiFiGuestProfileEnabled", "1");
    EXPECT_EQ(sys_getWiFiGuestProfileEnabled(3, &enabled), kNotAnswered);
}

TEST_F(Sysint, DeviceListReturnsItsSizeFirst) {
    Entry("getConnectedDeviceList", R"([{"connectionKind": 1}, {"connectionKind": 3}])");
    unsigned int count = 0;
    EXPECT_EQ(sys_getConnectedDeviceList(nullptr, &count), SYS_ERROR_BUFFER_NEEDED);
    EXPECT_EQ(count, 2U);
    std::vector<sys_connected_device_t> devices(3);
    devices[2].connectionKind = 9;
    count = 3;
    EXPECT_EQ(sys_getConnectedDeviceList(devices.data(), &count), 0);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(devices[0].connectionKind, 1);
    EXPECT_EQ(devices[1].connectionKind, 3);
    EXPECT_EQ(devices[2].connectionKind, 9);
}

TEST_F(Sysint, DeviceListIsNotWrittenIntoTooSmallABuffer) {
    Entry("getConnectedDeviceList", R"([{"connectionKind": 1}, {"connectionKind": 3}])");
    sys_connected_device_t only{};
    only.connectionKind = 9;
    unsigned int count = 1;
    EXPECT_EQ(sys_getConnectedDeviceList(&only, &count), SYS_ERROR_BUFFER_NEEDED);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(only.connectionKind, 9);
}

TEST_F(Sysint, AnEmptyDeviceListNeedsNoBuffer) {
    Entry("getConnectedDeviceList", "[]");
    unsigned int count = 9;
    EXPECT_EQ(sys_getConnectedDeviceList(nullptr, &count), SYS_SUCCESS);
    EXPECT_EQ(count, 0U);
}

TEST_F(Sysint, DeviceListThatFailsSetsNoCount) {
    Entry("getConnectedDeviceList", "{\"error\": 7}");
    unsigned int count = 0;
    EXPECT_EQ(sys_getConnectedDeviceList(nullptr, &count), 7);
    EXPECT_EQ(count, 0U);
}

}  // namespace
