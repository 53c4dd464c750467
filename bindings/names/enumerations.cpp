#include "bindings/names/enumerations.h"

#include <algorithm>

#include "bindings/device/codes.h"
#include "platform/msgbus.h"
#include "platform/notification.h"
#include "platform/webui.h"

namespace binding {

namespace {

constexpr EnumerationName kSysResultNames[] = {
    {SYS_SUCCESS, "success"},
    {SYS_ERROR_BUFFER_NEEDED, "error_buffer_needed"},
    {SYS_ERROR_NO_SD_CARD, "error_no_sd_card"},
};

constexpr EnumerationName kSimStatusNames[] = {
    {SYS_SIM_NOT_FOUND, "not_found"},   {SYS_SIM_LOCKED, "locked"},
    {SYS_SIM_RESTRICTED, "restricted"}, {SYS_SIM_ERROR, "error"},
    {SYS_SIM_FAILURE, "failure"},       {SYS_SIM_PUK_LOCKED, "puk_locked"},
    {SYS_SIM_PIN_LOCKED, "pin_locked"}, {SYS_SIM_READY, "ready"},
};

constexpr EnumerationName kTechnologyNames[] = {
    {SYS_TECHNOLOGY_NONE, "none"},
    {SYS_TECHNOLOGY_WIFI, "wifi"},
    {SYS_TECHNOLOGY_GPRS, "gprs"},
    {SYS_TECHNOLOGY_CDMA_1XRTT, "cdma_1xrtt"},
    {SYS_TECHNOLOGY_EVDO_REV0, "evdo_rev0"},
    {SYS_TECHNOLOGY_UMTS, "umts"},
    {SYS_TECHNOLOGY_HSDPA, "hsdpa"},
    {SYS_TECHNOLOGY_EDGE, "edge"},
    {SYS_TECHNOLOGY_EVDO_REVA, "evdo_reva"},
    {SYS_TECHNOLOGY_HSUPA, "hsupa"},
    {SYS_TECHNOLOGY_HSPA_PLUS, "hspa_plus"},
    {SYS_TECHNOLOGY_LTE, "lte"},
    {SYS_TECHNOLOGY_HSPA_PLUS_DC, "hspa_plus_dc"},
    {SYS_TECHNOLOGY_EVDO_REVB, "evdo_revb"},
    {SYS_TECHNOLOGY_EVDO_EHRPD, "evdo_ehrpd"},
    {SYS_TECHNOLOGY_WIMAX, "wimax"},
    {SYS_TECHNOLOGY_LTE_PLUS, "lte_plus"},
    {SYS_TECHNOLOGY_5G, "5g"},
};

constexpr EnumerationName kRoamingNames[] = {
    {SYS_ROAMING_NONE, "none"},
    {SYS_ROAMING_DOMESTIC, "domestic"},
    {SYS_ROAMING_INTERNATIONAL, "international"},
    {SYS_ROAMING_FLASH, "flash"},
};

constexpr EnumerationName kFiveGTypeNames[] = {
    {SYS_5G_ULTRA_WIDEBAND, "ultra_wideband"},
    {SYS_5G_OTHER, "other"},
};

constexpr EnumerationName kTrafficStatusNames[] = {
    {SYS_TRAFFIC_NONE, "none"},
    {SYS_TRAFFIC_UPLINK, "uplink"},
    {SYS_TRAFFIC_DOWNLINK, "downlink"},
    {SYS_TRAFFIC_BOTH, "both"},
};

constexpr EnumerationName kWanFiveGModeNames[] = {
    {SYS_WAN_5G_NONE, "none"},
    {SYS_WAN_5G_STANDALONE, "standalone"},
    {SYS_WAN_5G_NON_STANDALONE, "non_standalone"},
};

constexpr EnumerationName kServiceStatusNames[] = {
    {SYS_SERVICE_NONE, "none"},
    {SYS_SERVICE_SEARCHING, "searching"},
    {SYS_SERVICE_AVAILABLE, "available"},
};

constexpr EnumerationName kDataConnectionStatusNames[] = {
    {SYS_DATA_CONNECTION_READY, "ready"},
    {SYS_DATA_CONNECTION_DORMANT, "dormant"},
    {SYS_DATA_CONNECTION_CONNECTED, "connected"},
    {SYS_DATA_CONNECTION_INITIALIZING, "initializing"},
    {SYS_DATA_CONNECTION_CONNECTING, "connecting"},
    {SYS_DATA_CONNECTION_DISCONNECTING, "disconnecting"},
    {SYS_DATA_CONNECTION_ACTIVATING, "activating"},
    {SYS_DATA_CONNECTION_UNACTIVATED, "unactivated"},
};

constexpr EnumerationName kAccountStatusNames[] = {
    {SYS_ACCOUNT_RESTRICTED, "restricted"},
    {SYS_ACCOUNT_OUT_OF_CREDIT, "out_of_credit"},
    {SYS_ACCOUNT_NOT_ACTIVE, "not_active"},
};

constexpr EnumerationName kGpsStatusNames[] = {
    {SYS_GPS_OFF, "off"},
    {SYS_GPS_SEARCHING, "searching"},
    {SYS_GPS_GOT_FIX, "got_fix"},
};

constexpr EnumerationName kConnectionKindNames[] = {
    {SYS_CONNECTION_WIFI, "wifi"},
    {SYS_CONNECTION_WIRED_A, "wired_a"},
    {SYS_CONNECTION_WIRED_B, "wired_b"},
    {SYS_CONNECTION_GUEST_WIFI, "guest_wifi"},
};

constexpr EnumerationName kBatteryDetectionNames[] = {
    {SYS_BATTERY_INVALID, "invalid"},
    {SYS_BATTERY_NOT_PRESENT, "not_present"},
    {SYS_BATTERY_PRESENT, "present"},
};

constexpr EnumerationName kChargingSourceNames[] = {
    {SYS_CHARGING_SOURCE_NONE, "none"},
    {SYS_CHARGING_SOURCE_AC, "ac"},
    {SYS_CHARGING_SOURCE_USB, "usb"},
};

constexpr EnumerationName kWebuiStatusNames[] = {
    {WEBUI_SUCCESS, "success"},
    {WEBUI_BUFFER_NEEDED, "buffer_needed"},
};

constexpr EnumerationName kMsgbusResultNames[] = {
    {MSGBUS_SUCCESS, "success"},
    {MSGBUS_BUFFER_NEEDED, "buffer_needed"},
};

constexpr EnumerationName kSeverityNames[] = {
    {ANS_SEVERITY_INFO, "info"},
    {ANS_SEVERITY_WARNING, "warning"},
    {ANS_SEVERITY_ALERT, "alert"},
    {ANS_SEVERITY_CRITICAL, "critical"},
};

constexpr EnumerationName kBindingCodeNames[] = {
    {kNotAnswered, "not_answered"},
    {kNoDevice, "no_device"},
    {kNotChanged, "not_changed"},
    {kBindingFailed, "binding_failed"},
    {kBusNotJoined, "bus_not_joined"},
    {kSourceLost, "source_lost"},
    {kNothingToConnect, "nothing_to_connect"},
    {kInterrupted, "interrupted"},
};

}  // namespace

constinit const Enumeration kSysResult = kSysResultNames;
constinit const Enumeration kSimStatus = kSimStatusNames;
constinit const Enumeration kTechnology = kTechnologyNames;
constinit const Enumeration kRoaming = kRoamingNames;
constinit const Enumeration kFiveGType = kFiveGTypeNames;
constinit const Enumeration kTrafficStatus = kTrafficStatusNames;
constinit const Enumeration kWanFiveGMode = kWanFiveGModeNames;
constinit const Enumeration kServiceStatus = kServiceStatusNames;
constinit const Enumeration kDataConnectionStatus = kDataConnectionStatusNames;
constinit const Enumeration kAccountStatus = kAccountStatusNames;
constinit const Enumeration kGpsStatus = kGpsStatusNames;
constinit const Enumeration kConnectionKind = kConnectionKindNames;
constinit const Enumeration kBatteryDetection = kBatteryDetectionNames;
constinit const Enumeration kChargingSource = kChargingSourceNames;
constinit const Enumeration kWebuiStatus = kWebuiStatusNames;
constinit const Enumeration kMsgbusResult = kMsgbusResultNames;
constinit const Enumeration kSeverity = kSeverityNames;
constinit const Enumeration kBindingCode = kBindingCodeNames;

const char* NameOf(std::int64_t value, Enumeration names) {
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](const auto& one) { return one.value == value; });
    return found == names.end() ? nullptr : found->name;
}

std::optional<std::int64_t> ValueOf(std::string_view name, Enumeration names) {
    const auto found =
        std::find_if(names.begin(), names.end(), [&](const auto& one) { return one.name == name; });
    return found == names.end() ? std::nullopt : std::optional(found->value);
}

std::vector<std::string> AllNames(Enumeration names) {
    std::vector<std::string> all;
    all.reserve(names.size());
    for (const EnumerationName& one : names) {
        all.emplace_back(one.name);
    }
    return all;
}

std::string Listed(const std::vector<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts) {
        list += (list.empty() ? "" : ", ") + text;
    }
    return list;
}

}  // namespace binding
