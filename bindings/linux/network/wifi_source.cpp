#include "bindings/linux/network/wifi_source.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <system_error>

#include "bindings/linux/board.h"
#include "platform/sysint.h"

namespace binding {

namespace {

/// How many clients hostapd serves unless its configuration says otherwise.
constexpr unsigned int kMostStations = 2007;

bool Has(const std::vector<std::unique_ptr<AccessPoint>>& networks,
         AccessPoint::Presence presence) {
    return std::any_of(networks.begin(), networks.end(), [presence](const auto& network) {
        return network->GetPresence() == presence;
    });
}

}  // namespace

WifiSource::WifiSource(Board& newBoard, Role newRole)
    : Source(newBoard, newRole == Role::main ? "wifi" : "guest-wifi"), role(newRole) {}

void WifiSource::Start() {
    const Settings& settings = GetBoard().GetSettings();
    constexpr std::uint64_t kSecond = 1'000'000;
    try {
        for (const std::string& interface :
             role == Role::main ? settings.wifi : settings.guestWifi) {
            networks.push_back(std::make_unique<AccessPoint>(
                GetBoard().Event(),
                AccessPoint::Place{settings.hostapdDirectory, interface,
                                   settings.silenceSeconds * kSecond},
                [this] { Evaluate(); }));
        }
    } catch (const std::system_error& error) {
        Lost(error.what());
        return;
    }
    Evaluate();
}

void WifiSource::Check() {
    for (const auto& network : networks) {
        network->Check();
    }
}

void WifiSource::Evaluate() {
    using Presence = AccessPoint::Presence;
    if (Has(networks, Presence::lost)) {
        for (const auto& network : networks) {
            if (network->GetPresence() == Presence::lost) {
                Lost(network->Reason());
                return;
            }
        }
    } else if (Has(networks, Presence::unknown)) {
        // The rest is not known yet, so it is too early to tell.
    } else if (Has(networks, Presence::present)) {
        Present();
    } else {
        Absent();
    }
}

void WifiSource::Fill(Device& device) const {
    const auto isEnabled = [](const auto& network) { return network->Status().enabled; };
    if (role == Role::main) {
        const unsigned int limit = GetBoard().GetSettings().wifiMaxClients;
        Tell(device.getWiFiEnabled, std::any_of(networks.begin(), networks.end(), isEnabled));
        Tell(device.getWiFiMaxClients, limit == 0 ? kMostStations : limit);
        return;
    }
    int profile = SYS_WIFI_GUEST_2_4_GHZ;
    for (const auto& network : networks) {
        Tell(device.getWiFiGuestProfileEnabled.byIndex[profile], isEnabled(network));
        ++profile;
    }
}

void WifiSource::Fail(Device& device, int code) const {
    if (role == Role::main) {
        FailAll(code, device.getWiFiEnabled, device.getWiFiMaxClients);
    } else {
        FailAll(code, device.getWiFiGuestProfileEnabled.every);
    }
}

nlohmann::json WifiSource::Said() const {
    nlohmann::json said = nlohmann::json::object();
    for (const auto& network : networks) {
        const AccessPointStatus& status = network->Status();
        said[network->Interface()] = {{"state", status.state},
                                      {"network", status.ssid},
                                      {"frequency", status.frequency},
                                      {"stations", network->Stations().size()}};
    }
    return said;
}

std::vector<Station> WifiSource::Stations() const {
    std::vector<Station> all;
    for (const auto& network : networks) {
        const std::vector<Station> stations = network->Stations();
        all.insert(all.end(), stations.begin(), stations.end());
    }
    return all;
}

std::vector<std::string> WifiSource::Told() const {
    std::vector<std::string> interfaces;
    for (const auto& network : networks) {
        if (network->GetPresence() == AccessPoint::Presence::present) {
            interfaces.push_back(network->Interface());
        }
    }
    return interfaces;
}

}  // namespace binding
