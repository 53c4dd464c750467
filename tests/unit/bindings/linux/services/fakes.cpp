#include "tests/unit/bindings/linux/services/fakes.h"

#include <netinet/in.h>
#include <poll.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace {

template <typename Address>
const sockaddr* Raw(const Address& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

template <typename Address>
int Bound(int kind, const Address& address) {
    const int descriptor = ::socket(address.family(), kind | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0 || ::bind(descriptor, Raw(address.raw), sizeof(address.raw)) != 0) {
        throw std::runtime_error("no socket for the test");
    }
    return descriptor;
}

struct FileAddress {
    explicit FileAddress(const std::filesystem::path& path) {
        std::filesystem::create_directories(path.parent_path());
        std::filesystem::remove(path);
        raw.sun_family = AF_UNIX;
        path.string().copy(raw.sun_path, sizeof(raw.sun_path) - 1);
    }
    static int family() { return AF_UNIX; }
    sockaddr_un raw{};
};

struct PortAddress {
    PortAddress() {
        raw.sin_family = AF_INET;
        raw.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    }
    static int family() { return AF_INET; }
    sockaddr_in raw{};
};

int Listening(int descriptor) {
    if (listen(descriptor, 8) != 0) {
        throw std::runtime_error("no socket for the test");
    }
    return descriptor;
}

}  // namespace

FakeHostapd::FakeHostapd(std::filesystem::path newPath)
    : path(std::move(newPath)), socket(Bound(SOCK_DGRAM, FileAddress(path))) {}

FakeHostapd::~FakeHostapd() {
    std::filesystem::remove(path);
}

void FakeHostapd::Serve() {
    std::array<char, 256> buffer{};
    sockaddr_un sender{};
    // A client that asks one thing after another does so at once.
    pollfd input{socket.Number(), POLLIN, 0};
    while (!silent && poll(&input, 1, 1) == 1) {
        socklen_t size = sizeof(sender);
        const ssize_t length = recvfrom(socket.Number(), buffer.data(), buffer.size(), 0,
                                        reinterpret_cast<sockaddr*>(&sender), &size);
        if (length < 0) {
            break;
        }
        const std::string_view command(buffer.data(), static_cast<std::size_t>(length));
        if (command == "ATTACH") {
            peer = sender;
            peerSize = size;
        }
        if (asked) {
            asked(command);
        }
        const std::string reply = ReplyTo(command);
        (void)sendto(socket.Number(), reply.data(), reply.size(), 0, Raw(sender), size);
    }
}

void FakeHostapd::Say(const std::string& event) {
    const std::string message = "<3>" + event;
    (void)sendto(socket.Number(), message.data(), message.size(), 0, Raw(peer), peerSize);
}

std::string FakeHostapd::ReplyTo(std::string_view command) {
    if (command == "ATTACH") {
        return attached;
    }
    if (command == "PING") {
        return "PONG\n";
    }
    if (command == "STATUS") {
        ++statuses;
        if (!nonsense.empty()) {
            return nonsense;
        }
        return "state=" + state + "\nfreq=2437\nbss[0]=wlan0\nssid[0]=Kestal\n";
    }
    if (command == "STA-FIRST") {
        return NextStation(0);
    }
    if (command.starts_with("STA-NEXT ") && refusals > 0) {
        --refusals;
        return "FAIL\n";
    }
    if (command.starts_with("STA-NEXT ")) {
        return NextStation(binding::MacIn(command.substr(9)).value_or(0));
    }
    return "UNKNOWN COMMAND\n";
}

std::string FakeHostapd::NextStation(binding::MacAddress after) {
    if (endless) {
        return binding::MacText(after + 1) + "\nflags=[AUTHORIZED]\n";
    }
    const auto next = stations.upper_bound(after);
    return next == stations.end() ? "" : binding::MacText(*next) + "\nflags=[AUTHORIZED]\n";
}

FakeServer::FakeServer() : listener(Listening(Bound(SOCK_STREAM, PortAddress()))) {
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    getsockname(listener.Number(), reinterpret_cast<sockaddr*>(&address), &size);
    port = ntohs(address.sin_port);
}

FakeServer::FakeServer(const std::filesystem::path& path) : FakeServer(path, Start::later) {
    Listen();
}

FakeServer::FakeServer(const std::filesystem::path& path, Start /*start*/)
    : listener(Bound(SOCK_STREAM, FileAddress(path))), file(path) {}

void FakeServer::Listen() {
    (void)Listening(listener.Number());
}

FakeServer::~FakeServer() {
    if (!file.empty()) {
        std::filesystem::remove(file);
    }
}

void FakeServer::Serve() {
    const int accepted = accept4(listener.Number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (accepted >= 0) {
        connection.emplace(accepted);
        ++connections;
        Say(greeting);
    }
    std::array<char, 4096> buffer{};
    while (connection) {
        const ssize_t size = recv(connection->Number(), buffer.data(), buffer.size(), 0);
        if (size <= 0) {
            break;
        }
        heard.append(buffer.data(), static_cast<std::size_t>(size));
    }
}

void FakeServer::Say(std::string_view bytes) {
    if (connection) {
        (void)send(connection->Number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }
}
