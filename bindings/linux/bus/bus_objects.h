// What a daemon on the bus tells: a copy of its objects that follows their changes.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "bindings/linux/bus/bus.h"
#include "bindings/linux/bus/bus_tree.h"

namespace binding {

class BusObjects {
  public:
    enum class Presence {
        unknown,  ///< not known yet
        absent,   ///< nobody has the name of the daemon
        reading,  ///< the daemon is there, and its objects are being read
        present,
        silent,  ///< the daemon is there and does not answer, or does not tell what it is asked for
    };

    struct Daemon {
        std::string service;  ///< its name on the bus
        /// Object with the interface org.freedesktop.DBus.ObjectManager; empty without one.
        std::string manager;
        /// Objects that are read besides: path to interfaces.
        std::map<std::string, std::vector<std::string>> objects;
        /// What its properties must be to be understood.
        ExpectedKinds kinds;
        /// Microseconds after which a daemon that does not answer is silent.
        std::uint64_t limit = 10'000'000;
    };

    /// Calls @p newChanged after each change of the presence or the tree. It never blocks.
    BusObjects(Bus& newBus, Daemon newDaemon, std::function<void()> newChanged);
    ~BusObjects() = default;
    BusObjects(const BusObjects&) = delete;
    BusObjects& operator=(const BusObjects&) = delete;

    Presence GetPresence() const { return presence; }

    /// What a daemon that is silent does.
    std::string Problem() const;

    /// The objects: path, interface, property. It is empty unless the daemon is present or silent;
    /// then it is what the daemon has told before.
    const nlohmann::json& Tree() const { return tree.Objects(); }

    /// Also reads the @p interfaces of the object @p path and follows them, until the object
    /// disappears or the daemon does.
    void Watch(const std::string& path, const std::vector<std::string>& interfaces);
    void Forget(const std::string& path);
    bool IsWatched(const std::string& path) const { return watched.count(path) != 0; }

    /// Asks a daemon that is present or silent for a sign of life, and again for what it has not
    /// told.
    void Check();

    /// Reads everything again, because changes may not have been told.
    void Reread();

    const std::string& Service() const { return daemon.service; }
    /// The name on the bus of the process that is the daemon; empty without one.
    const std::string& Owner() const { return owner; }
    Bus& GetBus() { return bus; }

  private:
    /// What is read: properties of an interface of an object; or, without an interface, all that is
    /// managed.
    struct Question {
        std::string path;
        std::string interface;

        bool operator<(const Question& other) const {
            return std::tie(path, interface) < std::tie(other.path, other.interface);
        }
    };

    void OnConnection(bool connected);
    void AskForOwner();
    void OnOwner(const std::string& newOwner);
    void OnProperties(sd_bus_message* message);
    void OnInterfaces(sd_bus_message* message, bool added);
    void ReadAll();
    void ReadManaged();
    void ReadObject(const std::string& path, const std::string& interface);
    void Ask(const Question& question, const std::string& interface, const std::string& member,
             const Bus::Append& append,
             const std::function<void(const nlohmann::json& result)>& onResult);
    std::string Subject(const Question& question) const;
    /// Whether the daemon tells nothing without the answer.
    bool IsEssential(const Question& question) const;
    void Told(const Question& question);
    void NotTold(const Question& question, const BusError& error);
    void ReadUntold();
    void Answered();
    void TimedOut();
    void SetPresence(Presence newPresence);

    Bus& bus;
    Daemon daemon;
    std::function<void()> changed;
    Presence presence = Presence::unknown;
    /// Why the daemon is silent: a call has not been answered, or something essential is refused.
    bool hasTimedOut = false;
    std::set<Question> refused;
    BusTree tree;
    std::map<std::string, std::vector<std::string>> watched;
    std::string owner;
    bool isOwnerKnown = true;

    std::shared_ptr<void> connection;
    BusMatch ownerChanges;
    BusMatch propertyChanges;
    BusMatch additions;
    BusMatch removals;
    /// What the daemon has refused to tell, or has not got yet.
    std::set<Question> untold;
    std::map<std::uint64_t, Bus::PendingCall> calls;
    std::uint64_t nextCall = 0;
    Bus::PendingCall ping;
};

}  // namespace binding
