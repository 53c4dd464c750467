#include "bindings/device/snapshot.h"

#include <mutex>

#include "bindings/device/device_owner.h"

namespace binding {

namespace {

class Snapshot {
  public:
    std::shared_ptr<const Device> Begin() {
        const std::scoped_lock lock(mutex);
        device = NewestDevice();
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
            device = NewestDevice();
        }
        return device;
    }

    std::shared_ptr<const Device> Newest() {
        const std::scoped_lock lock(mutex);
        return NewestDevice();
    }

  private:
    std::mutex mutex;
    std::shared_ptr<const Device> device;
    bool inSession = false;
};

/// The device of the calling thread's session. Most calls are made by the thread that began the
/// session; thanks to this pointer they need neither the lock nor a reference of their own.
thread_local std::shared_ptr<const Device> sessionDevice;

/// Built on first use: static objects of the product may call the platform.
Snapshot& TheSnapshot() {
    static Snapshot snapshot;
    return snapshot;
}

}  // namespace

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

std::shared_ptr<const Device> NewestState() {
    return TheSnapshot().Newest();
}

}  // namespace binding
