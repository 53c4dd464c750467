// Numbers of ModemManager's interface that several tables use.
#pragma once

#include <cstdint>

namespace binding {

enum ModemState : std::int64_t {  // MMModemState
    kModemFailed = -1,
    kModemStateUnknown = 0,
    kModemInitializing = 1,
    kModemLocked = 2,
    kModemDisabled = 3,
    kModemDisabling = 4,
    kModemEnabling = 5,
    kModemEnabled = 6,
    kModemSearching = 7,
    kModemRegistered = 8,
    kModemDisconnecting = 9,
    kModemConnecting = 10,
    kModemConnected = 11,
};

}  // namespace binding
