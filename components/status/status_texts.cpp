#include "components/status/status_texts.h"

#include "framework/value_text.h"
#include "platform/sysint.h"

namespace {

constexpr ValueText kDataConnectionStatusTexts[] = {
    {SYS_DATA_CONNECTION_READY, "Ready"},
    {SYS_DATA_CONNECTION_DORMANT, "Dormant"},
    {SYS_DATA_CONNECTION_CONNECTED, "Connected"},
    {SYS_DATA_CONNECTION_CONNECTING, "Connecting"},
    {SYS_DATA_CONNECTION_DISCONNECTING, "Disconnecting"},
    {SYS_DATA_CONNECTION_ACTIVATING, "Activation in progress"},
    {SYS_DATA_CONNECTION_UNACTIVATED, "Unactivated"},
};

constexpr ValueText kFemtoCellTexts[] = {
    {1, "1"},
    {0, "0"},
};

constexpr ValueText kBoolTexts[] = {
    {1, "true"},
    {0, "false"},
};

constexpr ValueText kBatteryDetectionTexts[] = {
    {SYS_BATTERY_INVALID, "Invalid"},
    {SYS_BATTERY_NOT_PRESENT, "Notpresent"},
    {SYS_BATTERY_PRESENT, "Present"},
};

constexpr ValueText kGpsStatusTexts[] = {
    {SYS_GPS_OFF, "GpsOff"},
    {SYS_GPS_SEARCHING, "Searching"},
    {SYS_GPS_GOT_FIX, "GotFix"},
};

constexpr ValueText kSimStatusTexts[] = {
    {SYS_SIM_NOT_FOUND, "Not Found"},       {SYS_SIM_LOCKED, "SIM Locked"},
    {SYS_SIM_RESTRICTED, "SIM Restricted"}, {SYS_SIM_ERROR, "SIM Error"},
    {SYS_SIM_FAILURE, "SIM Error"},         {SYS_SIM_PUK_LOCKED, "PUK Locked"},
    {SYS_SIM_PIN_LOCKED, "PIN Locked"},     {SYS_SIM_READY, "Ready"},
};

constexpr ValueText kChargingSourceTexts[] = {
    {SYS_CHARGING_SOURCE_NONE, "ChargingSourceNone"},
    {SYS_CHARGING_SOURCE_AC, "ChargingSourceAC"},
    {SYS_CHARGING_SOURCE_USB, "ChargingSourceUSB"},
};

}  // namespace

int GetConnectionStateText(std::int32_t serviceStatus, std::int32_t dataConnectionStatus,
                           std::int32_t accountStatus, std::string& text) {
    switch (accountStatus) {
        case SYS_ACCOUNT_RESTRICTED:
            if (dataConnectionStatus == SYS_DATA_CONNECTION_CONNECTED) {
                text = "Account restricted (PCO 2)";
            } else if (dataConnectionStatus == SYS_DATA_CONNECTION_READY) {
                text = "Account restricted (PCO 2) Disconnected";
            }
            return kTextSet;
        case SYS_ACCOUNT_OUT_OF_CREDIT:
            text = "Account out of credit (PCO 3)";
            return kTextSet;
        case SYS_ACCOUNT_NOT_ACTIVE:
            text = "Account not active (PCO 5)";
            return kTextSet;
        default:
            break;
    }
    switch (serviceStatus) {
        case SYS_SERVICE_NONE:
            text = dataConnectionStatus == SYS_DATA_CONNECTION_INITIALIZING ? "Initializing"
                                                                            : "No Service";
            return kTextSet;
        case SYS_SERVICE_SEARCHING:
            text = "Searching";
            return kTextSet;
        case SYS_SERVICE_AVAILABLE:
            (void)GetDataConnectionStatusText(dataConnectionStatus, text);
            return kTextSet;
        default:
            return kTextNone;
    }
}

int GetDataConnectionStatusText(std::int32_t status, std::string& text) {
    return FindText(kDataConnectionStatusTexts, status, text);
}

int GetFemtoCellText(std::int32_t femtoCell, std::string& text) {
    return FindText(kFemtoCellTexts, femtoCell, text);
}

int GetBoolText(std::int32_t value, std::string& text) {
    return FindText(kBoolTexts, value, text);
}

int GetBatteryDetectionText(std::int32_t detection, std::string& text) {
    return FindText(kBatteryDetectionTexts, detection, text);
}

int GetGpsStatusText(std::int32_t status, std::string& text) {
    return FindText(kGpsStatusTexts, status, text);
}

int GetSimStatusText(std::int32_t status, std::string& text) {
    return FindText(kSimStatusTexts, status, text);
}

int GetChargingSourceText(std::int32_t source, std::string& text) {
    return FindText(kChargingSourceTexts, source, text);
}
