// The answers of the device while no call fails.
#include <algorithm>
#include <cstring>
#include <type_traits>

#include "platform/auth_session.h"
#include "platform/cgi_helper.h"
#include "platform/language_support.h"
#include "platform/maintenance_thread.h"
#include "platform/msgbus.h"
#include "platform/sysint.h"
#include "platform/sysint_queries.h"
#include "platform/watchdog.h"
#include "platform/webui.h"
#include "tests/faults/device.h"
#include "tests/support/records.h"

using recording::Call;

namespace {

void PutBytes(const Call& call, std::size_t output, std::span<const std::byte> bytes) {
    const std::span<std::byte> room = call.outputs[output];
    std::copy_n(bytes.begin(), std::min(bytes.size(), room.size()), room.begin());
}

template <typename T>
void Put(const Call& call, std::size_t output, const T& value) {
    PutBytes(call, output, std::as_bytes(std::span(&value, 1)));
}

/// A call with one output parameter.
template <typename T>
auto Giving(const T& value, int code = SYS_SUCCESS) {
    return [value, code](const Call& call) {
        Put(call, 0, value);
        return code;
    };
}

/// A call that returns a list: without a buffer the count, otherwise the records and their count.
template <typename Record, typename Count>
auto GivingList(std::vector<Record> records, Count count, int wanted, int code) {
    return [=](const Call& call) {
        Put(call, 1, count);
        if (call.outputs[0].empty()) {
            return wanted;
        }
        PutBytes(call, 0, std::as_bytes(std::span(records)));
        return code;
    };
}

/// A switch that is on, a number like any other, or an empty record.
template <typename T>
T Usual() {
    if constexpr (std::is_class_v<T>) {
        return {};
    } else {
        return static_cast<T>(1);
    }
}

int Succeed(const Call& /*call*/) {
    return 0;
}

}  // namespace

void Device::GiveSystem(Model model) {
    // Gives every query an answer. Queries whose values matter get another answer below.
#define GIVE_USUAL(Type, name, Meaning, field, description) \
    handlers["sys_" #name] = Giving(Usual<Type>());
    SYSINT_QUERIES(GIVE_USUAL)
#undef GIVE_USUAL
    handlers["sys_getMultiSimEnabled"] = Giving(model == Model::kFiveGWithTwoSims ? 1 : 0);
    handlers["sys_sdkInitialize"] = Succeed;
    handlers["sys_sdkShutdown"] = Succeed;
    handlers["sys_cellularDataConnect"] = Succeed;
    handlers["sys_cellularDataDisconnect"] = Succeed;
    handlers["sys_getWatchdogInterval"] = Giving(30);
    handlers["sys_getBatteryStatus"] = Giving(sys_battery_status_t{{}, 85, 1, 0, 2, 1});
    handlers["sys_getFotaInstallStatus"] = Giving(3);
    handlers["sys_getGPSStatus"] = Giving(2);
    handlers["sys_getSMSUnreadCount"] = Giving(4);
    handlers["sys_getSDCardInfo"] = Giving(sys_sd_card_info_t{1000, 400});
    handlers["sys_getSambaShareInfo"] = Giving(sys_samba_share_info_t{1, {}});
    handlers["sys_getWiFiMaxClients"] = Giving(32U);
    // Off at 2.4 GHz, so that the service asks for 5 GHz, too.
    handlers["sys_getWiFiGuestProfileEnabled"] = [](const Call& call) {
        Put(call, 0, call.arguments == "profile 2" ? 1 : 0);
        return 0;
    };
    std::vector<sys_connected_device_t> clients(4);
    for (std::size_t i = 0; i < clients.size(); ++i) {
        clients[i].connectionKind = static_cast<std::int32_t>(i);
    }
    handlers["sys_getConnectedDeviceList"] =
        GivingList(clients, 4U, SYS_ERROR_BUFFER_NEEDED, SYS_SUCCESS);
    GpioCustomSettings pin{};
    SetText(pin.name, "Door");
    SetText(pin.lowState, "closed");
    SetText(pin.highState, "open");
    handlers["sys_getGpioPin1CustomSettings"] = Giving(pin);
    handlers["sys_getGpioPin2CustomSettings"] = Giving(GpioCustomSettings{});
}

void Device::GiveCellular(Model model) {
    sys_cellular_service_stats_t service{};
    service.technology =
        model == Model::kFiveGWithTwoSims ? SYS_TECHNOLOGY_5G : SYS_TECHNOLOGY_UMTS;
    service.roaming = SYS_ROAMING_DOMESTIC;
    service.signalBars = 4;
    service.fiveGType = SYS_5G_ULTRA_WIDEBAND;
    SetText(service.networkName, "Orvane");
    SetText(service.networkId, "311480 home");
    handlers["sys_getCellularServiceStats"] = Giving(service);
    sys_cellular_data_connection_stats_t connection{};
    connection.bytesReceived1 = 1000;
    connection.bytesTransmitted2 = 500;
    handlers["sys_getCellularDataConnectionStats"] = Giving(connection);
    handlers["sys_getCellularServiceStatus"] = Giving<int>(SYS_SERVICE_AVAILABLE);
    handlers["sys_getCellularDataConnectionStatus"] = Giving<int>(SYS_DATA_CONNECTION_CONNECTED);
    handlers["sys_getCellularDataAccountStatus"] = Giving<int>(SYS_ACCOUNT_OUT_OF_CREDIT);
    handlers["sys_getEnabledRadioTechnologies"] = Giving(16);
    handlers["sys_getModemMnsInfo"] = [](const Call& call) {
        Put(call, 0, 1);
        Put(call, 1, 1);
        Put(call, 2, 2);
        return 0;
    };
    handlers["sys_getCellular3GBand"] = Giving(5);
    handlers["sys_getCellularBand"] = Giving(66);
    handlers["sys_getCellular5GBand"] = Giving(77);
    handlers["sys_getCellular5GMode"] = Giving(SYS_WAN_5G_NON_STANDALONE);
    handlers["sys_getCABandWidth"] = Giving(20);
    handlers["sys_get5GBandWidth"] = Giving(100);
}

void Device::GiveSims() {
    handlers["sys_getSIMStatus"] = Giving<int>(SYS_SIM_READY);
    sys_subscriber_info_t subscriber{};
    SetText(subscriber.identity, "310480123456789");
    handlers["sys_getSubscriberInfo"] = Giving(subscriber);
    // The carrier for which domestic roaming does not count as roaming.
    handlers["sys_getSIMCarrierGID"] = [](const Call& call) {
        Put<std::uint8_t>(call, 0, 2);
        Put<std::uint8_t>(call, 1, 1);
        return 0;
    };
    handlers["sys_getNetworkSIMLockStatus"] = Giving(sys_network_sim_lock_t{{}, 1, {}});
    handlers["sys_getSIMNetworkRejectCode"] = Giving(11);
    handlers["sys_getActiveSimSlot"] = Giving(2);
    handlers["sys_getNumSims"] = Giving(2);
    sys_all_sim_slots_t all{};
    all.count = 2;
    for (sys_sim_slot_t& slot : all.slots) {
        SetText(slot.networkName, "Velta");
        slot.simStatus = SYS_SIM_READY;
        slot.dataConnectionStatus = SYS_DATA_CONNECTION_CONNECTED;
        slot.serviceStatus = SYS_SERVICE_AVAILABLE;
    }
    all.slots[1].active = 1;
    handlers["sys_getAllSimSlotsInfo"] = Giving(all);
}

void Device::GiveWebUi() {
    handlers["webui_get_common_features"] =
        GivingList(std::vector{Feature("dualSim", 1), Feature("gpio", 2)}, 2, WEBUI_BUFFER_NEEDED,
                   WEBUI_SUCCESS);
    handlers["webui_get_common_configurations"] =
        GivingList(std::vector{Configuration("IsABPartitionEnabled", "1"),
                               Configuration("ShowRoamingIndicator", "1"),
                               Configuration("ShowNonOrvaneTechnologies", "0"),
                               Configuration("ShowWifiEthernetUSBTotalClients", "1")},
                   4, WEBUI_BUFFER_NEEDED, WEBUI_SUCCESS);
    handlers["webui_get_i18n_settings"] = Giving(Language("en_US"), WEBUI_SUCCESS);
    handlers["webui_get_uri_data"] = [](const Call& call) {
        webui_uri_data_t page{};
        SetText(page.address, "/" + call.arguments);
        SetText(page.titleId, "webui_" + call.arguments + "_page_title");
        Put(call, 0, page);
        return static_cast<int>(WEBUI_SUCCESS);
    };
    webui_software_update_status_t update{5, 1, 0, {}};
    SetText(update.version, "2.17.4");
    handlers["webui_get_software_update_status"] = Giving(update, WEBUI_SUCCESS);
    handlers["webui_get_software_installation_duration"] = Giving(12, WEBUI_SUCCESS);
    SoftwareUpdateCustomMessages messages{};
    SetText(messages.description, "An update from your carrier is ready. ");
    SetText(messages.installSuccess, "The carrier's update is installed.");
    handlers["webui_get_software_update_custom_msgs"] = Giving(messages, WEBUI_SUCCESS);
}

void Device::GiveNotifications() {
    std::vector<AnsNotificationRecord> records;
    // One notification for each kind of link and text, and one of a type that the service does not
    // know.
    for (const char* type :
         {"dataOff", "deviceJoinWiFi", "smsReceived", "data90", "uiccLaunchBrowser", "simPINLocked",
          "simNonQKT", "softwareUpdate", "softwareUpdateSuccess", "softwareUpdateFailure", "PCO5",
          "gpioPin1StateChangeToLow", "gpioPin2StateChangeToHigh", "unknown"}) {
        AnsNotificationRecord record = Notification(type);
        SetText(record.category, "messaging");
        SetText(record.labelId, "notification_category_messaging_label");
        SetText(record.titleId, "notification_sms_received_title");
        SetText(record.textId, "notification_sms_received_text");
        records.push_back(record);
    }
    records[3].flags = 0;
    const std::vector<std::byte> block = NotificationList(records);
    handlers["MsgbusHandler::GetData"] = GivingList(block, static_cast<unsigned int>(block.size()),
                                                    MSGBUS_BUFFER_NEEDED, MSGBUS_SUCCESS);
    handlers["MsgbusHandler::MsgbusHandler"] = Succeed;
    handlers["MsgbusHandler::Initialize"] = Succeed;
    handlers["MsgbusHandler::Uninitialize"] = Succeed;
}

void Device::GiveProcess() {
    for (const char* name :
         {"toru_dbg_start", "toru_dbg_stop", "LanguageSupport::SetTextDomainProperties",
          "MaintenanceThread::MaintenanceThread", "MaintenanceThread::Initialize",
          "MaintenanceThread::Run", "MaintenanceThread::Shutdown", "watchdog_application_register",
          "watchdog_application_send_keep_alive", "CgiHelper::GetInstance", "CgiHelper::SetHeader",
          "CgiHelper::GetIp", "CgiHelper::GetCookie", "AuthSession::AuthSession",
          "AuthSession::Init"}) {
        handlers[name] = Succeed;
    }
    handlers["AuthSession::LoggedOn"] = Giving(true);
    handlers["GetIPAddressFamily"] = [](const Call& call) { return call.unscripted; };
    handlers["CgiHelper::SendResponse"] = [this](const Call& call) {
        Exchange& exchange = exchanges.back();
        ++exchange.responses;
        exchange.status = std::atoi(call.arguments.c_str());
        return 0;
    };
}
