#include "tests/faults/expectations.h"

#include <algorithm>
#include <iterator>

#include "platform/auth_session.h"
#include "platform/cgi_helper.h"
#include "platform/maintenance_thread.h"
#include "platform/msgbus.h"
#include "platform/sysint.h"
#include "platform/webui.h"

namespace {

struct Reason {
    const char* call;
    const char* text;
};

constexpr const char* kSwitch = "a switch that cannot be read counts as off";
constexpr const char* kNoSession = "a caller whose session cannot be checked is not logged in";

/// Calls whose failure is not logged.
constexpr Reason kSilent[] = {
    {"sys_sdkShutdown", "no call comes after it"},
    {"sys_getWebUICarrierEnabled", "the answer says that the web UI is off"},
    {"sys_getSambaCarrierEnabled", kSwitch},
    {"sys_getGPSCarrierEnabled", kSwitch},
    {"sys_getMTSMSCarrierEnabled", kSwitch},
    {"sys_getWiFiCarrierEnabled", kSwitch},
    {"sys_getWiFiGuestCarrierEnabled", kSwitch},
    {"sys_getPCOCarrierEnabled", kSwitch},
    {"sys_getNUACarrierEnabled", kSwitch},
    {"sys_getOmadmFumoCarrierEnabled", kSwitch},
    {"sys_getMultiSimEnabled", "a switch; notifications have no link to the SIM then"},
    {"sys_getCellularDataAccountStatus", "an unknown account does not restrict the connection"},
    {"sys_getAllSimSlotsInfo", "the keys of the slots are left out and their count shows it"},
    {"sys_getWatchdogInterval", "the interval is 60 seconds unless the call writes another"},
    {"webui_get_uri_data", "there is no link to an unknown page"},
    {"AuthSession::Init", kNoSession},
    {"AuthSession::LoggedOn", kNoSession},
    {"MsgbusHandler::Initialize", "reading the channel fails then, and that is logged"},
    {"MsgbusHandler::Uninitialize", "no call comes after it"},
    {"toru_dbg_start", "there is no log yet"},
    {"watchdog_application_register", "the watchdog acts if it gets no messages"},
    {"watchdog_application_send_keep_alive", "the next one follows"},
    {"MaintenanceThread::Initialize", "the watchdog acts if it gets no messages"},
    {"MaintenanceThread::Run", "the watchdog acts if it gets no messages"},
    {"MaintenanceThread::Shutdown", "the process ends"},
};

/// Log lines that have another name than that of the call, or no code.
struct Line {
    const char* call;
    const char* text;
    bool withCode;
};
constexpr Line kLines[] = {
    {"sys_sdkInitialize", "system interface api failed returning", true},
    {"sys_cellularDataConnect", "PerformConnectAction(const string&) -system interface API failed",
     true},
    {"sys_cellularDataDisconnect",
     "PerformConnectAction(const string&) -system interface API failed", true},
    // The line of the internet group has another name in the fifth place.
    {"sys_getCellularDataConnectionStatus", "sys_getCellularDataAccountStatus failed", true},
    // The band texts read the statistics, but their line names the status.
    {"sys_getCellularServiceStats", "sys_getCellularServiceStatus failed", true},
    {"sys_getCABandWidth", "sys_getCABandwidth failed", true},
    {"sys_get5GBandWidth", "sys_getCABandwidth failed", true},
    {"sys_getSDCardInfo", "sys_getSDCardInfo/ sys_getSambaEnabled failed", true},
    {"MsgbusHandler::GetData", "msgbus.GetData for zelt.ans.notifications channel failed", false},
    {"MsgbusHandler::GetData", "msgbus failed to read notification data", false},
    {"MsgbusHandler::GetData", "ailed to allocate memory", false},
    {"GetIPAddressFamily", "Unable to determine the family of ip", false},
    {"CgiHelper::GetInstance", "Failed to create CgiHelper object", false},
};

/// Codes that are neither success nor failure.
struct AnswerCode {
    const char* call;
    /// The number of the call of that name in the request, counted from 1; 0 means each call.
    int occurrence;
    int code;
};
constexpr AnswerCode kAnswers[] = {
    {"sys_getSDCardInfo", 0, SYS_ERROR_NO_SD_CARD},
    {"sys_getConnectedDeviceList", 1, SYS_ERROR_BUFFER_NEEDED},
    {"MsgbusHandler::GetData", 1, MSGBUS_BUFFER_NEEDED},
};

/// A call whose failure is not logged if the call `by` has failed, too, because that one is logged.
struct Covered {
    const char* call;
    const char* by;
};
constexpr Covered kCovered[] = {
    {"sys_getSIMNetworkRejectCode", "sys_getNetworkSIMLockStatus"},
};

constexpr const char* kReadOnce[] = {
    "sys_getSambaCarrierEnabled", "sys_getGPSCarrierEnabled",        "sys_getMTSMSCarrierEnabled",
    "sys_getWiFiCarrierEnabled",  "sys_getWiFiGuestCarrierEnabled",  "sys_getPCOCarrierEnabled",
    "sys_getNUACarrierEnabled",   "sys_getOmadmFumoCarrierEnabled",  "sys_getMultiSimEnabled",
    "webui_get_common_features",  "webui_get_common_configurations", "sys_getSIMCarrierGID",
};

constexpr const char* kFieldAccess = "no request needs the access rights of single fields";
constexpr const char* kNoApplication = "the service is not an application of the web UI";

constexpr Reason kNotCalled[] = {
    {"sys_getUIFieldShowEnabled", kFieldAccess},
    {"sys_getUIFieldLockEnabled", kFieldAccess},
    {"sys_getUIAppDisplayEnabled", kFieldAccess},
    {"sys_getUIAppWriteEnabled", kFieldAccess},
    {"sys_getWDCPCarrierEnabled", kFieldAccess},
    {"sys_getHalyardAgentCarrierEnabled", kFieldAccess},
    {"webui_get_app_features", kNoApplication},
    {"webui_get_app_configurations", kNoApplication},
    {"webui_get_external_uri_data", "notifications link only to pages of the web UI"},
    {"MaintenanceThreadCallbackInterface::OnThreadNotify", "the platform calls it"},
    {"MaintenanceThread::SetInterval", "it is defined in the header, so no binding implements it"},
    {"toru_dbg_get_level_name", "it gives a name to every number"},
};

constexpr const char* kNoResult = "it returns nothing and throws nothing";

constexpr Reason kNotFailing[] = {
    {"toru_dbg_log", kNoResult},
    {"toru_dbg_syslog", kNoResult},
    {"toru_dbg_stop", kNoResult},
    {"MaintenanceThread::MaintenanceThread", "it runs before main, which could not catch anything"},
};

template <typename Table>
bool Names(const Table& table, const std::string& call) {
    return std::any_of(std::begin(table), std::end(table),
                       [&](const char* name) { return call == name; });
}

template <typename Table>
const char* ReasonIn(const Table& table, const std::string& call) {
    const auto* const found = std::find_if(std::begin(table), std::end(table),
                                           [&](const Reason& row) { return call == row.call; });
    return found == std::end(table) ? nullptr : found->text;
}

bool Holds(const Exchange& exchange, const std::string& text, const std::string& code) {
    bool inSystemLog = false;
    bool inLog = false;
    for (const std::string& line : exchange.errors) {
        const std::size_t found = line.find(text);
        if (found != std::string::npos && line.find(code, found) != std::string::npos) {
            (line.starts_with("syslog ") ? inSystemLog : inLog) = true;
        }
    }
    return inSystemLog && inLog;
}

}  // namespace

bool IsSilent(const std::string& call, int occurrence) {
    // If the first call, for the length of the list, fails, nothing is logged.
    return ReasonIn(kSilent, call) != nullptr ||
           (call == "sys_getConnectedDeviceList" && occurrence == 1);
}

bool IsAnswer(const std::string& call, int occurrence, int code) {
    return std::any_of(std::begin(kAnswers), std::end(kAnswers), [&](const AnswerCode& row) {
        return call == row.call && code == row.code &&
               (row.occurrence == 0 || row.occurrence == occurrence);
    });
}

bool IsLogged(const Exchange& exchange, const Fault& fault) {
    switch (fault.thrown) {
        case Thrown::kBadAlloc:
            return Holds(exchange, "failed", "std::bad_alloc");
        case Thrown::kError:
            return Holds(exchange, "failed", "thrown by " + fault.call);
        case Thrown::kNumber:
            return Holds(exchange, " failed", "");
        case Thrown::kNothing:
            break;
    }
    const std::string code = std::to_string(fault.code);
    return Holds(exchange, fault.call + " failed", code) ||
           Holds(exchange, fault.call + " API failed", code) ||
           std::any_of(std::begin(kLines), std::end(kLines), [&](const Line& line) {
               return fault.call == line.call &&
                      Holds(exchange, line.text, line.withCode ? code : "");
           });
}

bool IsCovered(const std::string& call, const std::set<std::pair<std::string, int>>& failed) {
    return std::any_of(std::begin(kCovered), std::end(kCovered), [&](const Covered& row) {
        return call == row.call && failed.count({row.by, 1}) != 0;
    });
}

bool IsReadOnce(const std::string& call) {
    return Names(kReadOnce, call);
}

const char* ReasonNotToCall(const std::string& call) {
    return ReasonIn(kNotCalled, call);
}

const char* ReasonNotToFail(const std::string& call) {
    return ReasonIn(kNotFailing, call);
}

std::set<std::string> NamesInTables() {
    std::set<std::string> names(std::begin(kReadOnce), std::end(kReadOnce));
    for (const Reason& row : kSilent) {
        names.insert(row.call);
    }
    for (const Line& row : kLines) {
        names.insert(row.call);
    }
    for (const Reason& row : kNotCalled) {
        names.insert(row.call);
    }
    for (const Reason& row : kNotFailing) {
        names.insert(row.call);
    }
    for (const AnswerCode& row : kAnswers) {
        names.insert(row.call);
    }
    return names;
}
