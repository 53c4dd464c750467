#include "service/request_acceptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <csignal>

#include "service/main_thread_signals.h"
#include "service/process.h"

namespace {

bool Listens(int descriptor) {
    int listens = 0;
    socklen_t size = sizeof(listens);
    return getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size) == 0 && listens != 0;
}

}  // namespace

RequestAcceptor::RequestAcceptor(FCGX_Request& fcgiRequest)
    : request(fcgiRequest),
      listens(Listens(request.listen_sock)),
      waitingMask(MaskLettingMainThreadSignalsIn()) {
    if (listens) {
        // libfcgi drops a connection that brings no request and goes on accepting: without this it
        // would wait there, deaf to signals.
        fcntl(request.listen_sock, F_SETFL, fcntl(request.listen_sock, F_GETFL) | O_NONBLOCK);
    }
}

int RequestAcceptor::Accept() {
    for (;;) {
        // A process that waits is stuck in nothing.
        gOperationDeadline.End();
        // Where the web server has given no socket that listens, accepting fails at once.
        const bool signalled = listens && !Wait();
        gOperationDeadline.Begin("request (receipt)");
        if (signalled && request.ipcFd >= 0) {
            // A signal ends the waiting on a connection that the web server keeps open; libfcgi
            // would read from it and look at nothing else.
            FCGX_Free(&request, 1);
        }
        errno = 0;
        const int result = FCGX_Accept_r(&request);
        if (result >= 0) {
            return result;
        }
        if (result != -EAGAIN) {
            // No request comes any more. What was built for them is taken down next.
            gOperationDeadline.Begin("end of the process");
            return result;
        }
    }
}

bool RequestAcceptor::Wait() const {
    // ppoll lets no signal in while requests keep coming.
    if (IsMainThreadSignalPending()) {
        sigsuspend(&waitingMask);
        return false;
    }
    // A connection that the web server keeps open comes before new ones.
    pollfd source{};
    source.fd = request.ipcFd >= 0 ? request.ipcFd : request.listen_sock;
    source.events = POLLIN;
    return ppoll(&source, 1, nullptr, &waitingMask) > 0;
}
