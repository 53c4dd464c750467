// The watchdog: the service manager when there is one, the log otherwise.
#include "platform/watchdog.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "bindings/log.h"
#include "bindings/posix/service_notify.h"

namespace {

int Notify(const char* state) {
    const int error = binding::NotifyServiceManager(state);
    if (error != 0) {
        BINDING_LOG(TORU_DBG_ERROR, "watchdog: %s not delivered, error %d (%s)", state, error,
                    std::strerror(error));
    }
    return error;
}

}  // namespace

int watchdog_application_register(const char* name, int registerFlag) {
    const bool registers = registerFlag == WATCHDOG_REGISTER;
    if (!binding::HasServiceManager()) {
        BINDING_LOG(TORU_DBG_NOTICE, "watchdog: %s %s", name,
                    registers ? "registered" : "unregistered");
        return 0;
    }
    if (!registers) {
        return Notify("STOPPING=1");
    }
    std::array<char, 128> state{};
    (void)std::snprintf(state.data(), state.size(), "READY=1\nSTATUS=%.64s registered", name);
    return Notify(state.data());
}

int watchdog_application_send_keep_alive(const char* name) {
    if (!binding::HasServiceManager()) {
        BINDING_LOG(TORU_DBG_NOTICE, "watchdog: keep-alive from %s", name);
        return 0;
    }
    return Notify("WATCHDOG=1");
}
