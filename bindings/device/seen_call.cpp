#include "bindings/device/seen_call.h"

namespace binding {

constinit std::atomic<CallWatcher*> theCallWatcher = nullptr;

}  // namespace binding
