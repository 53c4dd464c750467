#include <limits>
#include <vector>

#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kRouter = " - void StatusComponent::GetRouterStatus(CTPP::CDT&)";
const std::string kList = "sys_getConnectedDeviceList";

std::vector<sys_connected_device_t> Devices(const std::vector<std::int32_t>& kinds) {
    std::vector<sys_connected_device_t> devices(kinds.size());
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        devices[i].connectionKind = kinds[i];
    }
    return devices;
}

class ClientsStatusTest : public StatusGroupTest {
  protected:
    /// The call first asks for room for @p room devices, then delivers devices of @p kinds and says
    /// that there are @p count.
    static void GivenDevices(unsigned int room, const std::vector<std::int32_t>& kinds,
                             unsigned int count) {
        Given(kList).Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(room);
        Given(kList).WritesRecords(Devices(kinds)).Writes(count);
    }

    static void GivenDevices(const std::vector<std::int32_t>& kinds) {
        const auto count = static_cast<unsigned int>(kinds.size());
        GivenDevices(count, kinds, count);
    }

    std::string Json() {
        component->GetRouterStatus(statusData);
        return ToJson(statusData);
    }

    static std::string Counts(const std::string& all, const std::string& wifi,
                              const std::string& guest, const std::string& primary) {
        return R"({"statusBarClientListSize":")" + all + R"(","statusBarGuestClientListSize":")" +
               guest + R"(","statusBarPrimaryClientListSize":")" + primary +
               R"(","statusBarWiFiClientListSize":")" + wifi + R"("})";
    }
};

TEST_F(ClientsStatusTest, ClientsAreCountedByKind) {
    GivenDevices({0, 1, 2, 3, 3});
    EXPECT_EQ(Json(), Counts("5", "1", "2", "3"));
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kRouter + " - BEGIN"), "sys_getConnectedDeviceList(no buffer)",
                     "sys_getConnectedDeviceList(room for 5)", Log(7, kRouter + " - END")}));
}

TEST_F(ClientsStatusTest, WiredClientsCountAsWifiWhereTheConfigurationSaysOne) {
    Configure("ShowWifiEthernetUSBTotalClients", "1");
    GivenDevices({0, 1, 2, 3, 3});
    EXPECT_EQ(Json(), Counts("5", "3", "2", "3"));
}

TEST_F(ClientsStatusTest, WiredClientsAreTakenOffWhereTheConfigurationSaysAnythingElse) {
    for (const char* value : {"0", "2", "-1", "", "true", "1x"}) {
        Configure("ShowWifiEthernetUSBTotalClients", value);
        GivenDevices({0, 1, 2, 3, 3});
        EXPECT_EQ(Json(), Counts("5", "1", "2", "3")) << value;
    }
}

TEST_F(ClientsStatusTest, WiredClientsAreTakenOffWhereTheConfigurationLacksTheValue) {
    Configure("IsABPartitionEnabled", "1");
    GivenDevices({0, 1, 2, 3, 3});
    EXPECT_EQ(Json(), Counts("5", "1", "2", "3"));
}

TEST_F(ClientsStatusTest, UnknownKindsArePrimaryWifiClients) {
    GivenDevices({4, -1, 0, std::numeric_limits<std::int32_t>::max()});
    EXPECT_EQ(Json(), Counts("4", "4", "0", "4"));
}

TEST_F(ClientsStatusTest, OnlyWiredClientsLeaveNoWifiClients) {
    GivenDevices({1, 2, 1});
    EXPECT_EQ(Json(), Counts("3", "0", "0", "3"));
}

TEST_F(ClientsStatusTest, NoDevicesAreFourZeros) {
    Given(kList).Returns(SYS_SUCCESS);
    EXPECT_EQ(Json(), Counts("0", "0", "0", "0"));
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kRouter + " - BEGIN"), "sys_getConnectedDeviceList(no buffer)",
                     Log(7, kRouter + " - END")}));
}

TEST_F(ClientsStatusTest, BufferForNoDevicesIsNotAskedForAndWritesNothing) {
    Given(kList).Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(0U);
    EXPECT_EQ(Json(), "{}");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kRouter + " - BEGIN"), "sys_getConnectedDeviceList(no buffer)",
                     Log(7, kRouter + " - END")}));
}

TEST_F(ClientsStatusTest, CountThatTheFirstCallDoesNotWriteIsZero) {
    Given(kList).Returns(SYS_ERROR_BUFFER_NEEDED);
    EXPECT_EQ(Json(), "{}");
    EXPECT_EQ(TranscriptText("sys_"), Steps({"sys_getConnectedDeviceList(no buffer)"}));
}

TEST_F(ClientsStatusTest, FailureOfTheFirstCallIsSilentAndWritesNothing) {
    for (const int code : {1, 8, 2001, -1}) {
        recording::Reset();
        Given(kList).Returns(code).WritesNothing().Writes(3U);
        EXPECT_EQ(Json(), "{}") << code;
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kRouter + " - BEGIN"), "sys_getConnectedDeviceList(no buffer)",
                         Log(7, kRouter + " - END")}))
            << code;
    }
}

TEST_F(ClientsStatusTest, FailureOfTheSecondCallIsLoggedAndWritesNothing) {
    Given(kList).Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(2U);
    Given(kList).Returns(13).WritesRecords(Devices({0, 3})).Writes(2U);
    EXPECT_EQ(Json(), "{}");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kRouter + " - BEGIN"), "sys_getConnectedDeviceList(no buffer)",
                     "sys_getConnectedDeviceList(room for 2)",
                     Failure(kRouter +
                             " - sys_getConnectedDeviceList failed, returned error code [13]. Try "
                             "sysintcli getConnectedDeviceList from command line."),
                     Log(7, kRouter + " - END")}));
}

TEST_F(ClientsStatusTest, ListThatGrewBeyondItsRoomIsNotAskedForAThirdTime) {
    Given(kList).Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(2U);
    Given(kList).Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(3U);
    EXPECT_EQ(Json(), "{}");
    EXPECT_EQ(recording::CallCount(kList), 2U);
    EXPECT_NE(TranscriptText("log 3"), "");
}

TEST_F(ClientsStatusTest, ListThatShrankCountsWhatIsLeft) {
    GivenDevices(5, {0, 3}, 2);
    EXPECT_EQ(Json(), Counts("2", "1", "1", "1"));
}

TEST_F(ClientsStatusTest, ListThatBecameEmptyIsFourZeros) {
    GivenDevices(5, {}, 0);
    EXPECT_EQ(Json(), Counts("0", "0", "0", "0"));
}

TEST_F(ClientsStatusTest, MoreDevicesThanThereWasRoomForAreNumberedButOnlyThoseInTheBufferCounted) {
    GivenDevices(2, {1, 3}, std::numeric_limits<unsigned int>::max());
    EXPECT_EQ(Json(), Counts("4294967295", "0", "1", "1"));
}

TEST_F(ClientsStatusTest, MoreDevicesThanMemoryHoldsWriteAndLogNothing) {
    for (const unsigned int count : {5'000'000U, std::numeric_limits<unsigned int>::max()}) {
        recording::Reset();
        Given(kList).Returns(SYS_ERROR_BUFFER_NEEDED).WritesNothing().Writes(count);
        EXPECT_EQ(Json(), "{}") << count;
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kRouter + " - BEGIN"), "sys_getConnectedDeviceList(no buffer)",
                         Log(7, kRouter + " - END")}))
            << count;
    }
}

TEST_F(ClientsStatusTest, WholeNetworkOfDevicesIsCounted) {
    GivenDevices(std::vector<std::int32_t>(65536, SYS_CONNECTION_GUEST_WIFI));
    EXPECT_EQ(Json(), Counts("65536", "0", "65536", "0"));
}

}  // namespace
