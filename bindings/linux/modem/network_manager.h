// NetworkManager, where it is on the bus: the profile of type gsm with which it connects the modem.
#pragma once

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "bindings/linux/bus/bus_objects.h"
#include "bindings/linux/modem/followed_objects.h"

namespace binding {

class NetworkManager {
  public:
    using OnDone = std::function<void(const BusError& error)>;

    /// Takes the profile with the name @p newProfile, or the first one if it is empty. Calls
    /// @p newChanged after each change.
    NetworkManager(Bus& newBus, std::string newProfile, std::uint64_t limit,
                   std::function<void()> newChanged);

    /// Whether it is not known yet whether there is a profile.
    bool IsReading() const;

    /// Whether there is a profile to connect with.
    bool HasProfile() const { return !ProfilePath().empty(); }

    /// Whether mobile networks are switched on, by software and hardware; none when not told.
    std::optional<bool> IsWwanEnabled() const;

    /// Whether the profile is for one network that its owner has chosen.
    bool IsNetworkChosen() const;

    /// Whether there is a connection of the profile that can be ended.
    bool HasConnection() const { return !begun.empty() || !ActiveConnection().empty(); }
    /// Whether it has answered that it begins a connection, and not told more of it yet.
    bool IsStarting() const { return !begun.empty() && ActiveConnection().empty(); }

    /// NMActiveConnectionState of the active connection.
    std::optional<std::int64_t> ActiveState() const;

    /// Network interface of the active connection; empty when it is not told.
    std::string Interface() const;

    [[nodiscard]] Bus::PendingCall Activate(OnDone onDone);
    [[nodiscard]] Bus::PendingCall Deactivate(OnDone onDone);

    /// Expects nothing more of a connection that it has answered to begin and told nothing of.
    void GiveUp() { begun.clear(); }

    void Check();

  private:
    void OnChange();
    void OnOwner();
    void ReadProfiles(const std::vector<std::string>& paths);
    void ReadProfile(const std::string& path);
    void OnProfile(const std::string& path, const nlohmann::json& arguments, const BusError& error);
    /// Takes the complaint back if there is no profile any more that is not told.
    void SettleComplaint();
    void FollowActive();
    std::string ProfilePath() const;
    /// Paths of all active connections, and of that of the profile, which is empty without one.
    std::vector<std::string> ActiveConnections() const;
    std::string ActiveConnection() const;

    Bus& bus;
    std::string wantedProfile;
    std::function<void()> changed;
    /// Settings of the profiles of type gsm, by path. Others are null.
    std::map<std::string, nlohmann::json> profiles;
    std::map<std::string, Bus::PendingCall> questions;
    /// Profiles of which NetworkManager has not told the settings.
    std::set<std::string> untold;
    FollowedObjects followed;
    /// The connection that NetworkManager has begun and not told the properties of yet.
    std::string begun;
    bool begunIsListed = false;
    /// The process that has told all of this.
    std::string owner;
    BusMatch profileChanges;
    BusObjects objects;
};

}  // namespace binding
