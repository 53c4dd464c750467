#include "tools/sysint_commands.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>

#include "platform/fixed_text.h"
#include "platform/sysint.h"
#include "tools/json_output.h"
#include "tools/list_reading.h"

namespace {

void CheckSys(const std::string& call, int code) {
    Check(call, code, SYS_SUCCESS);
}

/// One round of calls.
class SdkRound {
  public:
    SdkRound() { CheckSys("sys_sdkInitialize", sys_sdkInitialize()); }
    ~SdkRound() {
        if (open) {
            (void)sys_sdkShutdown();
        }
    }
    SdkRound(const SdkRound&) = delete;
    SdkRound& operator=(const SdkRound&) = delete;

    void End() {
        open = false;
        CheckSys("sys_sdkShutdown", sys_sdkShutdown());
    }

  private:
    bool open = true;
};

using Names = std::vector<std::string>;
using Parameters = std::vector<Parameter>;

/// The call of a command: it fills the answer and returns its code.
using Call = std::function<int(const Arguments&, Json&)>;

/// A command that runs @p call in a round of its own. The name of the call is the command's first
/// one behind "sys_".
Command InRound(Names names, std::string description, Parameters parameters, Call call) {
    const std::string callName = "sys_" + names.front();
    return {
        .names = std::move(names),
        .description = std::move(description),
        .parameters = std::move(parameters),
        .run = [callName, call = std::move(call)](const Arguments& arguments, std::ostream& out) {
            SdkRound round;
            Json answer;
            CheckSys(callName, call(arguments, answer));
            if (!answer.is_null()) {
                WriteJson(out, answer);
            }
            round.End();
        }};
}

/// A query whose only parameter is its result, which @p describe turns into the answer.
template <typename T, typename Description>
Command Query(Names names, std::string description, int (*call)(T*), Description describe) {
    return InRound(std::move(names), std::move(description), {},
                   [call, describe](const Arguments& /*arguments*/, Json& answer) {
                       T value{};
                       const int code = call(&value);
                       answer = describe(value);
                       return code;
                   });
}

/// A query for a number by the name of something.
Command QueryByName(std::string name, std::string description, Parameter parameter,
                    int (*call)(const char*, int*), const char* field) {
    return InRound({std::move(name)}, std::move(description), {parameter},
                   [call, field](const Arguments& arguments, Json& answer) {
                       int value = 0;
                       const int code = call(arguments.Text(0), &value);
                       answer = Json::object({{field, value}});
                       return code;
                   });
}

/// A call that does something and answers nothing.
Command Action(std::string name, std::string description, int (*call)(int)) {
    return InRound({std::move(name)}, std::move(description), {},
                   [call](const Arguments& /*arguments*/, Json& /*answer*/) { return call(0); });
}

/// Describes a number by the name @p field.
auto As(const char* field) {
    return [field](auto value) { return Json::object({{field, value}}); };
}

/// Describes a number of an enumeration by the name @p field.
auto As(const char* field, Enumeration names) {
    return [field, names](auto value) { return Json::object({{field, Named(value, names)}}); };
}

Json ServiceStats(const sys_cellular_service_stats_t& stats) {
    return Json::object({{"technology", Named(stats.technology, kTechnology)},
                         {"roaming", Named(stats.roaming, kRoaming)},
                         {"signalBars", stats.signalBars},
                         {"sinr", stats.sinr},
                         {"pci", stats.pci},
                         {"snr", stats.snr},
                         {"networkName", FixedText(stats.networkName)},
                         {"networkId", FixedText(stats.networkId)},
                         {"femtoCell", stats.femtoCell},
                         {"fiveGType", Named(stats.fiveGType, kFiveGType)}});
}

Json ConnectionStats(const sys_cellular_data_connection_stats_t& stats) {
    return Json::object({{"trafficStatus", Named(stats.trafficStatus, kTrafficStatus)},
                         {"duration", stats.duration},
                         {"bytesReceived1", stats.bytesReceived1},
                         {"bytesTransmitted1", stats.bytesTransmitted1},
                         {"bytesReceived2", stats.bytesReceived2},
                         {"bytesTransmitted2", stats.bytesTransmitted2}});
}

Json Subscriber(const sys_subscriber_info_t& info) {
    return Json::object({{"identity", FixedText(info.identity)}});
}

Json NetworkLock(const sys_network_sim_lock_t& lock) {
    return Json::object({{"carrierBlocked", lock.carrierBlocked}});
}

Json SimSlots(const sys_all_sim_slots_t& all) {
    const std::span<const sys_sim_slot_t> slots = all.slots;
    const auto valid = static_cast<std::size_t>(std::max(all.count, 0));
    Json list = Json::array();
    for (const sys_sim_slot_t& slot : slots.first(std::min(valid, slots.size()))) {
        list.push_back(Json::object(
            {{"networkName", FixedText(slot.networkName)},
             {"active", slot.active},
             {"simStatus", Named(slot.simStatus, kSimStatus)},
             {"dataConnectionStatus", Named(slot.dataConnectionStatus, kDataConnectionStatus)},
             {"serviceStatus", Named(slot.serviceStatus, kServiceStatus)}}));
    }
    return Json::object({{"count", all.count}, {"slots", list}});
}

Json PinSettings(const GpioCustomSettings& settings) {
    return Json::object({{"name", FixedText(settings.name)},
                         {"lowState", FixedText(settings.lowState)},
                         {"highState", FixedText(settings.highState)}});
}

Json CardInfo(const sys_sd_card_info_t& info) {
    return Json::object({{"totalCapacity", info.totalCapacity}, {"freeSpace", info.freeSpace}});
}

Json ShareInfo(const sys_samba_share_info_t& info) {
    return Json::object({{"cardInUse", info.cardInUse}});
}

Json Battery(const sys_battery_status_t& status) {
    return Json::object({{"chargePercent", status.chargePercent},
                         {"chargingState", status.chargingState},
                         {"detection", Named(status.detection, kBatteryDetection)},
                         {"chargingSource", Named(status.chargingSource, kChargingSource)}});
}

int NetworkSelection(const Arguments& /*arguments*/, Json& answer) {
    int allowed = 0;
    int selected = 0;
    int scanStatus = 0;
    const int code = sys_getModemMnsInfo(&allowed, &selected, &scanStatus);
    answer =
        Json::object({{"allowed", allowed}, {"selected", selected}, {"scanStatus", scanStatus}});
    return code;
}

int NrBand(const Arguments& /*arguments*/, Json& answer) {
    int band = 0;
    int second = 0;
    const int code = sys_getCellular5GBand(&band, &second);
    answer = Json::object({{"band", band}, {"second", second}});
    return code;
}

int GroupIdentifier(const Arguments& arguments, Json& answer) {
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{};
    std::uint8_t length = 0;
    const auto index = static_cast<std::uint8_t>(arguments.Number(0));
    const int code = sys_getSIMCarrierGID(gid.data(), &length, index);
    answer = Json::object({{"length", length}, {"gid", HexText(std::span(gid).first(length))}});
    return code;
}

int GuestProfile(const Arguments& arguments, Json& answer) {
    int enabled = 0;
    const int code =
        sys_getWiFiGuestProfileEnabled(static_cast<int>(arguments.Number(0)), &enabled);
    answer = Json::object({{"enabled", enabled}});
    return code;
}

int ConnectedDevices(const Arguments& /*arguments*/, Json& answer) {
    const auto devices = ReadList<sys_connected_device_t, unsigned int>(
        "sys_getConnectedDeviceList", SYS_SUCCESS, SYS_ERROR_BUFFER_NEEDED,
        sys_getConnectedDeviceList);
    Json list = Json::array();
    for (const sys_connected_device_t& device : devices) {
        list.push_back(
            Json::object({{"connectionKind", Named(device.connectionKind, kConnectionKind)}}));
    }
    answer = Json::object({{"devices", list}});
    return SYS_SUCCESS;
}

constexpr Parameter kField = {"FIELD", "Name of an input field of the web UI"};
constexpr Parameter kApp = {"APP", "Name of an application of the web UI"};
constexpr Parameter kIndex = {"INDEX", "Number of the group identifier", {{0, 255}}};
constexpr Parameter kProfile = {
    "PROFILE", "1 for 2.4 GHz, 2 for 5 GHz", {{SYS_WIFI_GUEST_2_4_GHZ, SYS_WIFI_GUEST_5_GHZ}}};

std::vector<Command> Commands() {
    return {
        Query({"getWebUICarrierEnabled"}, "Whether the carrier enables the web UI",
              sys_getWebUICarrierEnabled, As("enabled")),
        Query({"getSambaCarrierEnabled"}, "Whether the carrier enables file sharing",
              sys_getSambaCarrierEnabled, As("enabled")),
        Query({"getGPSCarrierEnabled"}, "Whether the carrier enables GPS", sys_getGPSCarrierEnabled,
              As("enabled")),
        Query({"getMTSMSCarrierEnabled"}, "Whether the carrier enables mobile-terminated SMS",
              sys_getMTSMSCarrierEnabled, As("enabled")),
        Query({"getWiFiCarrierEnabled"}, "Whether the carrier enables Wi-Fi",
              sys_getWiFiCarrierEnabled, As("enabled")),
        Query({"getWiFiGuestCarrierEnabled"}, "Whether the carrier enables guest Wi-Fi",
              sys_getWiFiGuestCarrierEnabled, As("enabled")),
        Query({"getPCOCarrierEnabled"},
              "Whether the carrier enables the account status in protocol configuration options",
              sys_getPCOCarrierEnabled, As("enabled")),
        Query({"getNUACarrierEnabled"}, "Whether the carrier enables the NUA software-update agent",
              sys_getNUACarrierEnabled, As("enabled")),
        Query({"getOmadmFumoCarrierEnabled"}, "Whether the carrier enables OMA-DM firmware update",
              sys_getOmadmFumoCarrierEnabled, As("enabled")),
        Query({"getMultiSimEnabled"}, "Whether the device runs with more than one SIM",
              sys_getMultiSimEnabled, As("enabled")),
        Query({"getWDCPCarrierEnabled"}, "Whether the carrier enables the WDCP agent",
              sys_getWDCPCarrierEnabled, As("enabled")),
        Query({"getHalyardAgentCarrierEnabled"}, "Whether the carrier enables the Halyard agent",
              sys_getHalyardAgentCarrierEnabled, As("enabled")),

        QueryByName("getUIFieldShowEnabled", "Whether an input field is shown", kField,
                    sys_getUIFieldShowEnabled, "show"),
        QueryByName("getUIFieldLockEnabled", "Whether an input field is read-only", kField,
                    sys_getUIFieldLockEnabled, "locked"),
        QueryByName("getUIAppDisplayEnabled", "Display setting of an application", kApp,
                    sys_getUIAppDisplayEnabled, "display"),
        QueryByName("getUIAppWriteEnabled", "Write setting of an application", kApp,
                    sys_getUIAppWriteEnabled, "write"),

        Query({"getWatchdogInterval"}, "Seconds between two keep-alive messages to the watchdog",
              sys_getWatchdogInterval, As("interval")),

        Action("cellularDataConnect", "Start the data call", sys_cellularDataConnect),
        Action("cellularDataDisconnect", "Stop the data call", sys_cellularDataDisconnect),
        Query({"getCellularDataEnabled"}, "Whether the user has switched cellular data on",
              sys_getCellularDataEnabled, As("enabled")),
        Query({"getCellularDataConnectionStatus"}, "State of the data call",
              sys_getCellularDataConnectionStatus, As("status", kDataConnectionStatus)),
        Query({"getCellularServiceStats"}, "Network, technology and signal of the cellular service",
              sys_getCellularServiceStats, ServiceStats),
        Query({"getCellularDataConnectionStats"}, "Duration and traffic of the data call",
              sys_getCellularDataConnectionStats, ConnectionStats),
        Query({"getRadioEnabled"}, "1 with the radio on, 0 in airplane mode", sys_getRadioEnabled,
              As("enabled")),
        Query({"getCellularServiceStatus"}, "Registration with the cellular network",
              sys_getCellularServiceStatus, As("status", kServiceStatus)),
        Query({"getCellularDataAccountStatus"}, "What the carrier says of the account",
              sys_getCellularDataAccountStatus, As("status", kAccountStatus)),
        Query({"getEnabledRadioTechnologies"},
              "Radio technologies that the user has enabled, as a bit mask",
              sys_getEnabledRadioTechnologies, As("technologies")),
        InRound({"getModemMnsInfo", "getMnsInfo"}, "State of the manual network selection", {},
                NetworkSelection),

        Query({"getSIMStatus"}, "State of the SIM in use", sys_getSIMStatus,
              As("status", kSimStatus)),
        InRound({"getSIMCarrierGID"}, "A group identifier of the SIM, in hexadecimal", {kIndex},
                GroupIdentifier),
        Query({"getSubscriberInfo"}, "Identity of the subscriber", sys_getSubscriberInfo,
              Subscriber),
        Query({"getNetworkSIMLockStatus"}, "Whether the carrier blocks the SIM",
              sys_getNetworkSIMLockStatus, NetworkLock),
        Query({"getSIMNetworkRejectCode"}, "Code of the network's last reject, 0 without one",
              sys_getSIMNetworkRejectCode, As("code")),
        Query({"getActiveSimSlot"}, "Number of the slot whose SIM is in use, from 1",
              sys_getActiveSimSlot, As("slot")),
        Query({"getNumSims"}, "Number of SIMs", sys_getNumSims, As("count")),
        Query({"getAllSimSlotsInfo"}, "All SIM slots", sys_getAllSimSlotsInfo, SimSlots),

        Query({"getCellular3GBand"}, "3G band in use", sys_getCellular3GBand, As("band")),
        Query({"getCellularBand"}, "LTE band in use", sys_getCellularBand, As("band")),
        InRound({"getCellular5GBand"}, "NR band in use", {}, NrBand),
        Query({"getCellular5GMode"}, "How 5G is used", sys_getCellular5GMode,
              As("mode", kWanFiveGMode)),
        Query({"getCABandWidth", "getCABandwidth"},
              "LTE bandwidth over all aggregated carriers, in MHz", sys_getCABandWidth,
              As("bandwidth")),
        Query({"get5GBandWidth"}, "5G bandwidth, in MHz", sys_get5GBandWidth, As("bandwidth")),

        Query({"getEthernetEnabled"}, "Whether Ethernet is on", sys_getEthernetEnabled,
              As("enabled")),
        Query({"getEthernetLinkStatus"}, "Whether an Ethernet cable is connected",
              sys_getEthernetLinkStatus, As("status")),
        Query({"getFotaInstallStatus"}, "State of the firmware installation",
              sys_getFotaInstallStatus, As("status")),
        Query({"getGPSStatus"}, "State of the GPS receiver", sys_getGPSStatus,
              As("status", kGpsStatus)),
        Query({"getSMSUnreadCount"}, "Number of unread messages", sys_getSMSUnreadCount,
              As("count")),
        Query({"getGpioPin1CustomSettings"}, "The user's names for general-purpose pin 1",
              sys_getGpioPin1CustomSettings, PinSettings),
        Query({"getGpioPin2CustomSettings"}, "The user's names for general-purpose pin 2",
              sys_getGpioPin2CustomSettings, PinSettings),

        Query({"getSDCardInfo"}, "Capacity of the memory card", sys_getSDCardInfo, CardInfo),
        Query({"getSambaEnabled"}, "Whether file sharing is on", sys_getSambaEnabled,
              As("enabled")),
        Query({"getSambaShareInfo"}, "State of file sharing", sys_getSambaShareInfo, ShareInfo),
        InRound({"getConnectedDeviceList"}, "The connected client devices", {}, ConnectedDevices),
        Query({"getWiFiEnabled"}, "Whether Wi-Fi is on", sys_getWiFiEnabled, As("enabled")),
        Query({"getWiFiMaxClients"}, "How many clients Wi-Fi serves", sys_getWiFiMaxClients,
              As("count")),
        InRound({"getWiFiGuestProfileEnabled"}, "Whether a guest Wi-Fi profile is on", {kProfile},
                GuestProfile),
        Query({"getBatteryStatus"}, "State of the battery", sys_getBatteryStatus, Battery),
    };
}

}  // namespace

Tool SysintTool() {
    return {.name = "sysintcli",
            .description = "Makes a call of the device's system interface and prints its answer.",
            .codes = kSysResult,
            .commands = Commands()};
}
