// The data call. Its status is changed in the device document, so that every process that reads the
// document sees it.
#include <exception>
#include <nlohmann/json.hpp>
#include <string>

#include "bindings/device/codes.h"
#include "bindings/device/device_owner.h"
#include "bindings/document/device_reader.h"
#include "bindings/names/enumerations.h"
#include "bindings/posix/files/file_update.h"
#include "bindings/posix/json/json_text.h"
#include "bindings/simulator/device_file.h"
#include "bindings/simulator/log.h"

namespace binding {

namespace {

constexpr const char* kStatusName = "getCellularDataConnectionStatus";

/// Whether the good document @p text has a name as the status, and not a number.
bool HasNameAsStatus(const std::string& text) {
    const nlohmann::ordered_json document = ParseStrictly(text);
    const auto sys = document.find("sys");
    return sys != document.end() && sys->contains(kStatusName) && sys->at(kStatusName).is_string();
}

/// Returns the document with @p status as the status of the data call: as a name where the document
/// has a name, and otherwise as a number. If the document makes the status query fail, it is
/// returned unchanged, so that the query still fails.
std::string WithStatus(const std::string& path, const std::string& document,
                       sys_data_connection_status_e status) {
    const Device device = ReadDevice(path, document);
    if (device.getCellularDataConnectionStatus.error != 0) {
        return document;
    }
    const std::string value = HasNameAsStatus(document)
                                  ? "\"" + std::string(NameOf(status, NamesOf(status))) + "\""
                                  : std::to_string(status);
    return WithMember(document, {"sys"}, kStatusName, value);
}

int SetStatus(sys_data_connection_status_e status) {
    try {
        const std::string path = DevicePath();
        UpdateFile(path, MissingFile::fails,
                   [&](const std::string& document) { return WithStatus(path, document, status); });
        return SYS_SUCCESS;
    } catch (const std::exception& error) {
        SIMULATOR_LOG(TORU_DBG_ERROR, "%s (not changed)", error.what());
        return kNotChanged;
    }
}

}  // namespace

int StartDataCall() {
    return SetStatus(SYS_DATA_CONNECTION_CONNECTED);
}

int StopDataCall() {
    return SetStatus(SYS_DATA_CONNECTION_READY);
}

}  // namespace binding
