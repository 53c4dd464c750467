#include "bindings/linux/bus/bus_objects.h"

#include <string_view>
#include <utility>

#include "bindings/linux/bus/message.h"
#include "bindings/linux/text.h"

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

}  // namespace

BusObjects::BusObjects(Bus& newBus, Daemon newDaemon, std::function<void()> newChanged)
    : bus(newBus),
      daemon(std::move(newDaemon)),
      changed(std::move(newChanged)),
      tree(bus.GetComplaints(), daemon.service, daemon.kinds) {
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
    untold.clear();
    watched.clear();
    tree.Clear();
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
    ReadAll();
}

void BusObjects::ReadAll() {
    hasTimedOut = false;
    refused.clear();
    untold.clear();
    calls.clear();
    SetPresence(Presence::reading);
    watched = daemon.objects;
    if (!daemon.manager.empty()) {
        ReadManaged();
    }
    for (const auto& [path, interfaces] : daemon.objects) {
        for (const std::string& interface : interfaces) {
            ReadObject(path, interface);
        }
    }
    if (calls.empty()) {
        Answered();
    }
}

void BusObjects::Reread() {
    if (!owner.empty()) {
        ReadAll();
    }
}

void BusObjects::ReadManaged() {
    Ask({daemon.manager, ""}, kObjectManager, "GetManagedObjects", nullptr,
        // What has been told by objects that are not managed stays.
        [this](const json& managed) { tree.Replace(managed); });
}

void BusObjects::ReadObject(const std::string& path, const std::string& interface) {
    Ask(
        {path, interface}, kProperties, "GetAll",
        [&interface](sd_bus_message* message) {
            return sd_bus_message_append(message, "s", interface.c_str());
        },
        [this, path, interface](const json& properties) {
            if (IsWatched(path)) {
                tree.Put(path, interface, properties);
            }
        });
}

void BusObjects::Ask(const Question& question, const std::string& interface,
                     const std::string& member, const Bus::Append& append,
                     const std::function<void(const json&)>& onResult) {
    const std::uint64_t number = nextCall++;
    calls[number] = bus.Call(
        owner, question.path, interface, member, append,
        [this, number, question, onResult](const json& arguments, const BusError& error) {
            const auto kept = calls.extract(number);
            if (error.isDisconnected) {
                // OnConnection follows.
                return;
            }
            if (error.IsSilence()) {
                TimedOut();
                return;
            }
            const json& result = At(arguments, 0);
            if (error) {
                NotTold(question, error);
            } else if (!result.is_object()) {
                NotTold(question, {"the answer is no dictionary"});
            } else {
                Told(question);
                onResult(result);
            }
            Answered();
        },
        daemon.limit);
}

void BusObjects::Told(const Question& question) {
    untold.erase(question);
    refused.erase(question);
    bus.GetComplaints().Settle(Subject(question), question.path, Tree());
}

void BusObjects::NotTold(const Question& question, const BusError& error) {
    if (!IsEssential(question) && !IsWatched(question.path)) {
        // Nobody wants to know any more.
        return;
    }
    untold.insert(question);
    // An object may have gone meanwhile, or come later.
    if (error.IsAbsence()) {
        return;
    }
    if (IsEssential(question)) {
        refused.insert(question);
    }
    constexpr std::size_t kMostBytes = 256;
    const std::string what =
        question.interface.empty() ? "GetManagedObjects" : "GetAll of " + question.interface;
    bus.GetComplaints().Raise(Subject(question), question.path,
                              daemon.service + ": " + Printable(question.path, kMostBytes) + ": " +
                                  what + ": " + error.Text());
}

std::string BusObjects::Subject(const Question& question) const {
    return daemon.service + " " + question.interface;
}

bool BusObjects::IsEssential(const Question& question) const {
    return question.path == daemon.manager || daemon.objects.count(question.path) != 0;
}

void BusObjects::Answered() {
    if (presence == Presence::silent && hasTimedOut) {
        // What was asked for meanwhile is missing, and changes may be.
        ReadAll();
        return;
    }
    // The tree is shown when it is whole.
    if (presence == Presence::reading && !calls.empty()) {
        return;
    }
    SetPresence(refused.empty() ? Presence::present : Presence::silent);
}

void BusObjects::TimedOut() {
    hasTimedOut = true;
    calls.clear();
    SetPresence(Presence::silent);
}

std::string BusObjects::Problem() const {
    return hasTimedOut ? "does not answer" : "does not tell what it is asked for";
}

void BusObjects::SetPresence(Presence newPresence) {
    presence = newPresence;
    changed();
}

void BusObjects::OnProperties(sd_bus_message* message) {
    const char* const sender = sd_bus_message_get_path(message);
    const std::string path = sender == nullptr ? "" : sender;
    // Objects that nobody has asked about are not kept.
    if (!Tree().contains(path)) {
        return;
    }
    const json arguments = Arguments(message);
    const std::string interface = TextAt(arguments, 0);
    tree.Put(path, interface, At(arguments, 1));
    tree.Invalidate(path, interface, At(arguments, 2));
    Answered();
}

void BusObjects::OnInterfaces(sd_bus_message* message, bool added) {
    const json arguments = Arguments(message);
    const std::string path = TextAt(arguments, 0);
    if (daemon.manager.empty() && !IsWatched(path)) {
        return;
    }
    if (added) {
        tree.Add(path, At(arguments, 1));
        for (const auto& [interface, properties] : At(arguments, 1).items()) {
            Told({path, interface});
        }
    } else {
        tree.Remove(path, At(arguments, 1));
    }
    Answered();
}

void BusObjects::Watch(const std::string& path, const std::vector<std::string>& interfaces) {
    if (owner.empty() || watched.count(path) != 0) {
        return;
    }
    watched[path] = interfaces;
    tree.Expect(path);
    for (const std::string& interface : interfaces) {
        ReadObject(path, interface);
    }
}

void BusObjects::Forget(const std::string& path) {
    watched.erase(path);
    tree.Forget(path);
    std::erase_if(untold, [&path](const Question& question) { return question.path == path; });
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
            if (error.isDisconnected) {
                // OnConnection follows.
            } else if (error.IsSilence()) {
                TimedOut();
            } else if (presence == Presence::silent) {
                ReadAll();
            } else {
                ReadUntold();
            }
        },
        daemon.limit);
}

void BusObjects::ReadUntold() {
    const std::set<Question> questions = untold;
    for (const auto& [path, interface] : questions) {
        if (interface.empty()) {
            ReadManaged();
        } else {
            ReadObject(path, interface);
        }
    }
}

}  // namespace binding
