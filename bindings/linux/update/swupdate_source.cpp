#include "bindings/linux/update/swupdate_source.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <span>
#include <system_error>

#include "bindings/linux/board.h"
#include "bindings/linux/kernel/unix_socket.h"
#include "bindings/linux/log.h"

namespace binding {

namespace {

constexpr std::uint64_t kSecond = 1'000'000;
constexpr std::uint64_t kFirstRetry = 100'000;

}  // namespace

void SwupdateSource::Start() {
    try {
        watch.emplace(GetBoard().Event(), GetBoard().GetSettings().updateSocket,
                      [this] { OnSocket(); });
    } catch (const std::system_error& error) {
        LINUX_LOG(TORU_DBG_NOTICE, "%s: %s", Name().c_str(), error.what());
    }
    Connect();
}

void SwupdateSource::Check() {
    Connect();
}

void SwupdateSource::OnSocket() {
    retryAfter = kFirstRetry;
    connecting.Defer(GetBoard().Event(), [this] { Connect(); });
}

void SwupdateSource::TryAgainLater() {
    // SWUpdate first makes its socket and then listens to it, and nothing tells when it does.
    const std::uint64_t longest = GetBoard().GetSettings().checkSeconds * kSecond;
    if (retryAfter != 0 && retryAfter < longest) {
        connecting.After(GetBoard().Event(), retryAfter, retryAfter / 4, [this] { Connect(); });
        retryAfter *= 2;
    }
}

void SwupdateSource::Connect() {
    if (socket) {
        return;
    }
    const std::string& path = GetBoard().GetSettings().updateSocket;
    const int descriptor = ConnectToSocket(path, SOCK_STREAM);
    if (descriptor < 0) {
        const bool isRefused = errno == ECONNREFUSED;
        Disconnect(path + ": " + std::strerror(errno));
        if (isRefused) {
            TryAgainLater();
        }
        return;
    }
    socket.emplace(descriptor);
    retryAfter = 0;
    progress.Restart();
    complained = false;
    incoming.WatchDescriptor(GetBoard().Event(), descriptor, EPOLLIN,
                             [this](std::uint32_t /*events*/) { Receive(); });
    Present();
}

void SwupdateSource::Receive() {
    std::array<std::byte, 4096> buffer{};
    const ssize_t size = recv(socket->Number(), buffer.data(), buffer.size(), 0);
    if (size > 0) {
        const bool isChanged =
            progress.Read(std::span(buffer).first(static_cast<std::size_t>(size)));
        const std::string& problem = progress.Problem();
        if (!problem.empty() && !complained) {
            LINUX_LOG(TORU_DBG_ERROR, "swupdate: %s", problem.c_str());
        }
        complained = complained || !problem.empty();
        if (isChanged) {
            Changed();
        }
    } else if (size == 0 || (errno != EAGAIN && errno != EINTR)) {
        Disconnect("SWUpdate has closed the connection");
    }
}

void SwupdateSource::Disconnect(const std::string& why) {
    incoming.Reset();
    socket.reset();
    if (GetState() == State::present) {
        Lost(why);
    } else if (GetState() == State::unknown) {
        Absent();
    }
}

void SwupdateSource::Fill(Device& device) const {
    FillUpdate(device, progress.State());
}

void SwupdateSource::Fail(Device& device, int code) const {
    FailUpdate(device, code);
}

nlohmann::json SwupdateSource::Said() const {
    return DescribeUpdate(progress.State());
}

}  // namespace binding
