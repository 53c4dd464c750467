// Actions of the system-interface SDK: they change the document for every process that reads it.
#include <exception>
#include <string>

#include "bindings/device/calls.h"
#include "bindings/document/device_reader.h"
#include "bindings/document/json_text.h"
#include "bindings/posix/files/file_update.h"
#include "bindings/simulator/log.h"
#include "platform/sysint.h"

using binding::Device;

namespace {

constexpr int kDisconnected = 0;
constexpr int kConnected = 2;

/// The document with another status of the data call. A status query that has been told to fail
/// goes on failing.
std::string WithStatus(const std::string& path, const std::string& document, int status) {
    const Device device = binding::ReadDevice(path, document);
    if (device.getCellularDataConnectionStatus.error != 0) {
        return document;
    }
    return binding::WithMember(document, {"sys"}, "getCellularDataConnectionStatus",
                               std::to_string(status));
}

int SetStatus(int failure, int status) {
    if (failure != SYS_SUCCESS) {
        return failure;
    }
    try {
        const std::string path = binding::DevicePath();
        binding::UpdateFile(path, binding::MissingFile::fails, [&](const std::string& document) {
            return WithStatus(path, document, status);
        });
        return SYS_SUCCESS;
    } catch (const std::exception& error) {
        SIMULATOR_LOG(TORU_DBG_ERROR, "%s (not changed)", error.what());
        return binding::kNotChanged;
    }
}

}  // namespace

int sys_cellularDataConnect(int /*reserved*/) {
    return binding::WithDevice(
        0, [](const Device& device) { return SetStatus(device.cellularDataConnect, kConnected); });
}

int sys_cellularDataDisconnect(int /*reserved*/) {
    return binding::WithDevice(0, [](const Device& device) {
        return SetStatus(device.cellularDataDisconnect, kDisconnected);
    });
}
