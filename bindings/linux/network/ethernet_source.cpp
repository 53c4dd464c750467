#include "bindings/linux/network/ethernet_source.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <system_error>
#include <vector>

#include "bindings/linux/board.h"

namespace binding {

namespace {

/// The ports of @p names that the machine has.
std::vector<const Link*> PortsOf(const NetworkTable& table, const std::vector<std::string>& names) {
    std::vector<const Link*> ports;
    for (const std::string& name : names) {
        if (const Link* const link = table.FindLink(name)) {
            ports.push_back(link);
        }
    }
    return ports;
}

}  // namespace

void EthernetSource::Start() {
    try {
        routes.emplace(
            GetBoard().Event(), RouteSocket::Scope::links, [this] { Evaluate(); },
            [this](const std::string& why) { Lost(why); });
    } catch (const std::system_error& error) {
        Lost(error.what());
    }
}

void EthernetSource::Evaluate() {
    // A port that has gone was an adapter that somebody took out, and no failure.
    if (PortsOf(routes->Table(), GetBoard().GetSettings().ethernet).empty()) {
        Absent();
    } else {
        Present();
    }
}

void EthernetSource::Fill(Device& device) const {
    const auto ports = PortsOf(routes->Table(), GetBoard().GetSettings().ethernet);
    Tell(device.getEthernetEnabled,
         std::any_of(ports.begin(), ports.end(), [](const Link* port) { return port->up; }));
    Tell(device.getEthernetLinkStatus,
         std::any_of(ports.begin(), ports.end(), [](const Link* port) { return port->carrier; }));
}

void EthernetSource::Fail(Device& device, int code) const {
    FailAll(code, device.getEthernetEnabled, device.getEthernetLinkStatus);
}

nlohmann::json EthernetSource::Said() const {
    nlohmann::json said = nlohmann::json::object();
    if (routes) {
        for (const Link* const port : PortsOf(routes->Table(), GetBoard().GetSettings().ethernet)) {
            said[port->name] = {{"up", port->up}, {"carrier", port->carrier}};
        }
    }
    return said;
}

}  // namespace binding
