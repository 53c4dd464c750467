#include "bindings/device/fault.h"

#include <algorithm>

#include "bindings/device/codes.h"
#include "bindings/device/device_clock.h"
#include "bindings/device/seen_call.h"
#include "bindings/device/snapshot.h"

namespace binding {

namespace {

enum class Waited { itsTime, untilCleared, untilAskedToEnd };

bool IsCleared(const Fault& fault) {
    const std::shared_ptr<const Device> device = NewestState();
    return !device || std::none_of(device->faults.begin(), device->faults.end(),
                                   [&](const auto& one) { return one.get() == &fault; });
}

Waited Wait(const Fault& fault) {
    CallWatcher* const watcher = theCallWatcher;
    if (watcher != nullptr &&
        (fault.Plan().hangs || fault.Plan().delay > std::chrono::milliseconds(0))) {
        watcher->Waits(fault.Plan());
    }
    // How often to look whether the wait is to end early; short enough for whoever waits for that.
    constexpr auto kLook = std::chrono::milliseconds(100);
    DeviceClock& clock = CurrentDeviceClock();
    const DeviceClock::Steady end =
        fault.Plan().hangs ? DeviceClock::Steady::max() : clock.Now() + fault.Plan().delay;
    while (true) {
        const DeviceClock::Steady now = clock.Now();
        if (now >= end) {
            return Waited::itsTime;
        }
        if (!clock.WaitUntil(std::min(end, now + kLook))) {
            return Waited::untilAskedToEnd;
        }
        if (IsCleared(fault)) {
            return Waited::untilCleared;
        }
    }
}

}  // namespace

bool Fault::AffectsNextCall() {
    const std::scoped_lock lock(mutex);
    if (plan.probability) {
        // Not a standard distribution, because the standard does not prescribe what these make of
        // the generator's numbers.
        constexpr double kNumbers = 4294967296.0;
        if (static_cast<double>(random()) >= *plan.probability * kNumbers) {
            return false;
        }
    }
    if (plan.times && affected == *plan.times) {
        return false;
    }
    ++affected;
    return true;
}

int Meet(Fault& fault, int codeBase) {
    if (!fault.AffectsNextCall()) {
        return 0;
    }
    switch (Wait(fault)) {
        case Waited::untilCleared:
            return 0;
        case Waited::untilAskedToEnd:
            return codeBase + kInterrupted;
        case Waited::itsTime:
            break;
    }
    return fault.Plan().code;
}

}  // namespace binding
