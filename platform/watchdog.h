// Client of the device watchdog, which restarts registered applications that stop reporting.
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

/// Reports that the registered application @p name is alive. Returns 0 on success.
int watchdog_application_send_keep_alive(const char* name);
}
