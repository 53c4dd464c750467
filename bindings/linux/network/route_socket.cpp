#include "bindings/linux/network/route_socket.h"

#include <linux/rtnetlink.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

#include "bindings/linux/kernel/netlink_socket.h"

namespace binding {

namespace {

/// To list all takes long when there is much, so there is a pause before it is done again.
constexpr std::chrono::seconds kPause{1};

/// After so many datagrams, others have their turn.
constexpr int kMostAtOnce = 256;

/// A part of a list fills a page, and up to 32 KiB where pages are larger.
using Buffer = std::array<std::byte, 32768>;

/// A list that the kernel is asked for.
struct List {
    int type;
    int family;
};

std::uint32_t Groups(RouteSocket::Scope scope) {
    return scope == RouteSocket::Scope::links ? RTMGRP_LINK : RTMGRP_LINK | RTMGRP_NEIGH;
}

std::vector<NetworkMessage> Messages(const Buffer& buffer, ssize_t size) {
    return ParseNetworkMessages(std::span(buffer).first(static_cast<std::size_t>(size)));
}

void AskFor(const List& list, int socket) {
    struct {
        nlmsghdr head;
        ifinfomsg info;
    } request{};
    // A request for neighbours has a shorter record, with the family at the same place.
    const std::size_t length =
        sizeof(nlmsghdr) + (list.type == RTM_GETLINK ? sizeof(ifinfomsg) : sizeof(ndmsg));
    request.head.nlmsg_len = static_cast<std::uint32_t>(length);
    request.head.nlmsg_type = static_cast<std::uint16_t>(list.type);
    request.head.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.info.ifi_family = static_cast<unsigned char>(list.family);
    if (send(socket, &request, length, 0) < 0) {
        ThrowSystemError("rtnetlink: request");
    }
}

/// Adds a whole list to @p table. The kernel makes each part of it while the one before is being
/// read, so this never waits.
void AddTo(NetworkTable& table, const List& list) {
    // The socket that tells changes will not do: while it is full of them, the kernel refuses.
    const FileDescriptor socket(OpenNetlink(NETLINK_ROUTE, 0));
    AskFor(list, socket.Number());
    Buffer buffer{};
    while (true) {
        const ssize_t size = ReceiveFromKernel(socket.Number(), buffer.data(), buffer.size());
        if (size < 0) {
            ThrowSystemError("rtnetlink: list");
        }
        for (const NetworkMessage& message : Messages(buffer, size)) {
            const auto* end = std::get_if<ListEnd>(&message);
            if (end == nullptr) {
                table.Apply(message, std::chrono::steady_clock::now());
                continue;
            }
            // A kernel without bridges has no forwarding tables.
            if (end->error != 0 && end->error != EOPNOTSUPP) {
                errno = end->error;
                ThrowSystemError("rtnetlink: list");
            }
            return;
        }
    }
}

}  // namespace

RouteSocket::RouteSocket(sd_event* newEvent, Scope newScope, std::function<void()> newChanged,
                         std::function<void(const std::string&)> newFailed)
    : event(newEvent),
      scope(newScope),
      changed(std::move(newChanged)),
      failed(std::move(newFailed)),
      changes(OpenNetlink(NETLINK_ROUTE, Groups(newScope))) {
    incoming.WatchDescriptor(event, changes.Number(), EPOLLIN,
                             [this](std::uint32_t /*events*/) { Receive(); });
    RenewAfter({});
}

void RouteSocket::RenewAfter(std::chrono::microseconds pause) {
    renewal.After(event, static_cast<std::uint64_t>(pause.count()), 0, [this] { Renew(); });
}

void RouteSocket::Renew() {
    try {
        NetworkTable listed;
        AddTo(listed, {RTM_GETLINK, AF_UNSPEC});
        if (scope == Scope::linksAndNeighbours) {
            AddTo(listed, {RTM_GETNEIGH, AF_UNSPEC});
            AddTo(listed, {RTM_GETNEIGH, AF_BRIDGE});
        }
        table = std::move(listed);
        complete = true;
    } catch (const std::system_error& error) {
        // Changes alone do not tell who is there.
        complete = false;
        RenewAfter(kPause);
        failed(error.what());
        return;
    }
    listedAt = std::chrono::steady_clock::now();
    changed();
}

void RouteSocket::Receive() {
    Buffer buffer{};
    bool isChanged = false;
    bool isLost = false;
    for (int count = 0; count < kMostAtOnce; ++count) {
        const ssize_t size = ReceiveFromKernel(changes.Number(), buffer.data(), buffer.size());
        if (size == kMessagesLost) {
            isLost = true;
            continue;
        }
        if (size < 0) {
            break;
        }
        for (const NetworkMessage& message : Messages(buffer, size)) {
            isChanged = table.Apply(message, std::chrono::steady_clock::now()) || isChanged;
        }
    }
    if ((isLost || table.HasRoomAgain()) && !renewal.IsArmed()) {
        // What got lost cannot be told. A change that comes after it has been listed does no harm.
        const auto since = std::chrono::steady_clock::now() - listedAt;
        RenewAfter(since < kPause
                       ? std::chrono::duration_cast<std::chrono::microseconds>(kPause - since)
                       : std::chrono::microseconds(0));
    }
    if (isChanged && complete) {
        changed();
    }
}

}  // namespace binding
