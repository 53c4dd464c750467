#include "bindings/simulator/device_file.h"

#include <cstdlib>
#include <exception>
#include <memory>

#include "bindings/device/device_clock.h"
#include "bindings/device/device_owner.h"
#include "bindings/document/device_reader.h"
#include "bindings/posix/files/watched_file.h"
#include "bindings/posix/session/session_store.h"
#include "bindings/simulator/log.h"
#include "bindings/simulator/watch/call_reporter.h"

namespace binding {

namespace {

/// The device that the document describes. The document is read again when it has changed. If it
/// has become unusable, that is logged once and the last good device stays.
class DeviceFile {
  public:
    std::shared_ptr<const Device> Newest() {
        const std::string newPath = DevicePath();
        if (newPath != path) {
            path = newPath;
            device.reset();
        }
        if (const auto reading = file.ReadIfChanged(path)) {
            Compile(*reading);
        }
        if (device && device->statusChange &&
            device->statusChange->at <= CurrentDeviceClock().TimeOfDay()) {
            auto changed = std::make_shared<Device>(*device);
            changed->getCellularDataConnectionStatus.value = changed->statusChange->next;
            changed->statusChange.reset();
            device = std::move(changed);
        }
        return device;
    }

  private:
    void Compile(const WatchedFile::Reading& reading) {
        std::string problem = reading.problem;
        if (problem.empty()) {
            try {
                device = std::make_shared<const Device>(
                    ReadDevice(path, reading.contents, device ? device->faults : Faults()));
                return;
            } catch (const std::exception& error) {
                problem = error.what();
            }
        }
        SIMULATOR_LOG(TORU_DBG_ERROR, "%s (%s)", problem.c_str(),
                      device ? "keeping the last good device" : "no device");
    }

    std::string path;
    WatchedFile file;
    std::shared_ptr<const Device> device;
};

}  // namespace

std::string DevicePath() {
    const char* path = std::getenv("KESTAL_DEVICE");
    return path == nullptr || *path == '\0' ? DefaultDevicePath() : path;
}

std::string DefaultDevicePath() {
    return KESTAL_DEFAULT_DEVICE;
}

std::shared_ptr<const Device> NewestDevice() {
    // Built on first use: static objects of the product may call the platform.
    static DeviceFile file;
    LookForWatcher(DevicePath());
    return file.Newest();
}

std::string DefaultSessionStorePath() {
    return DevicePath() + ".sessions";
}

}  // namespace binding
