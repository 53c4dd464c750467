// The data call. Its status is changed in the device document, so that every process that reads the
// document sees it.
#include <exception>
#include <string>

#include "bindings/device/codes.h"
#include "bindings/device/device_owner.h"
#include "bindings/document/device_reader.h"
#include "bindings/posix/files/file_update.h"
#include "bindings/posix/json/json_text.h"
#include "bindings/simulator/device_file.h"
#include "bindings/simulator/log.h"

namespace binding {

namespace {

constexpr int kDisconnected = 0;
constexpr int kConnected = 2;

/// Returns the document with @p status as the status of the data call. If the document makes the
/// status query fail, it is returned unchanged, so that the query still fails.
std::string WithStatus(const std::string& path, const std::string& document, int status) {
    const Device device = ReadDevice(path, document);
    if (device.getCellularDataConnectionStatus.error != 0) {
        return document;
    }
    return WithMember(document, {"sys"}, "getCellularDataConnectionStatus", std::to_string(status));
}

int SetStatus(int status) {
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
    return SetStatus(kConnected);
}

int StopDataCall() {
    return SetStatus(kDisconnected);
}

}  // namespace binding
