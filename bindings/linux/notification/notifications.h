// The notifications of the board: a list that follows from the state of the device.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "bindings/device/device.h"
#include "bindings/linux/settings.h"

namespace binding {

/// How many clients are connected, by kind.
struct ClientCounts {
    std::size_t wifi = 0;
    std::size_t ethernet = 0;
    std::size_t usb = 0;

    bool operator==(const ClientCounts&) const = default;
};

class Notifications {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// Publishes the list on the channel of @p device, whose other answers are complete. Returns
    /// when the list changes by itself. Clients are counted only if @p isComplete, that is, if all
    /// sources have told what there is.
    std::optional<Time> Publish(Device& device, const Settings& settings, Time now,
                                bool isComplete);

  private:
    struct Event {
        std::string_view type;
        Time until;
    };

    void NoteClients(const Device& device, const Settings& settings, Time now);
    void Begin(std::string_view type, Time until);

    std::optional<ClientCounts> clients;
    std::vector<Event> events;
};

/// The types of notifications that the state of @p device calls for, in the order in which they are
/// published, without those about clients.
std::vector<std::string_view> NotificationsOf(const Device& device, const Settings& settings);

}  // namespace binding
