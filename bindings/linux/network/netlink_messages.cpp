#include "bindings/linux/network/netlink_messages.h"

#include <arpa/inet.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

namespace binding {

namespace {

using Bytes = std::span<const std::byte>;

/// IFF_LOWER_UP of linux/if.h, which cannot be included together with net/if.h.
constexpr unsigned int kLowerUp = 1U << 16U;
constexpr std::size_t kMacBytes = 6;

/// All headers and attributes begin at a multiple of four bytes.
std::size_t Aligned(std::size_t size) {
    return (size + 3) & ~std::size_t{3};
}

Bytes From(Bytes bytes, std::size_t offset) {
    return bytes.subspan(std::min(offset, bytes.size()));
}

/// The record at the beginning of @p bytes; nothing when they are too few.
template <typename Record>
std::optional<Record> RecordAt(Bytes bytes) {
    if (bytes.size() < sizeof(Record)) {
        return std::nullopt;
    }
    Record record{};
    std::memcpy(&record, bytes.data(), sizeof(record));
    return record;
}

/// Calls @p take with type and contents of each attribute.
template <typename Take>
void ForEachAttribute(Bytes bytes, Take take) {
    while (const auto head = RecordAt<rtattr>(bytes)) {
        if (head->rta_len < sizeof(rtattr) || head->rta_len > bytes.size()) {
            return;
        }
        take(head->rta_type & NLA_TYPE_MASK,
             bytes.subspan(sizeof(rtattr), head->rta_len - sizeof(rtattr)));
        bytes = From(bytes, Aligned(head->rta_len));
    }
}

std::string TextIn(Bytes bytes) {
    std::string text;
    for (const std::byte byte : bytes) {
        if (byte == std::byte{0}) {
            break;
        }
        text += static_cast<char>(byte);
    }
    return text;
}

std::optional<MacAddress> MacOf(Bytes bytes) {
    if (bytes.size() != kMacBytes) {
        return std::nullopt;
    }
    MacAddress address = 0;
    for (const std::byte byte : bytes) {
        address = address << 8U | std::to_integer<MacAddress>(byte);
    }
    return address;
}

std::string AddressText(int family, Bytes bytes) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    const std::size_t size = family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr);
    if (bytes.size() != size || inet_ntop(family, bytes.data(), text.data(),
                                          static_cast<socklen_t>(text.size())) == nullptr) {
        return {};
    }
    return text.data();
}

void ReadLink(Bytes body, bool gone, std::vector<NetworkMessage>& messages) {
    const auto info = RecordAt<ifinfomsg>(body);
    // A bridge tells of its ports in messages of its own, in which "deleted" means that the
    // interface has left the bridge.
    if (!info || info->ifi_family == AF_BRIDGE) {
        return;
    }
    if (gone) {
        messages.emplace_back(LinkGone{info->ifi_index});
        return;
    }
    Link link{.index = info->ifi_index,
              .name = {},
              .up = (info->ifi_flags & IFF_UP) != 0,
              .carrier = (info->ifi_flags & kLowerUp) != 0};
    ForEachAttribute(From(body, Aligned(sizeof(ifinfomsg))), [&](int type, Bytes value) {
        if (type == IFLA_IFNAME) {
            link.name = Printable(TextIn(value), IF_NAMESIZE);
        }
    });
    messages.emplace_back(std::move(link));
}

/// When a device has last answered, as the kernel tells it in ticks of its clock. The kernel
/// changes an entry when it has heard of the device, so the newer one of both counts; but also when
/// it begins to ask the device, which tells nothing.
std::chrono::seconds QuietTime(const nda_cacheinfo& cache, bool asked) {
    const long ticks = sysconf(_SC_CLK_TCK);
    const std::uint32_t quiet =
        asked ? cache.ndm_confirmed : std::min(cache.ndm_confirmed, cache.ndm_updated);
    return std::chrono::seconds(std::int64_t{quiet} / (ticks > 0 ? ticks : 100));
}

/// Whether a device in @p state is there. A device that has been quiet for a while is "stale". An
/// entry that somebody has written ("permanent") tells nothing; in a forwarding table it is a
/// port's own address.
bool IsPresent(unsigned int state, bool forwarding) {
    constexpr unsigned int kSeen = NUD_REACHABLE | NUD_STALE | NUD_DELAY | NUD_PROBE;
    // The forwarding table drops a quiet device after minutes, so being in it is enough.
    return (state & kSeen) != 0 || (forwarding && (state & (NUD_PERMANENT | NUD_NOARP)) == 0);
}

void ReadNeighbour(Bytes body, bool gone, std::vector<NetworkMessage>& messages) {
    const auto info = RecordAt<ndmsg>(body);
    const int family = info ? info->ndm_family : AF_UNSPEC;
    if (family != AF_INET && family != AF_INET6 && family != AF_BRIDGE) {
        return;
    }
    Neighbour neighbour{.index = info->ndm_ifindex,
                        .forwarding = family == AF_BRIDGE,
                        .mac = 0,
                        .address = {},
                        .present = !gone && IsPresent(info->ndm_state, family == AF_BRIDGE)};
    if (family != AF_BRIDGE) {
        neighbour.asked = info->ndm_state == NUD_DELAY || info->ndm_state == NUD_PROBE;
        if (neighbour.asked || info->ndm_state == NUD_STALE) {
            neighbour.quiet.emplace(0);
        }
    }
    ForEachAttribute(From(body, Aligned(sizeof(ndmsg))), [&](int type, Bytes value) {
        const auto cache = RecordAt<nda_cacheinfo>(value);
        if (type == NDA_CACHEINFO && neighbour.quiet && cache) {
            neighbour.quiet = QuietTime(*cache, neighbour.asked);
        } else if (type == NDA_LLADDR) {
            neighbour.mac = MacOf(value).value_or(0);
        } else if (type == NDA_DST && family != AF_BRIDGE) {
            neighbour.address = AddressText(family, value);
        }
    });
    // An address that nobody answers for yet has no hardware address.
    neighbour.present = neighbour.present && neighbour.mac != 0;
    messages.emplace_back(std::move(neighbour));
}

}  // namespace

std::vector<NetworkMessage> ParseNetworkMessages(Bytes datagram) {
    std::vector<NetworkMessage> messages;
    while (const auto head = RecordAt<nlmsghdr>(datagram)) {
        if (head->nlmsg_len < sizeof(nlmsghdr) || head->nlmsg_len > datagram.size()) {
            break;
        }
        const Bytes body = datagram.subspan(sizeof(nlmsghdr), head->nlmsg_len - sizeof(nlmsghdr));
        switch (head->nlmsg_type) {
            case RTM_NEWLINK:
            case RTM_DELLINK:
                ReadLink(body, head->nlmsg_type == RTM_DELLINK, messages);
                break;
            case RTM_NEWNEIGH:
            case RTM_DELNEIGH:
                ReadNeighbour(body, head->nlmsg_type == RTM_DELNEIGH, messages);
                break;
            case NLMSG_DONE:
            case NLMSG_ERROR:
                // Both begin with an error's number below zero, or with 0.
                messages.emplace_back(ListEnd{-RecordAt<int>(body).value_or(0)});
                break;
            default:
                break;
        }
        datagram = From(datagram, Aligned(head->nlmsg_len));
    }
    return messages;
}

}  // namespace binding
