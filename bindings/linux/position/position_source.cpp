#include "bindings/linux/position/position_source.h"

#include <netdb.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>

#include "bindings/linux/board.h"
#include "bindings/linux/kernel/unix_socket.h"
#include "bindings/linux/log.h"

namespace binding {

namespace {

constexpr std::uint64_t kSecond = 1'000'000;
constexpr const char* kWatch = "?WATCH={\"enable\":true,\"json\":true};\n";
constexpr const char* kAskVersion = "?VERSION;\n";
/// gpsd's own limit is 10 KiB.
constexpr std::size_t kLongestLine = 65536;

struct AddressDeleter {
    void operator()(addrinfo* address) const { freeaddrinfo(address); }
};

using Address = std::unique_ptr<addrinfo, AddressDeleter>;

/// The address of gpsd; null when the settings give none. A name would have to be looked up, which
/// can take long.
Address AddressOf(const Settings& settings) {
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int result =
        getaddrinfo(settings.gpsdHost.c_str(), settings.gpsdPort.c_str(), &hints, &found);
    return Address(result == 0 ? found : nullptr);
}

/// Begins to connect; returns the socket, or -1 and errno.
int BeginToConnect(const Settings& settings) {
    const Address address = AddressOf(settings);
    if (!address) {
        errno = EINVAL;
        return -1;
    }
    const int descriptor =
        ::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) {
        return -1;
    }
    if (connect(descriptor, address->ai_addr, address->ai_addrlen) != 0 && errno != EINPROGRESS) {
        return CloseAfterFailure(descriptor);
    }
    return descriptor;
}

}  // namespace

void PositionSource::Start() {
    const Settings& settings = GetBoard().GetSettings();
    if (!AddressOf(settings)) {
        LINUX_LOG(TORU_DBG_ERROR, "%s: gpsdHost \"%s\" and gpsdPort \"%s\" are not numeric",
                  Name().c_str(), settings.gpsdHost.c_str(), settings.gpsdPort.c_str());
    }
    Connect();
}

void PositionSource::Check() {
    if (connected) {
        Send(kAskVersion);
    } else if (!socket) {
        Connect();
    }
}

void PositionSource::Connect() {
    const int descriptor = BeginToConnect(GetBoard().GetSettings());
    if (descriptor < 0) {
        Disconnect(std::strerror(errno));
        return;
    }
    socket.emplace(descriptor);
    traffic.WatchDescriptor(GetBoard().Event(), descriptor, EPOLLOUT,
                            [this](std::uint32_t /*events*/) { OnConnected(); });
    ExpectAnswer();
}

void PositionSource::OnConnected() {
    int error = 0;
    socklen_t size = sizeof(error);
    if (getsockopt(socket->Number(), SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) {
        Disconnect(std::strerror(error));
        return;
    }
    connected = true;
    complained = {};
    traffic.WatchDescriptor(GetBoard().Event(), socket->Number(), EPOLLIN,
                            [this](std::uint32_t /*events*/) { Receive(); });
    Send(kWatch);
}

void PositionSource::Receive() {
    std::array<char, 4096> buffer{};
    const ssize_t size = recv(socket->Number(), buffer.data(), buffer.size(), 0);
    if (size <= 0) {
        if (size == 0 || (errno != EAGAIN && errno != EINTR)) {
            Disconnect(size == 0 ? "gpsd has closed the connection" : std::strerror(errno));
        }
        return;
    }
    limit.Reset();
    line.append(buffer.data(), static_cast<std::size_t>(size));
    bool isChanged = false;
    bool isHeard = false;
    std::string_view rest = line;
    while (rest.find('\n') != std::string_view::npos) {
        const std::size_t end = rest.find('\n');
        isChanged = receivers.Read(rest.substr(0, end)) || isChanged;
        NoteFlaws();
        rest.remove_prefix(end + 1);
        retryAfter = 0;
        isHeard = true;
    }
    line.erase(0, line.size() - rest.size());
    if (line.size() > kLongestLine) {
        Disconnect("gpsd sends a line without an end");
    } else if (isHeard && GetState() != State::present) {
        Present();
    } else if (isChanged) {
        Changed();
    }
}

void PositionSource::Send(const char* request) {
    const std::size_t size = std::strlen(request);
    if (send(socket->Number(), request, size, MSG_NOSIGNAL) != static_cast<ssize_t>(size)) {
        Disconnect("gpsd takes no requests");
        return;
    }
    ExpectAnswer();
}

void PositionSource::ExpectAnswer() {
    // An answer that is overdue stays overdue when something else is asked.
    if (limit.IsArmed()) {
        return;
    }
    const std::uint64_t patience = GetBoard().GetSettings().silenceSeconds * kSecond;
    limit.After(GetBoard().Event(), patience, patience / 16,
                [this] { Disconnect("gpsd does not answer"); });
}

void PositionSource::NoteFlaws() {
    const GpsFlaws& flaws = receivers.Flaws();
    if (flaws.line && !complained.line) {
        LINUX_LOG(TORU_DBG_ERROR, "position: gpsd sends a line that is no JSON object");
    }
    if (flaws.mode && !complained.mode) {
        LINUX_LOG(TORU_DBG_ERROR, "position: the mode that gpsd tells is no number");
    }
    // What is wrong now and then does not fill the log.
    complained = {.line = complained.line || flaws.line, .mode = complained.mode || flaws.mode};
}

void PositionSource::Disconnect(const std::string& why) {
    traffic.Reset();
    limit.Reset();
    socket.reset();
    connected = false;
    line.clear();
    receivers.Restart();
    if (GetState() == State::present || GetState() == State::lost) {
        Lost(why);
        // A daemon that is started again is back soon. One that stays away is looked for at each
        // check only.
        const std::uint64_t longest = GetBoard().GetSettings().checkSeconds * kSecond;
        retryAfter = retryAfter == 0 ? kSecond : std::min(retryAfter * 2, longest);
        if (retryAfter < longest) {
            retry.After(GetBoard().Event(), retryAfter, retryAfter / 4, [this] {
                if (!socket) {
                    Connect();
                }
            });
        }
    } else {
        Absent();
    }
}

void PositionSource::Fill(Device& device) const {
    Tell(device.getGPSStatus, receivers.Status());
}

void PositionSource::Fail(Device& device, int code) const {
    FailAll(code, device.getGPSStatus);
}

nlohmann::json PositionSource::Said() const {
    return {{"status", receivers.Status()}};
}

}  // namespace binding
