#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/sysint.h"
#include "tests/support/translations.h"
#include "tests/unit/components/status/status_group_test.h"

/// A device whose internet group can be read. The SIM is not ready, so that the band texts need few
/// calls.
class InternetStatusTest : public StatusGroupTest {
  protected:
    void SetUp() override {
        StatusGroupTest::SetUp();
        translations::Reset();
        SetText(service.networkName, "Orvane");
        SetText(service.networkId, "311480");
        service.technology = SYS_TECHNOLOGY_LTE;
        service.signalBars = 4;
        service.sinr = 18;
        service.pci = 211;
        service.snr = 17;
        connection.trafficStatus = SYS_TRAFFIC_BOTH;
        connection.duration = 5421;
        connection.bytesReceived1 = 1000;
        connection.bytesTransmitted1 = 200;
        connection.bytesReceived2 = 30;
        connection.bytesTransmitted2 = 4;
    }

    /// Scripts the device's answers. Answers that the test itself has scripted take precedence.
    void GivenDevice() const {
        recording::Given("sys_getCellularServiceStats").Writes(service);
        recording::Given("sys_getCellularDataConnectionStats").Writes(connection);
        recording::Given("sys_getRadioEnabled").Writes(radioEnabled);
        recording::Given("sys_getCellularServiceStatus").Writes(serviceStatus);
        recording::Given("sys_getCellularDataConnectionStatus").Writes(dataConnectionStatus);
        recording::Given("sys_getCellularDataAccountStatus").Writes(accountStatus);
        if (simStatus) {
            recording::Given("sys_getSIMStatus").Writes(*simStatus);
        }
        sys_subscriber_info_t subscriber{};
        SetText(subscriber.identity, "310480123456789");
        recording::Given("sys_getSubscriberInfo").Writes(subscriber);
        recording::Given("sys_getSIMCarrierGID").Writes(gid).Writes<std::uint8_t>(1);
    }

    std::string Json() {
        GivenDevice();
        component->GetInternetStatus(statusData);
        return ToJson(statusData);
    }

    /// What the group writes under @p key; "(absent)" if it does not write the key.
    std::string ValueOf(const std::string& key) {
        statusData = CTPP::CDT(CTPP::CDT::HASH_VAL);
        Json();
        return Value(key);
    }

    /// Makes the component read that @p slot is in use.
    void Activate(int slot) {
        recording::Given("sys_getActiveSimSlot").Writes(slot);
        CTPP::CDT other(CTPP::CDT::HASH_VAL);
        component->GetDualSimStatus(other);
        recording::Reset();
    }

    sys_cellular_service_stats_t service{};
    sys_cellular_data_connection_stats_t connection{};
    int radioEnabled = 1;
    int serviceStatus = SYS_SERVICE_AVAILABLE;
    int dataConnectionStatus = SYS_DATA_CONNECTION_CONNECTED;
    int accountStatus = 0;
    std::uint8_t gid = 186;
    /// The SIM status, which both band texts read; nullopt if the test scripts it itself.
    std::optional<int> simStatus = SYS_SIM_NOT_FOUND;
};
