// The connected clients.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "bindings/linux/event.h"
#include "bindings/linux/kernel/path_watch.h"
#include "bindings/linux/network/client_list.h"
#include "bindings/linux/network/route_socket.h"
#include "bindings/linux/source.h"

namespace binding {

class WifiSource;

class ClientsSource : public Source {
  public:
    /// Both sources must live as long as this one does.
    ClientsSource(Board& newBoard, const WifiSource& newWifi, const WifiSource& newGuestWifi);

    void Start() override;
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    ClientSightings Seen() const;
    ClientList Clients() const;
    void AwaitDeparture();
    void ReadLeases();
    void NoteLeaseProblem();
    void NoteLimit(const ClientList& list) const;

    const WifiSource& wifi;
    const WifiSource& guestWifi;
    ClientInterfaces interfaces;
    std::vector<Lease> leases;
    std::optional<PathWatch> leaseWatch;
    EventSource reading;
    EventSource departure;
    /// Armed while something may be wrong with the leases that has not been logged yet.
    EventSource complaint;
    /// What is wrong with the leases; empty when nothing is.
    std::string leaseProblem;
    /// Whether that has been logged.
    bool leasesComplained = false;
    mutable bool limitComplained = false;
    std::optional<RouteSocket> routes;
};

}  // namespace binding
