// What requests see of the board between two publications.
#include "bindings/linux/snapshots.h"

#include <gtest/gtest.h>

#include <utility>

#include "bindings/device/codes.h"
#include "bindings/linux/absent_device.h"
#include "bindings/linux/source.h"

namespace {

using binding::DataOutlook;
using binding::DataRequest;
using binding::Device;
using binding::Snapshots;

/// A modem whose second SIM is in use.
Device Ready() {
    Device device = binding::AbsentDevice();
    binding::Tell(device.getCellularDataConnectionStatus, SYS_DATA_CONNECTION_READY);
    auto& all = device.getAllSimSlotsInfo.value;
    all.count = 2;
    all.slots[1].active = 1;
    return device;
}

class DataCallInSnapshots : public ::testing::Test {
  protected:
    void Publish(DataOutlook outlook = {.readiness = SYS_SUCCESS,
                                        .afterConnect = SYS_DATA_CONNECTION_CONNECTING,
                                        .afterDisconnect = SYS_DATA_CONNECTION_READY},
                 Device device = Ready()) {
        snapshots.Publish(std::move(device), {.document = document,
                                              .outlook = outlook,
                                              .connection = connection,
                                              .isComplete = true,
                                              .isWhole = true,
                                              .finish = {}});
    }

    int Status() { return snapshots.Newest().device->getCellularDataConnectionStatus.value; }

    Device document;
    std::optional<binding::TrafficMeter::Connection> connection;
    Snapshots snapshots{std::chrono::hours(1)};
};

TEST_F(DataCallInSnapshots, RequestIsToldFromTheMomentItIsAccepted) {
    Publish();
    const auto before = snapshots.Newest().device;
    EXPECT_EQ(snapshots.Ask(DataRequest::connect), SYS_SUCCESS);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_CONNECTING);
    const auto& all = snapshots.Newest().device->getAllSimSlotsInfo.value;
    EXPECT_EQ(all.slots[0].dataConnectionStatus, SYS_DATA_CONNECTION_READY);
    EXPECT_EQ(all.slots[1].dataConnectionStatus, SYS_DATA_CONNECTION_CONNECTING);
    EXPECT_EQ(before->getCellularDataConnectionStatus.value, SYS_DATA_CONNECTION_READY);
}

TEST_F(DataCallInSnapshots, SnapshotThatIsPublishedBeforeTheRequestIsTakenTellsItToo) {
    Publish();
    snapshots.Ask(DataRequest::connect);
    Publish();
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_CONNECTING);
    EXPECT_EQ(snapshots.TakeRequest(), DataRequest::connect);
    // From now on, who has taken it tells how far it is.
    Publish();
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_READY);
}

TEST_F(DataCallInSnapshots, LastOfTheRequestsThatHaveNotBeenTakenCounts) {
    Publish();
    snapshots.Ask(DataRequest::connect);
    snapshots.Ask(DataRequest::disconnect);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_READY);
    EXPECT_EQ(snapshots.TakeRequest(), DataRequest::disconnect);
    EXPECT_EQ(snapshots.TakeRequest(), std::nullopt);
}

TEST_F(DataCallInSnapshots, RequestAfterOneThatHasJustBeenTakenIsUnderWay) {
    Publish();
    snapshots.Ask(DataRequest::connect);
    (void)snapshots.TakeRequest();
    snapshots.Ask(DataRequest::disconnect);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_DISCONNECTING);
}

TEST_F(DataCallInSnapshots, RequestFailsAndChangesNothingWithoutAnythingToConnect) {
    Publish({binding::kNothingToConnect});
    EXPECT_EQ(snapshots.Ask(DataRequest::connect), binding::kNothingToConnect);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_READY);
    EXPECT_EQ(snapshots.TakeRequest(), std::nullopt);
}

TEST_F(DataCallInSnapshots, RequestWhoseModemGoesAwayIsNotToldAnyMore) {
    Publish();
    snapshots.Ask(DataRequest::connect);
    Publish({binding::kNothingToConnect});
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_READY);
}

TEST_F(DataCallInSnapshots, RequestDoesNotChangeWhatTheDocumentSays) {
    binding::Tell(document.getCellularDataConnectionStatus, SYS_DATA_CONNECTION_DORMANT);
    Publish();
    snapshots.Ask(DataRequest::connect);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_DORMANT);
    Publish();
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_DORMANT);
}

TEST_F(DataCallInSnapshots, TrafficOfAForcedAnswerIsNotCounted) {
    connection.emplace();
    connection->interface = "lo";
    binding::Tell(document.getCellularDataConnectionStats, sys_cellular_data_connection_stats_t{});
    connection->since = std::chrono::steady_clock::now() - std::chrono::seconds(90);
    Publish();
    EXPECT_EQ(snapshots.Newest().device->getCellularDataConnectionStats.value.duration, 0U);
    document = {};
    Publish();
    EXPECT_GE(snapshots.Newest().device->getCellularDataConnectionStats.value.duration, 90U);
}

}  // namespace
