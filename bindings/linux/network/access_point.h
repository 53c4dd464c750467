// The connection to the hostapd of one Wi-Fi network.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bindings/linux/event.h"
#include "bindings/linux/kernel/path_watch.h"
#include "bindings/linux/network/hostapd_reply.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

/// Follows hostapd by its control socket: it asks once for the state and the stations, and from
/// then on hostapd tells of changes.
class AccessPoint {
  public:
    enum class Presence {
        unknown,  ///< not known yet
        absent,   ///< there is no hostapd
        present,
        lost,  ///< there is one that cannot be used, or does not answer
    };

    struct Place {
        std::string folder;     ///< of hostapd's control sockets
        std::string interface;  ///< name of the control socket
        std::uint64_t limit;    ///< microseconds in which hostapd has to answer
    };

    /// Calls @p newChanged after each change. Throws std::system_error.
    AccessPoint(sd_event* newEvent, Place newPlace, std::function<void()> newChanged);
    ~AccessPoint() = default;
    AccessPoint(const AccessPoint&) = delete;
    AccessPoint& operator=(const AccessPoint&) = delete;

    Presence GetPresence() const { return presence; }
    /// Why it is lost or absent.
    const std::string& Reason() const { return reason; }
    const std::string& Interface() const { return place.interface; }
    const AccessPointStatus& Status() const { return status; }
    std::vector<Station> Stations() const;

    /// Asks for a sign of life.
    void Check();

  private:
    void Connect();
    void Ask(const std::string& command);
    void SendNext();
    void Receive();
    void TakeReply(std::string_view reply);
    void TakeStatus(std::string_view reply);
    void TakeStation(std::string_view reply);
    void TakeList();
    void TakeEvent(const AccessPointEvent& happened);
    void Lose(Presence newPresence, const std::string& why);
    void BecomeSilent();
    void Forget(Presence newPresence, const std::string& why);

    sd_event* event;
    Place place;
    std::function<void()> changed;
    Presence presence = Presence::unknown;
    std::string reason;
    AccessPointStatus status;
    /// Whether it has been logged that a status could not be read over this socket.
    bool complained = false;
    std::map<MacAddress, Station> stations;
    /// While the list of stations is read: those of it, and those that have joined meanwhile.
    std::optional<std::map<MacAddress, Station>> listed;
    std::size_t listedCount = 0;
    /// How often the list of stations was begun again because a station left meanwhile.
    unsigned int restarts = 0;

    std::optional<FileDescriptor> socket;
    /// Whether a command was not answered in time over this socket.
    bool silent = false;
    /// Commands to send; the first has been sent and awaits its reply.
    std::deque<std::string> commands;
    EventSource incoming;
    EventSource limit;
    EventSource connecting;
    PathWatch watch;
};

}  // namespace binding
