#include "bindings/linux/modem/modem_source.h"

#include <map>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/modem/modem_manager.h"
#include "bindings/linux/modem/tables/modem_numbers.h"
#include "bindings/linux/modem/tree_lists.h"

namespace binding {

namespace {

using nlohmann::json;

constexpr std::uint64_t kSecond = 1'000'000;

/// More objects than any modem has; each costs a call.
constexpr std::size_t kMostObjects = 600;

/// For how long a new modem waits for its SIM, bearers and messages before it is shown.
constexpr std::uint64_t kPatience = kSecond / 2;

template <typename Value>
json Told(const std::optional<Value>& value) {
    return value ? json(*value) : json();
}

/// The first digits of an IMSI, which name the network. The others name a person.
json WithoutSubscriber(const std::optional<std::string>& imsi) {
    constexpr std::size_t kNetworkDigits = 5;
    return imsi ? json(imsi->substr(0, kNetworkDigits) + "...") : json();
}

}  // namespace

ModemSource::ModemSource(Board& board, MessagesSource& newMessages)
    : Source(board, "modem"),
      messages(newMessages),
      memory(board.Event(),
             [this] {
                 connection.OnMemory();
                 RefreshSoon();
             }),
      cellQuery(board.SystemBus(), [this] { RefreshSoon(); }),
      connection(board, memory, [this] { RefreshSoon(); }),
      traffic(board),
      objects(board.SystemBus(),
              {.service = kModemManager,
               .manager = kModemManagerPath,
               .objects = {},
               .kinds = ModemManagerKinds(),
               .limit = board.GetSettings().silenceSeconds * kSecond},
              [this] { RefreshSoon(); }) {}

void ModemSource::Start() {
    GetBoard().SetDataCall(&connection);
}

void ModemSource::Check() {
    objects.Check();
    connection.Check();
    cellQuery.Check();
}

void ModemSource::RefreshSoon() {
    // Many changes of one turn of the loop are read once.
    if (!refresh.IsArmed()) {
        refresh.Defer(GetBoard().Event(), [this] { Refresh(); });
    }
}

void ModemSource::Refresh() {
    switch (objects.GetPresence()) {
        case BusObjects::Presence::unknown:
        case BusObjects::Presence::reading:
            // What has been told before stands.
            return;
        case BusObjects::Presence::absent:
            Gone("ModemManager is not on the bus");
            return;
        case BusObjects::Presence::silent:
            connection.Update(nullptr);
            messages.None();
            Lost("ModemManager " + objects.Problem());
            return;
        case BusObjects::Presence::present:
            RefreshModem();
            return;
    }
}

void ModemSource::Gone(const std::string& why) {
    cellQuery.Update(nullptr, "");
    connection.Update(nullptr);
    traffic.End();
    messages.None();
    modem.reset();
    if (GetState() == State::present || GetState() == State::lost) {
        Lost(why);
    } else {
        Absent();
    }
}

void ModemSource::RefreshModem() {
    const std::string path = ModemPath(objects.Tree());
    if (path.empty()) {
        Gone("there is no modem");
        return;
    }
    const json& object = Member(objects.Tree(), path);
    // A copy, because following other objects changes the tree.
    const json messaging = Member(object, kMessagingInterface);
    const std::vector<std::string> sms = MessagePaths(messaging);
    FollowObjects(Member(object, kModemInterface), sms);
    cellQuery.Update(objects.Tree(), path);
    if (!IsWhole(path)) {
        return;
    }
    modem = ReadModem(objects.Tree(), path, cellQuery.Cells());
    if (connection.Manager().IsWwanEnabled() == false) {
        modem->radioEnabled = 0;
    }
    connection.Update(&*modem);
    modem->dataConnectionStatus = connection.Status();
    const bool hasSeveralSlots = modem->slots.size() > 1;
    // A modem that has failed, or does not work yet, may not tell all its slots.
    const bool isWorking = modem->state.value_or(kModemStateUnknown) >= kModemLocked;
    if (GetBoard().IsService() && (hasSeveralSlots || isWorking)) {
        memory.SetSeveralSlots(hasSeveralSlots);
    }
    traffic.Update(*modem, connection.Manager().Interface());
    UpdateMessages(messaging, sms);
    Present();
}

bool ModemSource::IsWhole(const std::string& path) {
    const bool isShown = modem && modem->path == path;
    if (isShown || path == incomplete ||
        (followed.AreRead(objects.Tree()) && !connection.Manager().IsReading())) {
        return true;
    }
    if (!patience.IsArmed()) {
        patience.After(GetBoard().Event(), kPatience, kPatience / 10, [this, path] {
            incomplete = path;
            Refresh();
        });
    }
    return false;
}

void ModemSource::UpdateMessages(const json& messaging, const std::vector<std::string>& sms) {
    if (messaging.is_object()) {
        messages.Update(objects.Tree(), sms);
    } else {
        messages.None();
    }
}

void ModemSource::FollowObjects(const json& properties, const std::vector<std::string>& sms) {
    std::map<std::string, std::string> wanted;
    const auto want = [&](const std::string& path, const char* interface) {
        // What ModemManager manages is read without being asked for.
        const bool isManaged = Member(Member(objects.Tree(), path), kModemInterface).is_object();
        if (!path.empty() && path != kNoObject && !isManaged && wanted.size() < kMostObjects) {
            wanted[path] = interface;
        }
    };
    want(Text(properties, "Sim").value_or(""), kSimInterface);
    for (const std::string& slot : Texts(properties, "SimSlots")) {
        want(slot, kSimInterface);
    }
    for (const std::string& bearer : Texts(properties, "Bearers")) {
        want(bearer, kBearerInterface);
    }
    for (const std::string& message : sms) {
        want(message, kSmsInterface);
    }
    followed.Follow(objects, wanted);
}

void ModemSource::Recall(Device& device) const {
    Tell(device.getMultiSimEnabled, memory.HasSeveralSlots() ? 1 : 0);
}

void ModemSource::Fill(Device& device) const {
    if (!modem) {
        return;
    }
    Modem shown = *modem;
    // An action may have begun since the modem was read.
    shown.dataConnectionStatus = connection.Status();
    FillModem(shown, device);
    Tell(device.getCellularDataEnabled, connection.IsEnabled() ? 1 : 0);
    device.getModemMnsInfo.value.selected = connection.Manager().IsNetworkChosen() ? 1 : 0;
}

void ModemSource::Fail(Device& device, int code) const {
    FailModem(device, code);
    FailAll(code, device.getCellularDataEnabled, device.getModemMnsInfo, device.getSMSUnreadCount);
}

json ModemSource::Said() const {
    if (!modem) {
        return json::object();
    }
    return {{"path", modem->path},
            {"state", Told(modem->state)},
            {"service", Told(modem->serviceStatus)},
            {"network", Told(modem->networkName)},
            {"technology", Told(modem->technology)},
            {"bars", Told(modem->signalBars)},
            {"sim", Told(modem->simStatus)},
            {"subscriber", WithoutSubscriber(modem->imsi)},
            {"slots", modem->slots.size()},
            {"connection", Told(modem->dataConnectionStatus)},
            {"interface", Told(modem->interface)},
            {"cells", cellQuery.Cells().is_array()},
            {"networkManager", connection.Manager().HasProfile()}};
}

}  // namespace binding
