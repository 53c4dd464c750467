// What the document may say about the cellular connection and the SIMs.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "platform/sysint.h"
#include "tests/unit/bindings/document/document_reading.h"

namespace {

TEST(CellularDocument, ConnectionStatisticsAreUnsignedCounters) {
    const auto stats = Read(R"({"sys": {"getCellularDataConnectionStats": {
        "trafficStatus": 3, "duration": 18446744073709551615, "bytesReceived1": 1,
        "bytesTransmitted1": 2, "bytesReceived2": 3, "bytesTransmitted2": 4}}})")
                           .getCellularDataConnectionStats.value;
    EXPECT_EQ(stats.trafficStatus, SYS_TRAFFIC_BOTH);
    EXPECT_EQ(stats.duration, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(stats.bytesReceived1, 1U);
    EXPECT_EQ(stats.bytesTransmitted1, 2U);
    EXPECT_EQ(stats.bytesReceived2, 3U);
    EXPECT_EQ(stats.bytesTransmitted2, 4U);
    EXPECT_EQ(SysComplaint("getCellularDataConnectionStats", "{\"duration\": -1}"),
              "device.json:3: sys.getCellularDataConnectionStats.duration: expected an unsigned "
              "64-bit integer, found -1");
    EXPECT_EQ(SysComplaint("getCellularDataConnectionStats", "{\"bytes\": 1}"),
              "device.json:3: sys.getCellularDataConnectionStats.bytes: expected one of "
              "trafficStatus, duration, bytesReceived1, bytesTransmitted1, bytesReceived2, "
              "bytesTransmitted2, found an unknown name");
}

TEST(CellularDocument, NetworkSelectionHasThreeValues) {
    const auto info = Read(R"({"sys": {"getModemMnsInfo": {
        "allowed": 1, "selected": 2, "scanStatus": -3}}})")
                          .getModemMnsInfo.value;
    EXPECT_EQ(info.allowed, 1);
    EXPECT_EQ(info.selected, 2);
    EXPECT_EQ(info.scanStatus, -3);
    EXPECT_EQ(Read(R"({"sys": {"getModemMnsInfo": {"error": 6}}})").getModemMnsInfo.error, 6);
    EXPECT_EQ(SysComplaint("getModemMnsInfo", "{\"scan\": 1}"),
              "device.json:3: sys.getModemMnsInfo.scan: expected one of allowed, selected, "
              "scanStatus, found an unknown name");
    EXPECT_EQ(SysComplaint("getModemMnsInfo", "[1, 0, 0]"),
              "device.json:3: sys.getModemMnsInfo: expected an object or {\"error\": N}, found a "
              "list");
}

TEST(CellularDocument, SubscriberHasAnIdentity) {
    EXPECT_STREQ(Read(R"({"sys": {"getSubscriberInfo": {"identity": "310480123456789"}}})")
                     .getSubscriberInfo.value.identity,
                 "310480123456789");
    EXPECT_EQ(SysComplaint("getSubscriberInfo", "{\"identity\": \"" + std::string(31, '7') + "\"}"),
              "");
    EXPECT_EQ(SysComplaint("getSubscriberInfo", "{\"identity\": \"" + std::string(32, '7') + "\"}"),
              "device.json:3: sys.getSubscriberInfo.identity: expected a text of at most 31 bytes, "
              "found one of 32 bytes");
    EXPECT_EQ(SysComplaint("getSubscriberInfo", "\"310480123456789\""),
              "device.json:3: sys.getSubscriberInfo: expected an object or {\"error\": N}, found a "
              "text");
}

TEST(CellularDocument, LockHasTheCarriersBlock) {
    EXPECT_EQ(Read(R"({"sys": {"getNetworkSIMLockStatus": {"carrierBlocked": -5}}})")
                  .getNetworkSIMLockStatus.value.carrierBlocked,
              -5);
    EXPECT_EQ(SysComplaint("getNetworkSIMLockStatus", "1"),
              "device.json:3: sys.getNetworkSIMLockStatus: expected an object or {\"error\": N}, "
              "found 1");
}

TEST(CellularDocument, SlotsAreAListWhoseLengthIsTheCount) {
    const auto all = Read(R"({"sys": {"getAllSimSlotsInfo": {"slots": [{}, {
        "networkName": "Velta Mobil", "active": 1, "simStatus": 7, "dataConnectionStatus": 2,
        "serviceStatus": 3}]}}})")
                         .getAllSimSlotsInfo.value;
    EXPECT_EQ(all.count, 2);
    EXPECT_EQ(all.slots[0].simStatus, SYS_SIM_NOT_FOUND);
    EXPECT_STREQ(all.slots[1].networkName, "Velta Mobil");
    EXPECT_EQ(all.slots[1].active, 1);
    EXPECT_EQ(all.slots[1].simStatus, 7);
    EXPECT_EQ(all.slots[1].dataConnectionStatus, 2);
    EXPECT_EQ(all.slots[1].serviceStatus, 3);
    EXPECT_EQ(Read(R"({"sys": {"getAllSimSlotsInfo": {}}})").getAllSimSlotsInfo.value.count, 0);
}

TEST(CellularDocument, CountOfSlotsMayDifferFromTheList) {
    for (const int count : {-1, 0, 3, std::numeric_limits<std::int32_t>::max()}) {
        const std::string value = std::to_string(count);
        for (const std::string& members : {"\"slots\": [{}], \"count\": " + value,
                                           "\"count\": " + value + ", \"slots\": [{}]"}) {
            EXPECT_EQ(Read(R"({"sys": {"getAllSimSlotsInfo": {)" + members + "}}}")
                          .getAllSimSlotsInfo.value.count,
                      count);
        }
    }
}

TEST(CellularDocument, ThereIsRoomForTwoSlots) {
    EXPECT_EQ(SysComplaint("getAllSimSlotsInfo", "{\n\"slots\": [{}, {}, {}]}"),
              "device.json:4: sys.getAllSimSlotsInfo.slots: expected a list of at most 2 slots, "
              "found one of 3");
    EXPECT_EQ(SysComplaint("getAllSimSlotsInfo", "{\"slots\": {}}"),
              "device.json:3: sys.getAllSimSlotsInfo.slots: expected a list, found an object");
    EXPECT_EQ(SysComplaint("getAllSimSlotsInfo", "[]"),
              "device.json:3: sys.getAllSimSlotsInfo: expected an object or {\"error\": N}, found "
              "a list");
    EXPECT_EQ(SysComplaint("getAllSimSlotsInfo", "{\"sims\": []}"),
              "device.json:3: sys.getAllSimSlotsInfo.sims: expected one of slots, count, found an "
              "unknown name");
}

TEST(CellularDocument, SlotsHaveNamedFields) {
    const auto withSlot = [](const std::string& slot) {
        return "{\"slots\": [{},\n" + slot + "]}";
    };
    EXPECT_EQ(SysComplaint("getAllSimSlotsInfo", withSlot("{\"status\": 7}")),
              "device.json:4: sys.getAllSimSlotsInfo.slots[1].status: expected one of networkName, "
              "active, simStatus, dataConnectionStatus, serviceStatus, found an unknown name");
    EXPECT_EQ(SysComplaint("getAllSimSlotsInfo", withSlot("{\"active\": true}")),
              "device.json:4: sys.getAllSimSlotsInfo.slots[1].active: expected a 32-bit integer, "
              "found true");
    const auto withName = [](std::size_t size) {
        return "{\"networkName\": \"" + std::string(size, 'n') + "\"}";
    };
    EXPECT_EQ(SysComplaint("getAllSimSlotsInfo", withSlot(withName(76))), "");
    EXPECT_EQ(SysComplaint("getAllSimSlotsInfo", withSlot(withName(77))),
              "device.json:4: sys.getAllSimSlotsInfo.slots[1].networkName: expected a text of at "
              "most 76 bytes, found one of 77 bytes");
}

}  // namespace
