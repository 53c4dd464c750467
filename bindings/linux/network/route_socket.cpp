#include "bindings/linux/network/route_socket.h"

#include <linux/rtnetlink.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <cstring>
#include <span>
#include <utility>

#include "bindings/linux/kernel/netlink_socket.h"

namespace binding {

namespace {

std::uint32_t Groups(RouteSocket::Scope scope) {
    return scope == RouteSocket::Scope::links ? RTMGRP_LINK : RTMGRP_LINK | RTMGRP_NEIGH;
}

}  // namespace

RouteSocket::RouteSocket(sd_event* newEvent, Scope newScope, std::function<void()> newChanged)
    : scope(newScope),
      changed(std::move(newChanged)),
      socket(OpenNetlink(NETLINK_ROUTE, Groups(newScope))) {
    incoming.WatchDescriptor(newEvent, socket.Number(), EPOLLIN,
                             [this](std::uint32_t /*events*/) { Receive(); });
    AskForAll();
}

void RouteSocket::AskForAll() {
    listed.Clear();
    lists = {{RTM_GETLINK, AF_UNSPEC}};
    if (scope == Scope::linksAndNeighbours) {
        lists.push_back({RTM_GETNEIGH, AF_UNSPEC});
        lists.push_back({RTM_GETNEIGH, AF_BRIDGE});
    }
    AskForNext();
}

void RouteSocket::AskForNext() {
    const List list = lists.front();
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
    if (send(socket.Number(), &request, length, 0) < 0) {
        ThrowSystemError("rtnetlink: request");
    }
}

void RouteSocket::Receive() {
    // A part of a list fills a page, and up to 32 KiB where pages are larger.
    std::array<std::byte, 32768> buffer{};
    bool isChanged = false;
    while (true) {
        const ssize_t size = ReceiveFromKernel(socket.Number(), buffer.data(), buffer.size());
        if (size == kMessagesLost) {
            // What got lost cannot be told, so all is listed again. The kernel refuses a second
            // list while it tells one.
            if (lists.empty()) {
                AskForAll();
            } else {
                again = true;
            }
            continue;
        }
        if (size < 0) {
            break;
        }
        const auto messages =
            ParseNetworkMessages(std::span(buffer).first(static_cast<std::size_t>(size)));
        for (const NetworkMessage& message : messages) {
            isChanged = Take(message) || isChanged;
        }
    }
    if (lists.empty() && table.HasRoomAgain()) {
        AskForAll();
    }
    if (isChanged && complete) {
        changed();
    }
}

bool RouteSocket::Take(const NetworkMessage& message) {
    const auto now = std::chrono::steady_clock::now();
    bool isChanged = table.Apply(message, now);
    if (lists.empty()) {
        return isChanged;
    }
    listed.Apply(message, now);
    if (std::holds_alternative<ListComplete>(message)) {
        lists.pop_front();
        if (lists.empty() && again) {
            again = false;
            AskForAll();
        } else if (lists.empty()) {
            table = std::move(listed);
            complete = true;
            isChanged = true;
        } else {
            AskForNext();
        }
    }
    return isChanged;
}

}  // namespace binding
