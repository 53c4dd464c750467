#include "bindings/simulator/snapshot.h"

#include <cstdlib>
#include <mutex>

#include "bindings/document/device_reader.h"
#include "bindings/posix/files/watched_file.h"
#include "bindings/simulator/log.h"

namespace binding {

namespace {

class Snapshot {
  public:
    std::shared_ptr<const Device> Begin() {
        const std::scoped_lock lock(mutex);
        Refresh();
        inSession = true;
        return device;
    }

    void End() {
        const std::scoped_lock lock(mutex);
        inSession = false;
    }

    std::shared_ptr<const Device> Current() {
        const std::scoped_lock lock(mutex);
        if (!inSession) {
            Refresh();
        }
        return device;
    }

  private:
    void Refresh() {
        const std::string newPath = DevicePath();
        if (newPath != path) {
            path = newPath;
            device.reset();
        }
        const auto reading = file.ReadIfChanged(path);
        if (!reading) {
            return;
        }
        std::string problem = reading->problem;
        if (problem.empty()) {
            try {
                device = std::make_shared<const Device>(ReadDevice(path, reading->contents));
                return;
            } catch (const std::exception& error) {
                problem = error.what();
            }
        }
        SIMULATOR_LOG(TORU_DBG_ERROR, "%s (%s)", problem.c_str(),
                      device ? "keeping the last good device" : "no device");
    }

    std::mutex mutex;
    std::string path;
    WatchedFile file;
    std::shared_ptr<const Device> device;
    bool inSession = false;
};

/// What the calling thread has in its session. Most calls are made in one, by the thread that has
/// begun it: they need neither the lock nor a share of their own.
thread_local std::shared_ptr<const Device> sessionDevice;

/// Built on first use: static objects of the product may call the platform.
Snapshot& TheSnapshot() {
    static Snapshot snapshot;
    return snapshot;
}

}  // namespace

std::string DevicePath() {
    const char* path = std::getenv("KESTAL_DEVICE");
    return path == nullptr || *path == '\0' ? KESTAL_DEFAULT_DEVICE : path;
}

void BeginSession() {
    sessionDevice = TheSnapshot().Begin();
}

void EndSession() {
    sessionDevice.reset();
    TheSnapshot().End();
}

const Device* SessionDevice() {
    return sessionDevice.get();
}

std::shared_ptr<const Device> CurrentDevice() {
    return TheSnapshot().Current();
}

}  // namespace binding
