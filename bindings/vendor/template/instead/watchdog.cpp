// The watchdog of your device, instead of systemd by way of bindings/posix.
#include "platform/watchdog.h"

#include "../not_supported.h"

// Tell the watchdog that this application starts or ends.
int watchdog_application_register(const char* /*name*/, int /*registerFlag*/) {
    return kNotSupported;
}

// Tell the watchdog that it is alive.
int watchdog_application_send_keep_alive(const char* /*name*/) {
    return kNotSupported;
}
