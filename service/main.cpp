#include <libgen.h>
#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string_view>

#include "framework/attempt.h"
#include "framework/log.h"
#include "framework/text_domain.h"
#include "platform/language_support.h"
#include "service/keepalive/keep_alive_handler.h"
#include "service/main_thread_signals.h"
#include "service/process.h"
#include "service/request_loop.h"
#include "service/signal_handlers.h"
#include "service/standard_descriptors.h"
#include "service/termination_handler.h"
#include "version/version.h"

int main(int argc, char** argv) {
    KESTAL_SIGNATURE("int main(int, char**)");
    // No web server gives an argument, but people do.
    if (argc == 2 && std::string_view(argv[1]) == "--version") {
        (void)std::printf("kestal.cgi %s\n", KestalVersion());
        return std::fflush(stdout) == 0 ? 0 : 1;
    }
    int result = 0;
    // First, because whatever opens a descriptor before could get the number of a standard one.
    OpenClosedStandardDescriptors();
    // Before any thread starts, because threads inherit the mask: if the keep-alive thread took
    // SIGTERM, the handler would join that thread, that is, wait for itself for ever.
    BlockMainThreadSignals();
    // When a log file reaches the size limit of the process, lines are lost. By default, SIGXFSZ
    // would end the service.
    (void)std::signal(SIGXFSZ, SIG_IGN);
    gProgramName = basename(argv[0]);
    toru_dbg_start(gProgramName);
    KESTAL_SYSLOG_PLAIN(TORU_DBG_NOTICE, "%s Process Start with pthread ID:%lu, process ID:%d.",
                        KESTAL_MODULE, pthread_self(), getpid());
    InstallFatalSignalHandler();
    InstallDeadlineHandler(OperationLimit());
    gOperationDeadline.Begin("start of the process");
    Attempt(signature, "text domain", [] {
        LanguageSupport::SetTextDomainProperties(kTextDomain, "UTF-8", "/usr/share/locale");
    });
    gKeepAliveHandler.Initialize();
    gKeepAliveHandler.Run();
    // Only now, so that the process is registered whenever the handler unregisters it.
    InstallTerminationHandler();
    result = fastcgi_main_loop();
    gOperationDeadline.Begin("end of the process");
    gKeepAliveHandler.Shutdown();
    KESTAL_SYSLOG_PLAIN(TORU_DBG_NOTICE, "%s Server Terminating.", KESTAL_MODULE);
    toru_dbg_stop();
    // The operation is not ended: its deadline also holds for the exit handlers of the libraries.
    return result;
}
