#include "bindings/linux/network/clients_source.h"

#include <chrono>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "bindings/linux/board.h"
#include "bindings/linux/log.h"
#include "bindings/linux/network/wifi_source.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

namespace {

/// dnsmasq empties its file before it writes it again; a moment later it has written all.
constexpr std::uint64_t kWriting = 50'000;
/// After this time, a file that is wrong is not just being written.
constexpr std::uint64_t kSettling = 1'000'000;
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
        routes.emplace(
            GetBoard().Event(), RouteSocket::Scope::linksAndNeighbours,
            [this] {
                AwaitDeparture();
                Present();
            },
            [this](const std::string& why) { Lost(why); });
    } catch (const std::system_error& error) {
        Lost(error.what());
    }
}

void ClientsSource::AwaitDeparture() {
    const auto next = NextDeparture(Seen(), interfaces);
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
    const std::string& path = GetBoard().GetSettings().leases;
    LeaseFile file;
    try {
        FileStamp stamp;
        file = ParseLeases(ReadFile(path, stamp));
        if (!file.problem.empty()) {
            file.problem.insert(0, path + ": ");
        }
    } catch (const std::system_error& error) {
        // A client whose lease cannot be read has no name, and that is all.
        if (error.code() != std::errc::no_such_file_or_directory) {
            file.problem = error.what();
        }
    }
    leases = std::move(file.leases);
    leaseProblem = std::move(file.problem);
    NoteLeaseProblem();
}

void ClientsSource::NoteLeaseProblem() {
    if (leaseProblem.empty()) {
        complaint.Reset();
        leasesComplained = false;
    } else if (!leasesComplained && !complaint.IsArmed()) {
        // The file may be written again and again meanwhile.
        complaint.After(GetBoard().Event(), kSettling, kSettling / 4, [this] {
            leasesComplained = true;
            LINUX_LOG(TORU_DBG_ERROR, "clients: %s", leaseProblem.c_str());
        });
    }
}

void ClientsSource::NoteLimit(const ClientList& list) const {
    const bool isCut = list.isCut || (routes && routes->Table().LeavesOut());
    if (isCut && !limitComplained) {
        LINUX_LOG(TORU_DBG_ERROR, "clients: no more than %zu are listed", kMostClients);
        limitComplained = true;
    } else if (list.clients.size() < kMostClients - kMostClients / 10 && !isCut) {
        // Much less, so that a client that comes and goes does not fill the log.
        limitComplained = false;
    }
}

ClientSightings ClientsSource::Seen() const {
    ClientSightings seen;
    seen.leases = leases;
    if (routes) {
        seen.neighbours = routes->Table().Sightings(std::chrono::steady_clock::now());
    }
    seen.stations = wifi.Stations();
    seen.guestStations = guestWifi.Stations();
    seen.told = wifi.Told();
    const std::vector<std::string> guests = guestWifi.Told();
    seen.told.insert(seen.told.end(), guests.begin(), guests.end());
    seen.quietLimit = std::chrono::seconds(GetBoard().GetSettings().clientQuietSeconds);
    return seen;
}

ClientList ClientsSource::Clients() const {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return JoinClients(Seen(), interfaces,
                       std::chrono::duration_cast<std::chrono::seconds>(now).count());
}

void ClientsSource::Fill(Device& device) const {
    const ClientList list = Clients();
    NoteLimit(list);
    Tell(device.getConnectedDeviceList, ClientRecords(list.clients));
}

void ClientsSource::Fail(Device& device, int code) const {
    FailAll(code, device.getConnectedDeviceList);
}

nlohmann::json ClientsSource::Said() const {
    nlohmann::json said = nlohmann::json::array();
    for (const Client& client : Clients().clients) {
        said.push_back({{"mac", MacText(client.mac)},
                        {"kind", client.kind},
                        {"address", client.address},
                        {"name", client.name}});
    }
    return said;
}

}  // namespace binding
