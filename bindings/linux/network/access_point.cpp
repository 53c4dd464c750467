#include "bindings/linux/network/access_point.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "bindings/linux/kernel/unix_socket.h"
#include "bindings/linux/log.h"

namespace binding {

namespace {

constexpr const char* kAttach = "ATTACH";
constexpr const char* kStatus = "STATUS";
constexpr const char* kPing = "PING";
constexpr const char* kFirstStation = "STA-FIRST";
constexpr const char* kNextStation = "STA-NEXT ";
/// Of the list of stations.
constexpr unsigned int kMostRestarts = 8;
/// One more than clients are listed, so that it shows that there are more.
constexpr std::size_t kMostStations = kMostClients + 1;

}  // namespace

AccessPoint::AccessPoint(sd_event* newEvent, Place newPlace, std::function<void()> newChanged)
    : event(newEvent),
      place(std::move(newPlace)),
      changed(std::move(newChanged)),
      watch(newEvent, std::filesystem::path(place.folder) / place.interface, [this] {
          // A socket that appears, and its rights, come in several events.
          connecting.Defer(event, [this] { Connect(); });
      }) {
    connecting.Defer(event, [this] { Connect(); });
}

std::vector<Station> AccessPoint::Stations() const {
    std::vector<Station> list;
    list.reserve(stations.size());
    for (const auto& [mac, station] : stations) {
        list.push_back(station);
    }
    return list;
}

void AccessPoint::Check() {
    if (!socket) {
        Connect();
    } else if (commands.empty()) {
        Ask(kPing);
    }
}

void AccessPoint::Connect() {
    const std::string path = std::filesystem::path(place.folder) / place.interface;
    const int descriptor = ConnectToSocket(path, SOCK_DGRAM);
    if (descriptor < 0) {
        // A hostapd that was killed leaves its socket behind.
        const bool isAbsent = errno == ENOENT || errno == ENOTDIR || errno == ECONNREFUSED;
        const bool wasThere = presence == Presence::present || presence == Presence::lost;
        Lose(isAbsent && !wasThere ? Presence::absent : Presence::lost,
             path + ": " + std::strerror(errno));
        return;
    }
    socket.emplace(descriptor);
    silent = false;
    complained = false;
    restarts = 0;
    incoming.WatchDescriptor(event, descriptor, EPOLLIN,
                             [this](std::uint32_t /*events*/) { Receive(); });
    // All at once, because sending may end the conversation.
    commands = {kAttach, kStatus, kFirstStation};
    SendNext();
}

void AccessPoint::Ask(const std::string& command) {
    commands.push_back(command);
    if (commands.size() == 1) {
        SendNext();
    }
}

void AccessPoint::SendNext() {
    const std::string command = commands.front();
    if (send(socket->Number(), command.data(), command.size(), MSG_NOSIGNAL) < 0) {
        // A full queue is that of a hostapd which reads nothing.
        if (errno == EAGAIN || errno == ENOBUFS) {
            BecomeSilent();
        } else {
            Lose(Presence::lost, "hostapd is gone");
        }
        return;
    }
    if (command == kFirstStation) {
        listed.emplace();
        listedCount = 0;
    }
    limit.After(event, place.limit, place.limit / 16, [this] { BecomeSilent(); });
}

void AccessPoint::Receive() {
    // Longer than any reply of hostapd.
    std::array<char, 8192> buffer{};
    while (socket) {
        const ssize_t size = recv(socket->Number(), buffer.data(), buffer.size(), 0);
        if (size < 0) {
            if (errno == EINTR) {
                continue;
            }
            return;
        }
        if (silent) {
            // It answers again. What it has told meanwhile may be lost.
            Connect();
            return;
        }
        const std::string_view message(buffer.data(), static_cast<std::size_t>(size));
        if (const auto happened = ParseEvent(message)) {
            TakeEvent(*happened);
        } else if (!commands.empty()) {
            TakeReply(message);
        }
    }
}

void AccessPoint::TakeReply(std::string_view reply) {
    limit.Reset();
    const std::string command = commands.front();
    commands.pop_front();
    if (command == kAttach && reply != "OK\n") {
        Lose(Presence::lost, "hostapd refuses to tell of events");
        return;
    }
    if (command == kStatus) {
        TakeStatus(reply);
    } else if (command == kFirstStation || command.starts_with(kNextStation)) {
        TakeStation(reply);
    }
    if (!commands.empty()) {
        SendNext();
        return;
    }
    if (command != kPing || presence != Presence::present) {
        presence = Presence::present;
        reason.clear();
        changed();
    }
}

void AccessPoint::TakeStatus(std::string_view reply) {
    const auto told = ParseStatus(reply, place.interface);
    if (!told && !complained) {
        LINUX_LOG(TORU_DBG_ERROR, "%s: hostapd's answer to STATUS tells no state",
                  place.interface.c_str());
    }
    complained = complained || !told;
    status = told.value_or(AccessPointStatus());
}

void AccessPoint::TakeStation(std::string_view reply) {
    const std::vector<Station> told = ParseStations(reply);
    if (told.empty()) {
        // The list ends with an empty reply. It breaks off when the last station told has left.
        if (reply.starts_with("FAIL") && restarts < kMostRestarts) {
            ++restarts;
            commands.emplace_front(kFirstStation);
        } else {
            TakeList();
        }
        return;
    }
    const Station& station = told.front();
    listed->insert_or_assign(station.mac, station);
    // A hostapd that tells a station twice would have a list without an end.
    if (++listedCount < kMostStations) {
        commands.push_front(kNextStation + MacText(station.mac));
    } else {
        TakeList();
    }
}

void AccessPoint::TakeList() {
    stations = std::move(*listed);
    listed.reset();
}

void AccessPoint::TakeEvent(const AccessPointEvent& happened) {
    using Kind = AccessPointEvent::Kind;
    switch (happened.kind) {
        case Kind::stationJoined:
            if (stations.size() < kMostStations) {
                stations.insert_or_assign(happened.mac, Station{.mac = happened.mac});
            }
            if (listed && listed->size() < kMostStations) {
                listed->insert_or_assign(happened.mac, Station{.mac = happened.mac});
            }
            break;
        case Kind::stationLeft:
            stations.erase(happened.mac);
            if (listed) {
                listed->erase(happened.mac);
            }
            break;
        case Kind::statusChanged:
            if (commands.size() < 2) {
                Ask(kStatus);
            }
            return;
        case Kind::ends:
            Lose(Presence::lost, "hostapd has ended");
            return;
        case Kind::other:
            return;
    }
    if (presence == Presence::present) {
        changed();
    }
}

void AccessPoint::Lose(Presence newPresence, const std::string& why) {
    incoming.Reset();
    socket.reset();
    Forget(newPresence, why);
}

void AccessPoint::BecomeSilent() {
    // The socket stays open, because a late answer tells that hostapd is back.
    silent = true;
    Forget(Presence::lost, "hostapd does not answer");
}

void AccessPoint::Forget(Presence newPresence, const std::string& why) {
    limit.Reset();
    commands.clear();
    stations.clear();
    listed.reset();
    status = {};
    const bool same = presence == newPresence && reason == why;
    presence = newPresence;
    reason = why;
    if (!same) {
        changed();
    }
}

}  // namespace binding
