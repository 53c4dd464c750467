#include <string>

#include "bindings/recording/recording.h"
#include "platform/watchdog.h"

int watchdog_application_register(const char* name, int registerFlag) {
    const recording::InsidePlatform inside;
    return recording::Play("watchdog_application_register",
                           std::string(name) + ", " + std::to_string(registerFlag), {}, 0);
}

int watchdog_application_send_keep_alive(const char* name) {
    const recording::InsidePlatform inside;
    return recording::Play("watchdog_application_send_keep_alive", name, {}, 0);
}
