#include "service/termination_handler.h"

#include <csignal>
#include <cstdlib>

#include "framework/log.h"
#include "service/keepalive/keep_alive_handler.h"
#include "service/main_thread_signals.h"
#include "service/process.h"
#include "service/signal_handlers.h"

namespace {

void terminationHandler(int /*signo*/) {
    // The keep-alive thread may have crashed and be about to end the process.
    WaitIfProcessIsEnding();
    // It is blocked while the main thread waits for a request.
    UnblockDeadlineSignal();
    gOperationDeadline.Begin("termination");
    gKeepAliveHandler.Shutdown();
    KESTAL_SYSLOG_PLAIN(TORU_DBG_DEBUG, "%s Server Terminating", KESTAL_MODULE);
    std::exit(0);
}

}  // namespace

void InstallTerminationHandler() {
    struct sigaction action = {};
    action.sa_handler = terminationHandler;
    sigemptyset(&action.sa_mask);
    sigaction(SIGTERM, &action, nullptr);
}
