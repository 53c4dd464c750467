#include "bindings/linux/bus/bus_objects.h"

#include <string_view>
#include <utility>

#include "bindings/linux/bus/message.h"
#include "bindings/linux/bus/tree.h"

namespace binding {

namespace {

using nlohmann::json;

constexpr const char* kBusName = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";
constexpr const char* kNameHasNoOwner = "org.freedesktop.DBus.Error.NameHasNoOwner";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr const char* kObjectManager = "org.freedesktop.DBus.ObjectManager";

std::string SignalRule(const std::string& sender, const std::string& interface,
                       const std::string& member) {
    return "type='signal',sender='" + sender + "',interface='" + interface + "',member='" + member +
           "'";
}

/// Element @p index of the list @p arguments; null without one.
const json& At(const json& arguments, std::size_t index) {
    static const json nothing;
    return arguments.is_array() && index < arguments.size() ? arguments[index] : nothing;
}

std::string TextAt(const json& arguments, std::size_t index) {
    const json& value = At(arguments, index);
    return value.is_string() ? value.get<std::string>() : "";
}

/// Object @p name of @p parent; made, unless it is one already.
json& MemberObject(json& parent, std::string_view name) {
    json& member = parent[std::string(name)];
    if (!member.is_object()) {
        member = json::object();
    }
    return member;
}

void Put(json& object, const json& members) {
    if (members.is_object()) {
        object.update(members);
    }
}

}  // namespace

BusObjects::BusObjects(Bus& newBus, Daemon newDaemon, std::function<void()> newChanged)
    : bus(newBus), daemon(std::move(newDaemon)), changed(std::move(newChanged)) {
    connection = bus.OnConnection([this](bool connected) { OnConnection(connected); });
}

void BusObjects::OnConnection(bool connected) {
    if (!connected) {
        OnOwner("");
        return;
    }
    ownerChanges.Begin(
        bus, SignalRule(kBusName, kBusName, "NameOwnerChanged") + ",arg0='" + daemon.service + "'",
        [this](sd_bus_message* message) { OnOwner(TextAt(Arguments(message), 2)); });
    AskForOwner();
}

void BusObjects::AskForOwner() {
    const Bus::Append service = [this](sd_bus_message* message) {
        return sd_bus_message_append(message, "s", daemon.service.c_str());
    };
    const std::uint64_t number = nextCall++;
    calls[number] = bus.Call(
        kBusName, kBusPath, kBusName, "GetNameOwner", service,
        [this, number](const json& arguments, const BusError& error) {
            const auto kept = calls.extract(number);
            // Any other error leaves it open whether somebody has the name.
            isOwnerKnown = !error || error.name == kNameHasNoOwner;
            OnOwner(TextAt(arguments, 0));
        },
        daemon.limit);
}

void BusObjects::OnOwner(const std::string& newOwner) {
    if (newOwner == owner && presence != Presence::unknown) {
        return;
    }
    owner = newOwner;
    calls.clear();
    ping.reset();
    watched.clear();
    tree = json::object();
    propertyChanges.End();
    additions.End();
    removals.End();
    if (owner.empty()) {
        SetPresence(Presence::absent);
        return;
    }
    propertyChanges.Begin(bus, SignalRule(owner, kProperties, "PropertiesChanged"),
                          [this](sd_bus_message* message) { OnProperties(message); });
    // A daemon may take its name before it has its objects, also one of which not all are followed.
    const std::string path = daemon.manager.empty() ? "" : ",path='" + daemon.manager + "'";
    additions.Begin(bus, SignalRule(owner, kObjectManager, "InterfacesAdded") + path,
                    [this](sd_bus_message* message) { OnInterfaces(message, true); });
    if (!daemon.manager.empty()) {
        removals.Begin(bus, SignalRule(owner, kObjectManager, "InterfacesRemoved") + path,
                       [this](sd_bus_message* message) { OnInterfaces(message, false); });
    }
    SetPresence(Presence::reading);
    ReadAll();
}

void BusObjects::ReadAll() {
    watched = daemon.objects;
    if (!daemon.manager.empty()) {
        Ask(daemon.manager, kObjectManager, "GetManagedObjects", nullptr,
            [this](const json& arguments) {
                // What has been told by objects that are not managed stays.
                const json& managed = At(arguments, 0);
                if (managed.is_object()) {
                    tree.update(managed);
                }
            });
    }
    for (const auto& [path, interfaces] : daemon.objects) {
        ReadObjects(path, interfaces);
    }
    if (calls.empty()) {
        Answered();
    }
}

void BusObjects::ReadObjects(const std::string& path, const std::vector<std::string>& interfaces) {
    for (const std::string& interface : interfaces) {
        Ask(
            path, kProperties, "GetAll",
            [&interface](sd_bus_message* message) {
                return sd_bus_message_append(message, "s", interface.c_str());
            },
            [this, path, interface](const json& arguments) {
                if (IsWatched(path)) {
                    Put(MemberObject(MemberObject(tree, path), interface), At(arguments, 0));
                }
            });
    }
}

void BusObjects::Ask(const std::string& path, const std::string& interface,
                     const std::string& member, const Bus::Append& append,
                     const std::function<void(const json&)>& onResult) {
    const std::uint64_t number = nextCall++;
    calls[number] = bus.Call(
        owner, path, interface, member, append,
        [this, number, onResult](const json& arguments, const BusError& error) {
            const auto kept = calls.extract(number);
            if (error.IsSilence()) {
                SetPresence(Presence::silent);
                return;
            }
            if (!error) {
                onResult(arguments);
            }
            // An error concerns one object, which may have gone meanwhile.
            Answered();
        },
        daemon.limit);
}

void BusObjects::Answered() {
    // The tree is shown when it is whole.
    if (presence == Presence::reading && !calls.empty()) {
        return;
    }
    SetPresence(Presence::present);
}

void BusObjects::SetPresence(Presence newPresence) {
    presence = newPresence;
    changed();
}

void BusObjects::OnProperties(sd_bus_message* message) {
    const char* const sender = sd_bus_message_get_path(message);
    const std::string path = sender == nullptr ? "" : sender;
    // Objects that nobody has asked about are not kept.
    if (!tree.contains(path)) {
        return;
    }
    const json arguments = Arguments(message);
    json& interface = MemberObject(MemberObject(tree, path), TextAt(arguments, 0));
    Put(interface, At(arguments, 1));
    const json& invalidated = At(arguments, 2);
    if (invalidated.is_array()) {
        for (const json& name : invalidated) {
            if (name.is_string()) {
                interface.erase(name.get<std::string>());
            }
        }
    }
    Answered();
}

void BusObjects::OnInterfaces(sd_bus_message* message, bool added) {
    const json arguments = Arguments(message);
    const std::string path = TextAt(arguments, 0);
    if (daemon.manager.empty() && !IsWatched(path)) {
        return;
    }
    if (added) {
        Put(MemberObject(tree, path), At(arguments, 1));
    } else if (tree.contains(path)) {
        const json& interfaces = At(arguments, 1);
        json& object = MemberObject(tree, path);
        for (const json& name : interfaces) {
            if (name.is_string()) {
                object.erase(name.get<std::string>());
            }
        }
        if (object.empty()) {
            tree.erase(path);
        }
    }
    Answered();
}

void BusObjects::Watch(const std::string& path, const std::vector<std::string>& interfaces) {
    if (owner.empty() || watched.count(path) != 0) {
        return;
    }
    watched[path] = interfaces;
    MemberObject(tree, path);
    ReadObjects(path, interfaces);
}

void BusObjects::Forget(const std::string& path) {
    watched.erase(path);
    tree.erase(path);
}

void BusObjects::Check() {
    if (!isOwnerKnown && bus.IsConnected()) {
        AskForOwner();
        return;
    }
    if (owner.empty() || ping) {
        return;
    }
    ping = bus.Call(
        owner, "/", "org.freedesktop.DBus.Peer", "Ping", nullptr,
        [this](const json& /*arguments*/, const BusError& error) {
            const auto kept = std::move(ping);
            ping.reset();
            if (error.IsSilence()) {
                SetPresence(Presence::silent);
            } else if (presence == Presence::silent) {
                // Changes may have been missed.
                SetPresence(Presence::reading);
                ReadAll();
            }
        },
        daemon.limit);
}

}  // namespace binding
