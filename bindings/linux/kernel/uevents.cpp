#include "bindings/linux/kernel/uevents.h"

#include <linux/netlink.h>
#include <sys/epoll.h>

#include <algorithm>
#include <array>
#include <utility>

#include "bindings/linux/kernel/netlink_socket.h"

namespace binding {

namespace {

constexpr std::uint32_t kKernelGroup = 1;

}  // namespace

std::string_view SubsystemIn(std::string_view datagram) {
    constexpr std::string_view kName = "SUBSYSTEM=";
    while (!datagram.empty()) {
        const std::size_t end = std::min(datagram.find('\0'), datagram.size());
        const std::string_view field = datagram.substr(0, end);
        if (field.starts_with(kName)) {
            return field.substr(kName.size());
        }
        datagram.remove_prefix(std::min(end + 1, datagram.size()));
    }
    return {};
}

Uevents::Uevents(sd_event* newEvent, std::string newSubsystem, std::function<void()> newOnEvent)
    : event(newEvent),
      subsystem(std::move(newSubsystem)),
      onEvent(std::move(newOnEvent)),
      socket(OpenNetlink(NETLINK_KOBJECT_UEVENT, kKernelGroup)) {
    incoming.WatchDescriptor(event, socket.Number(), EPOLLIN,
                             [this](std::uint32_t /*events*/) { Receive(); });
}

void Uevents::Receive() {
    // The kernel's events have 2 KiB at most.
    std::array<char, 8192> buffer{};
    bool isOurs = false;
    while (true) {
        const auto size = ReceiveFromKernel(socket.Number(), buffer.data(), buffer.size());
        if (size == kMessagesLost) {
            isOurs = true;
        } else if (size < 0) {
            break;
        } else {
            isOurs =
                isOurs || SubsystemIn({buffer.data(), static_cast<std::size_t>(size)}) == subsystem;
        }
    }
    if (isOurs) {
        // Reading what has changed can take longer than the events do to come.
        telling.Defer(event, [this] { onEvent(); });
    }
}

}  // namespace binding
