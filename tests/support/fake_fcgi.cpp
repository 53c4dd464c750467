#include "tests/support/fake_fcgi.h"

#include <fcgiapp.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <deque>
#include <memory>

#include "bindings/recording/recording.h"

namespace fake_fcgi {

int gInitStatus = 0;
int gInitRequestStatus = 0;

namespace {

constexpr int kNoMoreRequests = -4;

struct Exchange {
    Environment environment;
    std::string body;
    std::vector<char*> variables;
    FCGX_Stream in{};
    FCGX_Stream out{};
    std::array<unsigned char, 65536> output{};

    std::string Written() {
        return {reinterpret_cast<char*>(output.data()),
                static_cast<std::size_t>(out.wrNext - output.data())};
    }
};

/// A listening socket that always has a waiting connection.
int ReadySocket() {
    static const int kReady = [] {
        const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        // An abstract name that the kernel chooses, so that no file is created.
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (void)bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(address.sun_family));
        (void)listen(listener, 1);
        socklen_t size = sizeof(address);
        (void)getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
        const int waiting = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        (void)connect(waiting, reinterpret_cast<sockaddr*>(&address), size);
        return listener;
    }();
    return kReady;
}

std::deque<int> gAcceptResults;
std::deque<std::unique_ptr<Exchange>> gExchanges;
std::size_t gNext = 0;

void EndOfInput(FCGX_Stream* stream) {
    stream->isClosed = 1;
}

void OutputFull(FCGX_Stream* stream, int /*doClose*/) {
    stream->isClosed = 1;
}

void Open(Exchange& exchange, FCGX_Request& request) {
    for (std::string& variable : exchange.environment) {
        exchange.variables.push_back(variable.data());
    }
    exchange.variables.push_back(nullptr);
    auto* body = reinterpret_cast<unsigned char*>(exchange.body.data());
    exchange.in.rdNext = body;
    exchange.in.stop = body + exchange.body.size();
    exchange.in.stopUnget = body;
    exchange.in.isReader = 1;
    exchange.in.fillBuffProc = EndOfInput;
    exchange.out.wrNext = exchange.output.data();
    exchange.out.stop = exchange.output.data() + exchange.output.size();
    exchange.out.emptyBuffProc = OutputFull;
    request.envp = exchange.variables.data();
    request.in = &exchange.in;
    request.out = &exchange.out;
}

}  // namespace

void Reset() {
    gExchanges.clear();
    gAcceptResults.clear();
    gNext = 0;
    gInitStatus = 0;
    gInitRequestStatus = 0;
}

void Queue(Environment environment, std::string body) {
    gExchanges.push_back(std::make_unique<Exchange>());
    gExchanges.back()->environment = std::move(environment);
    gExchanges.back()->body = std::move(body);
}

void QueueAcceptResult(int result) {
    gAcceptResults.push_back(result);
}

std::string Answer(std::size_t index) {
    return gExchanges.at(index)->Written();
}

}  // namespace fake_fcgi

int FCGX_Init() {
    const recording::InsidePlatform inside;
    recording::Record("FCGX_Init()");
    return fake_fcgi::gInitStatus;
}

int FCGX_InitRequest(FCGX_Request* request, int sock, int flags) {
    const recording::InsidePlatform inside;
    recording::Record("FCGX_InitRequest(" + std::to_string(sock) + ", " + std::to_string(flags) +
                      ")");
    *request = FCGX_Request{};
    request->ipcFd = -1;
    request->listen_sock = fake_fcgi::ReadySocket();
    return fake_fcgi::gInitRequestStatus;
}

int FCGX_Accept_r(FCGX_Request* request) {
    const recording::InsidePlatform inside;
    using fake_fcgi::gExchanges;
    using fake_fcgi::gNext;
    recording::Record("FCGX_Accept_r()");
    if (!fake_fcgi::gAcceptResults.empty()) {
        const int result = fake_fcgi::gAcceptResults.front();
        fake_fcgi::gAcceptResults.pop_front();
        return result;
    }
    if (gNext == gExchanges.size()) {
        return fake_fcgi::kNoMoreRequests;
    }
    fake_fcgi::Open(*gExchanges[gNext], *request);
    ++gNext;
    return 0;
}

void FCGX_Free(FCGX_Request* request, int close) {
    const recording::InsidePlatform inside;
    recording::Record("FCGX_Free(" + std::to_string(close) + ")");
    request->ipcFd = -1;
}

void FCGX_Finish_r(FCGX_Request* request) {
    const recording::InsidePlatform inside;
    recording::Record("FCGX_Finish_r()");
    request->in = nullptr;
    request->out = nullptr;
    request->envp = nullptr;
}
