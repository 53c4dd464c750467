#include "bindings/linux/report_server.h"

#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "bindings/linux/kernel/unix_socket.h"

namespace binding {

namespace {

/// Clients that do not read must not cost more than this.
constexpr std::size_t kMostClients = 4;
constexpr std::uint64_t kSecond = 1'000'000;

void Listen(int listener, const std::string& path) {
    const auto address = SocketAddress(path);
    if (!address) {
        ThrowSystemError(path);
    }
    const FileDescriptor other(ConnectToSocket(path, SOCK_STREAM));
    if (other.Number() >= 0) {
        // A service that listens here already keeps its socket.
        errno = EADDRINUSE;
        ThrowSystemError(path);
    }
    // A process that was killed has left its socket behind.
    (void)unlink(path.c_str());
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as sockets want it
    const auto* const name = reinterpret_cast<const sockaddr*>(&*address);
    if (fchmod(listener, S_IRUSR | S_IWUSR) != 0 || bind(listener, name, sizeof *address) != 0 ||
        listen(listener, static_cast<int>(kMostClients)) != 0) {
        ThrowSystemError(path);
    }
}

}  // namespace

nlohmann::json ReportOn(const std::vector<std::unique_ptr<Source>>& sources) {
    nlohmann::json report = nlohmann::json::array();
    for (const auto& source : sources) {
        nlohmann::json one = {{"name", source->Name()},
                              {"state", StateName(source->GetState())},
                              {"since", source->Since()}};
        if (source->GetState() == Source::State::lost) {
            one["reason"] = source->Reason();
        }
        one["said"] = source->Said();
        report.push_back(std::move(one));
    }
    return report;
}

struct ReportServer::Client {
    explicit Client(int descriptor) : socket(descriptor) {}

    FileDescriptor socket;
    EventSource writing;
    std::string report;
    std::size_t sent = 0;
};

ReportServer::ReportServer(sd_event* newEvent, std::string newPath, MakeReport newMakeReport)
    : event(newEvent),
      path(std::move(newPath)),
      makeReport(std::move(newMakeReport)),
      listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    Listen(listener.Number(), path);
    AwaitClients();
}

ReportServer::~ReportServer() {
    (void)unlink(path.c_str());
}

void ReportServer::AwaitClients() {
    connections.WatchDescriptor(event, listener.Number(), EPOLLIN,
                                [this](std::uint32_t /*events*/) { Accept(); });
}

void ReportServer::Accept() {
    const int descriptor =
        // cppcheck-suppress nullPointer ; nobody asks for the address of the client
        accept4(listener.Number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (descriptor < 0) {
        // Without a free descriptor, the client goes on waiting, and the loop must not turn
        // meanwhile.
        connections.After(event, kSecond, kSecond, [this] { AwaitClients(); });
        return;
    }
    const auto client = std::make_shared<Client>(descriptor);
    if (clients.size() >= kMostClients) {
        clients.erase(clients.begin());
    }
    clients.push_back(client);
    client->report = makeReport();
    client->writing.WatchDescriptor(
        event, descriptor, EPOLLOUT,
        [this, weak = std::weak_ptr<Client>(client)](std::uint32_t /*events*/) {
            if (const auto served = weak.lock()) {
                Send(served);
            }
        });
}

void ReportServer::Send(const std::shared_ptr<Client>& client) {
    const std::string_view rest = std::string_view(client->report).substr(client->sent);
    const ssize_t sent = send(client->socket.Number(), rest.data(), rest.size(), MSG_NOSIGNAL);
    if (sent < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    client->sent += sent < 0 ? rest.size() : static_cast<std::size_t>(sent);
    if (client->sent >= client->report.size()) {
        Drop(client);
    }
}

void ReportServer::Drop(const std::shared_ptr<Client>& client) {
    std::erase(clients, client);
}

}  // namespace binding
