// Client of the device watchdog, which restarts registered applications that stop reporting.
//
// If the watchdog is systemd, it gets its messages at the socket that NOTIFY_SOCKET names: READY=1
// when the application registers and WATCHDOG=1 with each report. A watchdog of the device's own
// sends nothing there.
#pragma once

/// Values of the register flag.
enum watchdog_register_flag_e {
    WATCHDOG_UNREGISTER = 0,
    WATCHDOG_REGISTER = 1,
};

extern "C" {

/// Registers (WATCHDOG_REGISTER) or unregisters (WATCHDOG_UNREGISTER) the application @p name.
/// Returns 0 on success.
int watchdog_application_register(const char* name, int registerFlag);

/// Reports that the registered application @p name is alive. Returns 0 if the watchdog has been
/// told, which it must be each time after a successful registration. Callers also report when the
/// registration has failed.
int watchdog_application_send_keep_alive(const char* name);
}
