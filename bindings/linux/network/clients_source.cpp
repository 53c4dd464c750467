#include "bindings/linux/network/clients_source.h"

#include <chrono>
#include <nlohmann/json.hpp>
#include <system_error>

#include "bindings/linux/board.h"
#include "bindings/linux/network/wifi_source.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

namespace {

/// dnsmasq empties its file before it writes it again; a moment later it has written all.
constexpr std::uint64_t kWriting = 50'000;
constexpr std::uint64_t kSecond = 1'000'000;

}  // namespace

ClientsSource::ClientsSource(Board& newBoard, const WifiSource& newWifi,
                             const WifiSource& newGuestWifi)
    : Source(newBoard, "clients"), wifi(newWifi), guestWifi(newGuestWifi) {
    const Settings& settings = newBoard.GetSettings();
    interfaces = {.bridge = settings.bridge,
                  .ethernet = settings.ethernet,
                  .usb = settings.usb,
                  .wifi = settings.wifi,
                  .guestWifi = settings.guestWifi};
}

void ClientsSource::Start() {
    try {
        leaseWatch.emplace(GetBoard().Event(), GetBoard().GetSettings().leases, [this] {
            if (!reading.IsArmed()) {
                reading.After(GetBoard().Event(), kWriting, kWriting / 5, [this] {
                    ReadLeases();
                    Changed();
                });
            }
        });
        ReadLeases();
        routes.emplace(GetBoard().Event(), RouteSocket::Scope::linksAndNeighbours, [this] {
            AwaitDeparture();
            Present();
        });
    } catch (const std::system_error& error) {
        Lost(error.what());
    }
}

void ClientsSource::AwaitDeparture() {
    const auto next = NextDeparture(Neighbours(), interfaces);
    if (!next) {
        departure.Reset();
        return;
    }
    departure.After(GetBoard().Event(), static_cast<std::uint64_t>(next->count()) * kSecond,
                    kSecond, [this] {
                        AwaitDeparture();
                        Changed();
                    });
}

void ClientsSource::ReadLeases() {
    try {
        FileStamp stamp;
        leases = ParseLeases(ReadFile(GetBoard().GetSettings().leases, stamp));
    } catch (const std::system_error&) {
        // A client whose lease cannot be read has no name, and that is all.
        leases.clear();
    }
}

std::vector<Sighting> ClientsSource::Neighbours() const {
    return routes ? routes->Table().Sightings(std::chrono::steady_clock::now())
                  : std::vector<Sighting>();
}

std::vector<Client> ClientsSource::Clients() const {
    ClientSightings seen;
    seen.leases = leases;
    seen.neighbours = Neighbours();
    seen.stations = wifi.Stations();
    seen.guestStations = guestWifi.Stations();
    seen.told = wifi.Told();
    const std::vector<std::string> guests = guestWifi.Told();
    seen.told.insert(seen.told.end(), guests.begin(), guests.end());
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return JoinClients(seen, interfaces,
                       std::chrono::duration_cast<std::chrono::seconds>(now).count());
}

void ClientsSource::Fill(Device& device) const {
    Tell(device.getConnectedDeviceList, ClientRecords(Clients()));
}

void ClientsSource::Fail(Device& device, int code) const {
    FailAll(code, device.getConnectedDeviceList);
}

nlohmann::json ClientsSource::Said() const {
    nlohmann::json said = nlohmann::json::array();
    for (const Client& client : Clients()) {
        said.push_back({{"mac", MacText(client.mac)},
                        {"kind", client.kind},
                        {"address", client.address},
                        {"name", client.name}});
    }
    return said;
}

}  // namespace binding
