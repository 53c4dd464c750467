#include "bindings/linux/network/hostapd_reply.h"

#include <algorithm>
#include <utility>

namespace binding {

namespace {

/// Splits "key=value".
std::pair<std::string_view, std::string_view> Setting(std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return {line, {}};
    }
    return {line.substr(0, equals), line.substr(equals + 1)};
}

/// The value of the last line "key=value" of @p text.
std::optional<std::string_view> ValueOf(std::string_view text, std::string_view key) {
    std::optional<std::string_view> found;
    while (!text.empty()) {
        const auto [name, value] = Setting(TakeLine(text));
        if (name == key) {
            found = value;
        }
    }
    return found;
}

/// The index, as in "[1]", of the BSS of @p interface; the radio's first BSS if it is not listed.
std::string_view IndexOf(std::string_view reply, std::string_view interface) {
    constexpr std::string_view kName = "bss";
    while (!reply.empty()) {
        const auto [name, value] = Setting(TakeLine(reply));
        if (name.starts_with(kName) && name.ends_with(']') && value == interface) {
            return name.substr(kName.size());
        }
    }
    return "[0]";
}

void ReadStationLine(Station& station, std::string_view line) {
    const auto [name, value] = Setting(line);
    if (name == "flags") {
        station.authorized = value.find("[AUTHORIZED]") != std::string_view::npos;
    } else if (name == "signal") {
        station.signal = NumberIn<int>(Trimmed(value));
    }
}

}  // namespace

std::optional<AccessPointStatus> ParseStatus(std::string_view reply, std::string_view interface) {
    const auto state = ValueOf(reply, "state");
    if (!state) {
        return std::nullopt;
    }
    AccessPointStatus status;
    status.state = Printable(*state);
    status.enabled = *state == "ENABLED";
    const std::string ssid = "ssid" + std::string(IndexOf(reply, interface));
    status.ssid = Printable(ValueOf(reply, ssid).value_or(""));
    const auto frequency = NumberIn<int>(Trimmed(ValueOf(reply, "freq").value_or("")));
    status.frequency = std::max(frequency.value_or(0), 0);
    return status;
}

std::vector<Station> ParseStations(std::string_view replies) {
    std::vector<Station> stations;
    while (!replies.empty()) {
        const std::string_view line = Trimmed(TakeLine(replies));
        if (const auto mac = MacIn(line)) {
            if (stations.size() == kMostClients) {
                break;
            }
            stations.push_back({.mac = *mac});
        } else if (!stations.empty()) {
            ReadStationLine(stations.back(), line);
        }
    }
    return stations;
}

std::optional<AccessPointEvent> ParseEvent(std::string_view message) {
    using Kind = AccessPointEvent::Kind;
    // A message begins with its priority, as in "<3>"; no reply does.
    if (!message.starts_with('<') || message.find('>') == std::string_view::npos) {
        return std::nullopt;
    }
    message.remove_prefix(message.find('>') + 1);
    const std::string_view name = TakeWord(message);
    AccessPointEvent event;
    if (name == "AP-STA-CONNECTED" || name == "AP-STA-DISCONNECTED") {
        if (const auto mac = MacIn(TakeWord(message))) {
            event.kind = name == "AP-STA-CONNECTED" ? Kind::stationJoined : Kind::stationLeft;
            event.mac = *mac;
        }
    } else if (name == "AP-ENABLED" || name == "AP-DISABLED" || name == "AP-CSA-FINISHED" ||
               name == "INTERFACE-ENABLED" || name == "INTERFACE-DISABLED") {
        event.kind = Kind::statusChanged;
    } else if (name == "CTRL-EVENT-TERMINATING") {
        event.kind = Kind::ends;
    }
    return event;
}

}  // namespace binding
