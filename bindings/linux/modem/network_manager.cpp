#include "bindings/linux/modem/network_manager.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/modem/modem_manager.h"
#include "bindings/linux/modem/tree_lists.h"

namespace binding {

namespace {

using nlohmann::json;

constexpr const char* kService = "org.freedesktop.NetworkManager";
constexpr const char* kPath = "/org/freedesktop/NetworkManager";
constexpr const char* kSettingsPath = "/org/freedesktop/NetworkManager/Settings";
constexpr const char* kManagerInterface = "org.freedesktop.NetworkManager";
constexpr const char* kSettingsInterface = "org.freedesktop.NetworkManager.Settings";
constexpr const char* kProfileInterface = "org.freedesktop.NetworkManager.Settings.Connection";
constexpr const char* kActiveInterface = "org.freedesktop.NetworkManager.Connection.Active";
constexpr const char* kDeviceInterface = "org.freedesktop.NetworkManager.Device";

constexpr auto kKinds = std::to_array<ExpectedKind>({
    {kManagerInterface, "WwanEnabled", ValueKind::boolean},
    {kManagerInterface, "WwanHardwareEnabled", ValueKind::boolean},
    {kManagerInterface, "ActiveConnections", ValueKind::texts},
    {kSettingsInterface, "Connections", ValueKind::texts},
    {kActiveInterface, "Connection", ValueKind::text},
    {kActiveInterface, "State", ValueKind::integer},
    {kActiveInterface, "Devices", ValueKind::texts},
    {kDeviceInterface, "IpInterface", ValueKind::text},
});

/// Type of the profiles of modems, also of those for LTE and 5G.
constexpr const char* kGsm = "gsm";

/// Microseconds. NetworkManager answers before it connects.
constexpr std::uint64_t kLimit = 30'000'000;

/// Of complaints.
constexpr const char* kProfileSettings = "settings of NetworkManager's profiles";

/// NMActiveConnectionState; what follows it ends the connection.
constexpr std::int64_t kActivated = 2;

}  // namespace

NetworkManager::NetworkManager(Bus& newBus, std::string newProfile, std::uint64_t limit,
                               std::function<void()> newChanged)
    : bus(newBus),
      wantedProfile(std::move(newProfile)),
      changed(std::move(newChanged)),
      objects(newBus,
              {.service = kService,
               .manager = "",
               .objects = {{kPath, {kManagerInterface}}, {kSettingsPath, {kSettingsInterface}}},
               .kinds = kKinds,
               .limit = limit},
              [this] { OnChange(); }) {}

bool NetworkManager::IsReading() const {
    const auto presence = objects.GetPresence();
    return presence == BusObjects::Presence::unknown || presence == BusObjects::Presence::reading ||
           !questions.empty();
}

void NetworkManager::OnChange() {
    if (owner != objects.Owner()) {
        OnOwner();
    }
    // What a NetworkManager has told that does not answer stands: it still has the modem, and would
    // fight with anybody else who connects.
    if (objects.GetPresence() == BusObjects::Presence::present) {
        ReadProfiles(Texts(Member(Member(objects.Tree(), kSettingsPath), kSettingsInterface),
                           "Connections"));
        FollowActive();
    }
    changed();
}

void NetworkManager::OnOwner() {
    owner = objects.Owner();
    profiles.clear();
    questions.clear();
    untold.clear();
    begun.clear();
    profileChanges.End();
    if (owner.empty()) {
        return;
    }
    profileChanges.Begin(bus,
                         "type='signal',sender='" + owner + "',interface='" + kProfileInterface +
                             "',member='Updated'",
                         [this](sd_bus_message* message) {
                             const char* const path = sd_bus_message_get_path(message);
                             if (path != nullptr && profiles.count(path) != 0) {
                                 ReadProfile(path);
                             }
                         });
}

void NetworkManager::ReadProfiles(const std::vector<std::string>& paths) {
    const auto isGone = [&paths](const auto& entry) {
        return std::find(paths.begin(), paths.end(), entry.first) == paths.end();
    };
    std::erase_if(profiles, isGone);
    std::erase_if(questions, isGone);
    std::erase_if(untold, [&profile = profiles](const std::string& path) {
        return profile.count(path) == 0;
    });
    for (const std::string& path : paths) {
        if (profiles.count(path) == 0 && questions.count(path) == 0) {
            ReadProfile(path);
        }
    }
    SettleComplaint();
}

void NetworkManager::ReadProfile(const std::string& path) {
    questions[path] = bus.Call(
        kService, path, kProfileInterface, "GetSettings", nullptr,
        [this, path](const json& arguments, const BusError& error) {
            const auto kept = questions.extract(path);
            if (error.isDisconnected) {
                // That NetworkManager has gone follows.
                return;
            }
            OnProfile(path, arguments, error);
            FollowActive();
            changed();
        },
        kLimit);
}

void NetworkManager::OnProfile(const std::string& path, const json& arguments,
                               const BusError& error) {
    if (error) {
        untold.insert(path);
        if (error.IsAbsence()) {
            // A profile may have gone meanwhile.
            profiles[path] = json();
        } else {
            // What it has told before stands.
            profiles.try_emplace(path);
            bus.GetComplaints().Raise(kProfileSettings, path,
                                      "NetworkManager: " + path + ": GetSettings: " + error.Text());
        }
        return;
    }
    const json settings = arguments.is_array() && !arguments.empty() ? arguments.front() : json();
    const bool isGsm = Text(Member(settings, "connection"), "type") == kGsm;
    profiles[path] = isGsm ? settings : json();
    untold.erase(path);
    SettleComplaint();
}

void NetworkManager::SettleComplaint() {
    if (untold.empty() && questions.empty()) {
        bus.GetComplaints().Settle(kProfileSettings, "", json::object());
    }
}

void NetworkManager::Check() {
    objects.Check();
    for (const std::string& path : untold) {
        if (questions.count(path) == 0) {
            ReadProfile(path);
        }
    }
}

void NetworkManager::FollowActive() {
    std::map<std::string, std::string> wanted;
    for (const std::string& path : ActiveConnections()) {
        wanted[path] = kActiveInterface;
    }
    const bool isListed = wanted.count(begun) != 0;
    // Without its profile, what is told of it does not say yet whose connection it is.
    const bool isRead =
        Text(Member(Member(objects.Tree(), begun), kActiveInterface), "Connection").has_value();
    if (isRead || (begunIsListed && !isListed)) {
        begun.clear();
    }
    begunIsListed = isListed && !begun.empty();
    const json& active = Member(Member(objects.Tree(), ActiveConnection()), kActiveInterface);
    for (const std::string& device : Texts(active, "Devices")) {
        wanted[device] = kDeviceInterface;
    }
    followed.Follow(objects, wanted);
}

std::string NetworkManager::ProfilePath() const {
    for (const auto& [path, settings] : profiles) {
        if (settings.is_object() && (wantedProfile.empty() ||
                                     Text(Member(settings, "connection"), "id") == wantedProfile)) {
            return path;
        }
    }
    return "";
}

std::optional<bool> NetworkManager::IsWwanEnabled() const {
    const json& properties = Member(Member(objects.Tree(), kPath), kManagerInterface);
    const auto bySoftware = Boolean(properties, "WwanEnabled");
    const auto byHardware = Boolean(properties, "WwanHardwareEnabled");
    if (!bySoftware && !byHardware) {
        return std::nullopt;
    }
    return bySoftware.value_or(true) && byHardware.value_or(true);
}

bool NetworkManager::IsNetworkChosen() const {
    const auto profile = profiles.find(ProfilePath());
    return profile != profiles.end() &&
           NonEmptyText(Member(profile->second, "gsm"), "network-id").has_value();
}

std::vector<std::string> NetworkManager::ActiveConnections() const {
    return Texts(Member(Member(objects.Tree(), kPath), kManagerInterface), "ActiveConnections");
}

std::string NetworkManager::ActiveConnection() const {
    const std::string profile = ProfilePath();
    std::string ending;
    for (const std::string& path : ActiveConnections()) {
        const json& active = Member(Member(objects.Tree(), path), kActiveInterface);
        if (profile.empty() || Text(active, "Connection") != profile) {
            continue;
        }
        // While one is being ended, the next one may be there already.
        if (Number(active, "State").value_or(0) <= kActivated) {
            return path;
        }
        ending = path;
    }
    return ending;
}

std::optional<std::int64_t> NetworkManager::ActiveState() const {
    return Number(Member(Member(objects.Tree(), ActiveConnection()), kActiveInterface), "State");
}

std::string NetworkManager::Interface() const {
    const json& active = Member(Member(objects.Tree(), ActiveConnection()), kActiveInterface);
    for (const std::string& device : Texts(active, "Devices")) {
        const json& properties = Member(Member(objects.Tree(), device), kDeviceInterface);
        if (const auto interface = NonEmptyText(properties, "IpInterface")) {
            return *interface;
        }
    }
    return "";
}

Bus::PendingCall NetworkManager::Activate(OnDone onDone) {
    return bus.Call(
        kService, kPath, kManagerInterface, "ActivateConnection",
        [profile = ProfilePath()](sd_bus_message* message) {
            return sd_bus_message_append(message, "ooo", profile.c_str(), kNoObject, kNoObject);
        },
        [this, onDone = std::move(onDone)](const json& arguments, const BusError& error) {
            const bool isPath =
                arguments.is_array() && !arguments.empty() && arguments.front().is_string();
            begun = isPath ? arguments.front().get<std::string>() : "";
            begunIsListed = false;
            FollowActive();
            onDone(error);
        },
        kLimit);
}

Bus::PendingCall NetworkManager::Deactivate(OnDone onDone) {
    const std::string listed = ActiveConnection();
    return bus.Call(
        kService, kPath, kManagerInterface, "DeactivateConnection",
        [active = listed.empty() ? begun : listed](sd_bus_message* message) {
            return sd_bus_message_append(message, "o", active.empty() ? kNoObject : active.c_str());
        },
        [this, onDone = std::move(onDone)](const json& /*arguments*/, const BusError& error) {
            if (error) {
                begun.clear();
            }
            onDone(error);
        },
        kLimit);
}

}  // namespace binding
