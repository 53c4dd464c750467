// What hostapd says on its control socket.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bindings/linux/text.h"

namespace binding {

/// A BSS of hostapd, as its STATUS tells.
struct AccessPointStatus {
    std::string state;     ///< "ENABLED" while it serves
    std::string ssid;      ///< empty when not told
    int frequency = 0;     ///< MHz; 0 when not told
    bool enabled = false;  ///< whether clients can join
};

/// Reads the reply to STATUS on the socket of @p interface. The reply lists all BSSs of the radio.
/// Nothing when the reply is no status.
std::optional<AccessPointStatus> ParseStatus(std::string_view reply, std::string_view interface);

/// A Wi-Fi client.
struct Station {
    MacAddress mac = 0;
    std::optional<int> signal = std::nullopt;  ///< dBm
    /// Whether the client may use the network, which comes after it has joined.
    bool authorized = true;
};

/// The stations in the reply to STA-FIRST or STA-NEXT, which hold one, or in the replies to
/// all of them one after another.
std::vector<Station> ParseStations(std::string_view replies);

/// An event that changes what is known of a BSS.
struct AccessPointEvent {
    enum class Kind {
        other,
        stationJoined,
        stationLeft,
        /// The BSS was switched on or off, or got another channel or name.
        statusChanged,
        /// hostapd ends.
        ends,
    };
    Kind kind = Kind::other;
    MacAddress mac = 0;  ///< of the station
};

/// Reads a message of a socket that is attached. Nothing when it is no event but a reply.
std::optional<AccessPointEvent> ParseEvent(std::string_view message);

}  // namespace binding
