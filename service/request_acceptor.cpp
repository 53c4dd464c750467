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
      waitingMask(WaitingSignalMask()) {
    if (listens) {
        // libfcgi drops a connection that brings no request and accepts the next one. On a blocking
        // socket it would wait there, where the signals are blocked.
        fcntl(request.listen_sock, F_SETFL, fcntl(request.listen_sock, F_GETFL) | O_NONBLOCK);
    }
}

int RequestAcceptor::Accept() {
    for (;;) {
        // Waiting for a request is no operation: it has no deadline.
        gOperationDeadline.End();
        // If the web server has not passed a listening socket, accepting fails immediately.
        const bool signalled = listens && !Wait();
        gOperationDeadline.Begin("request (receipt)");
        if (signalled && request.ipcFd >= 0) {
            // A signal was handled while the web server kept the last connection open. libfcgi
            // would now block in reading from that connection, so it is closed.
            FCGX_Free(&request, 1);
        }
        errno = 0;
        const int result = FCGX_Accept_r(&request);
        if (result >= 0) {
            return result;
        }
        if (result != -EAGAIN) {
            // There are no more requests. The caller destroys next what it had for them.
            gOperationDeadline.Begin("end of the process");
            return result;
        }
    }
}

bool RequestAcceptor::Wait() const {
    // ppoll returns without delivering a pending signal if a request is waiting already. Under
    // constant load, SIGTERM would never be handled.
    if (IsMainThreadSignalPending()) {
        sigsuspend(&waitingMask);
        return false;
    }
    // If the web server keeps the last connection open, the next request comes on it.
    pollfd source{};
    source.fd = request.ipcFd >= 0 ? request.ipcFd : request.listen_sock;
    source.events = POLLIN;
    return ppoll(&source, 1, nullptr, &waitingMask) > 0;
}
