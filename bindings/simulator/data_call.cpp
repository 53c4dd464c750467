// The data call. Its status is changed in the device document, so that every process that reads the
// document sees it.
#include <exception>
#include <nlohmann/json.hpp>
#include <string>

#include "bindings/device/codes.h"
#include "bindings/device/device_clock.h"
#include "bindings/device/device_owner.h"
#include "bindings/document/device_reader.h"
#include "bindings/document/document_time.h"
#include "bindings/names/enumerations.h"
#include "bindings/posix/files/file_update.h"
#include "bindings/posix/json/json_text.h"
#include "bindings/simulator/device_file.h"
#include "bindings/simulator/log.h"

namespace binding {

namespace {

constexpr const char* kStatusName = "getCellularDataConnectionStatus";

/// A change of the data call.
struct StatusGoal {
    sys_data_connection_status_e during;  ///< the status while the device works on it
    sys_data_connection_status_e after;
    Answer<Action> Device::*action;
};

constexpr StatusGoal kConnect = {SYS_DATA_CONNECTION_CONNECTING, SYS_DATA_CONNECTION_CONNECTED,
                                 &Device::cellularDataConnect};
constexpr StatusGoal kDisconnect = {SYS_DATA_CONNECTION_DISCONNECTING, SYS_DATA_CONNECTION_READY,
                                    &Device::cellularDataDisconnect};

/// Whether the good document @p text has a name as the status, and not a number. If the status is
/// about to change, what it changes to decides.
bool HasNameAsStatus(const std::string& text) {
    const nlohmann::ordered_json document = ParseStrictly(text);
    const auto sys = document.find("sys");
    if (sys == document.end() || !sys->contains(kStatusName)) {
        return false;
    }
    const nlohmann::ordered_json* status = &sys->at(kStatusName);
    for (const char* const inner : {kHealedName, "next"}) {
        if (status->is_object() && status->contains(inner)) {
            status = &status->at(inner);
        }
    }
    return status->is_string();
}

/// Returns the document in which the data call reaches @p goal, at once or after the time that the
/// action takes. Statuses are names where the document has a name, and otherwise numbers. If the
/// document makes the status query fail in every call, it is returned unchanged, so that the query
/// still fails.
std::string WithStatus(const std::string& path, const std::string& document,
                       const StatusGoal& goal) {
    const Device device = ReadDevice(path, document);
    const Answer<std::int32_t>& status = device.getCellularDataConnectionStatus;
    if (status.error != 0) {
        return document;
    }
    const auto now = CurrentDeviceClock().TimeOfDay();
    const bool changes = device.statusChange && now < device.statusChange->at;
    const std::int32_t next = device.statusChange ? device.statusChange->next : status.value;
    const std::chrono::milliseconds takes = (device.*goal.action).value.takes;
    if (changes && next == goal.after && takes.count() != 0) {
        return document;
    }
    const bool isReached = status.named && !changes && next == goal.after;
    const auto text = [hasName = HasNameAsStatus(document)](sys_data_connection_status_e one) {
        return hasName ? "\"" + std::string(NameOf(one, NamesOf(one))) + "\"" : std::to_string(one);
    };
    const std::string value = isReached || takes.count() == 0
                                  ? text(goal.after)
                                  : "{\"now\": " + text(goal.during) +
                                        ", \"next\": " + text(goal.after) + ", \"at\": \"" +
                                        TimeText(now + takes) + "\"}";
    if (status.fault) {
        return WithMember(document, {"sys", kStatusName}, kHealedName, value);
    }
    return WithMember(document, {"sys"}, kStatusName, value);
}

int SetStatus(const StatusGoal& goal) {
    try {
        const std::string path = DevicePath();
        UpdateFile(path, MissingFile::fails,
                   [&](const std::string& document) { return WithStatus(path, document, goal); });
        return SYS_SUCCESS;
    } catch (const std::exception& error) {
        SIMULATOR_LOG(TORU_DBG_ERROR, "%s (not changed)", error.what());
        return kNotChanged;
    }
}

}  // namespace

int StartDataCall() {
    return SetStatus(kConnect);
}

int StopDataCall() {
    return SetStatus(kDisconnect);
}

}  // namespace binding
