#include "service/keepalive/keep_alive_handler.h"

#include <unistd.h>

#include <csignal>

#include "framework/attempt.h"
#include "framework/log.h"
#include "platform/sysint.h"
#include "platform/watchdog.h"
#include "service/process.h"
#include "service/signal_handlers.h"
#include "service/signal_stack.h"

namespace {

constexpr int kDefaultIntervalSeconds = 60;

}  // namespace

KeepAliveHandler gKeepAliveHandler;

KeepAliveHandler::KeepAliveHandler() : thread(this, kDefaultIntervalSeconds, 0) {}

int KeepAliveHandler::Initialize() {
    KESTAL_SIGNATURE("int KeepAliveHandler::Initialize()");
    KESTAL_BEGIN();
    parentProcessId = getppid();
    KESTAL_DEBUG("Parent Process Id = %d registering %s with watchdog", parentProcessId,
                 gProgramName);
    watchdog_application_register(gProgramName, WATCHDOG_REGISTER);
    KESTAL_END_RETURNING(0);
    return 0;
}

int KeepAliveHandler::Run() {
    KESTAL_SIGNATURE("int KeepAliveHandler::Run()");
    KESTAL_BEGIN();
    Attempt(signature, "maintenance thread", [this] { thread.Initialize(); });
    int interval = kDefaultIntervalSeconds;
    sys_getWatchdogInterval(&interval);
    thread.SetInterval(static_cast<unsigned int>(interval));
    Attempt(signature, "maintenance thread", [this] { thread.Run(); });
    KESTAL_END_RETURNING(0);
    return 0;
}

bool KeepAliveHandler::OnThreadNotify(unsigned int /*event*/) {
    KESTAL_SIGNATURE("virtual bool KeepAliveHandler::OnThreadNotify(unsigned int)");
    KESTAL_BEGIN();
    thread_local const SignalStack stack;
    EndIfStuck();
    // If even EndIfStuck cannot end a stuck process, because it hangs inside the kernel, only the
    // watchdog can help. So a process that has passed its deadline sends no keep-alive message.
    if (!gOperationDeadline.IsPassed() && getppid() == parentProcessId &&
        kill(parentProcessId, 0) != -1) {
        KESTAL_LOG(
            TORU_DBG_INFO,
            "Watchdog timer event. lighttpd alive ( and kicking ). Sending keep alive message");
        watchdog_application_send_keep_alive(gProgramName);
    }
    KESTAL_END_RETURNING(false);
    return false;
}

int KeepAliveHandler::Shutdown() {
    KESTAL_SIGNATURE("int KeepAliveHandler::Shutdown()");
    KESTAL_BEGIN();
    KESTAL_DEBUG("Unregistering %s with watchdog", gProgramName);
    watchdog_application_register(gProgramName, WATCHDOG_UNREGISTER);
    Attempt(signature, "maintenance thread", [this] { thread.Shutdown(); });
    KESTAL_END_RETURNING(0);
    return 0;
}
