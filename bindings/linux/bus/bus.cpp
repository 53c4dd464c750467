#include "bindings/linux/bus/bus.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "bindings/linux/bus/message.h"
#include "bindings/linux/log.h"

namespace binding {

namespace {

constexpr const char* kDefaultAddress = "unix:path=/run/dbus/system_bus_socket";
constexpr std::uint64_t kReopenAfter = 1'000'000;
/// For a bus that has refused a connection, which is not a passing trouble.
constexpr std::uint64_t kRetryAfter = 60'000'000;

std::string Address() {
    const char* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return address == nullptr || *address == '\0' ? kDefaultAddress : address;
}

/// Whether there is a socket at @p address, as far as the address tells.
bool CanConnect(const std::string& address) {
    const std::string prefix = "unix:path=";
    if (address.compare(0, prefix.size(), prefix) != 0) {
        return true;
    }
    const std::string path =
        address.substr(prefix.size(), address.find_first_of(",;") - prefix.size());
    return access(path.c_str(), F_OK) == 0;
}

void Require(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), what);
    }
}

}  // namespace

class Bus::Pending {
  public:
    explicit Pending(OnReply newOnReply) : onReply(std::move(newOnReply)) {}

    OnReply onReply;
    BusSlot slot;
    EventSource failing;
};

struct Bus::Callbacks {
    static int OnLocal(sd_bus_message* message, void* owner, sd_bus_error* /*error*/) {
        try {
            static_cast<Bus*>(owner)->OnLocal(message);
        } catch (const std::exception& problem) {
            LINUX_LOG(TORU_DBG_ERROR, "system bus: %s", problem.what());
        }
        return 0;
    }

    static int OnReplyMessage(sd_bus_message* message, void* owner, sd_bus_error* /*error*/) {
        // The callback may drop the call, so it runs on a copy.
        const auto onReply = static_cast<Pending*>(owner)->onReply;
        try {
            const sd_bus_error* const error = sd_bus_message_get_error(message);
            if (error != nullptr) {
                // When the connection is lost, sd-bus ends all calls as if nobody had answered.
                const bool isLost = sd_bus_is_open(sd_bus_message_get_bus(message)) <= 0;
                const char* const text = error->message;
                onReply(nlohmann::json::array(), {isLost ? kDisconnected : error->name,
                                                  text == nullptr ? "" : text, isLost});
            } else {
                onReply(Arguments(message), {});
            }
        } catch (const std::exception& problem) {
            LINUX_LOG(TORU_DBG_ERROR, "reply: %s", problem.what());
        }
        return 0;
    }
};

Bus::Bus(sd_event* newEvent, std::uint64_t newLimit) : event(newEvent), limit(newLimit) {
    Open();
}

Bus::~Bus() = default;

void Bus::Open() {
    try {
        sd_bus* opened = nullptr;
        Require(sd_bus_new(&opened), "sd_bus_new");
        bus.reset(opened);
        answerLimit.After(event, limit, limit / 4, [this] { OnNoAnswer(); });
        Require(sd_bus_set_address(opened, Address().c_str()), "address");
        Require(sd_bus_set_bus_client(opened, 1), "bus client");
        Require(sd_bus_set_watch_bind(opened, 1), "watch for the socket");
        Require(sd_bus_set_connected_signal(opened, 1), "connected signal");
        Require(sd_bus_set_exit_on_disconnect(opened, 0), "exit on disconnect");
        Require(sd_bus_add_filter(opened, nullptr, Callbacks::OnLocal, this), "filter");
        Require(sd_bus_start(opened), "connection");
        Require(sd_bus_attach_event(opened, event, SD_EVENT_PRIORITY_NORMAL), "event loop");
    } catch (const std::system_error& error) {
        bus.reset();
        answerLimit.Reset();
        Complain(error.what());
        TellListenersSoon();
        reopening.After(event, kRetryAfter, kRetryAfter / 4, [this] { Open(); });
    }
}

void Bus::OnLocal(sd_bus_message* message) {
    constexpr const char* kLocal = "org.freedesktop.DBus.Local";
    if (sd_bus_message_is_signal(message, kLocal, "Connected") > 0) {
        SetConnected(true);
    } else if (sd_bus_message_is_signal(message, kLocal, "Disconnected") > 0) {
        // The connection is made anew, but not from within its own callback. This comes first, so
        // that it happens whatever the listeners do.
        const std::uint64_t wait = connected ? kReopenAfter : kRetryAfter;
        reopening.After(event, wait, wait / 4, [this] { Open(); });
        SetConnected(false);
    }
}

void Bus::SetConnected(bool newConnected) {
    answerLimit.Reset();
    if (newConnected) {
        hasComplained = false;
        wasUnanswered = false;
    } else {
        Complain(connected ? "connection lost" : "connection refused");
    }
    connected = newConnected;
    TellListeners();
}

void Bus::Complain(const std::string& what) {
    if (!std::exchange(hasComplained, true)) {
        LINUX_LOG(TORU_DBG_ERROR, "system bus: %s", what.c_str());
    }
}

void Bus::OnNoAnswer() {
    // While there is no socket, the listeners know, and the kernel tells when there is one.
    if (!connected && CanConnect(Address())) {
        Complain("does not answer");
        TellListeners();
    }
}

void Bus::Check() {
    if (connected || reopening.IsArmed() || !CanConnect(Address())) {
        wasUnanswered = false;
    } else if (std::exchange(wasUnanswered, true)) {
        Open();
    }
}

void Bus::TellListeners() {
    const auto told = listeners;
    for (const auto& listener : told) {
        const auto changed = listener.lock();
        try {
            if (changed) {
                (*changed)(connected);
            }
        } catch (const std::exception& error) {
            LINUX_LOG(TORU_DBG_ERROR, "system bus: %s", error.what());
        }
    }
    std::erase_if(listeners, [](const auto& listener) { return listener.expired(); });
}

std::shared_ptr<void> Bus::OnConnection(std::function<void(bool)> changed) {
    const auto listener = std::make_shared<std::function<void(bool)>>(std::move(changed));
    listeners.push_back(listener);
    if (connected) {
        (*listener)(true);
    } else if (!CanConnect(Address())) {
        // Nobody is to wait for a bus that is not there.
        TellListenersSoon();
    }
    return listener;
}

void Bus::TellListenersSoon() {
    absence.Defer(event, [this] {
        if (!connected) {
            TellListeners();
        }
    });
}

Bus::PendingCall Bus::Call(const std::string& destination, const std::string& path,
                           const std::string& interface, const std::string& member,
                           const Append& append, OnReply onReply, std::uint64_t timeout) {
    auto call = std::make_shared<Pending>(std::move(onReply));
    sd_bus_message* message = nullptr;
    int result = -ENOTCONN;
    if (connected) {
        result = sd_bus_message_new_method_call(bus.get(), &message, destination.c_str(),
                                                path.c_str(), interface.c_str(), member.c_str());
    }
    if (result >= 0 && append) {
        result = append(message);
    }
    if (result >= 0) {
        sd_bus_slot* slot = nullptr;
        result = sd_bus_call_async(bus.get(), &slot, message, Callbacks::OnReplyMessage, call.get(),
                                   timeout);
        call->slot.reset(slot);
    }
    sd_bus_message_unref(message);
    if (result < 0) {
        const BusError error = result == -ENOTCONN
                                   ? BusError{.name = kDisconnected, .isDisconnected = true}
                                   : BusError{"System.Error", std::strerror(-result)};
        call->failing.Defer(event, [pending = call.get(), error] {
            const OnReply reply = pending->onReply;
            reply(nlohmann::json::array(), error);
        });
    }
    return call;
}

void BusMatch::Begin(Bus& bus, const std::string& rule, Bus::OnSignal newOnSignal) {
    End();
    onSignal = std::move(newOnSignal);
    sd_bus_slot* added = nullptr;
    const int result = bus.AddMatch(&added, rule, OnMessage, this);
    slot.reset(added);
    if (result < 0) {
        LINUX_LOG(TORU_DBG_ERROR, "system bus: %s: %s", rule.c_str(), std::strerror(-result));
    }
}

int BusMatch::OnMessage(sd_bus_message* message, void* owner, sd_bus_error* /*error*/) {
    // The callback may end the match, so it runs on a copy.
    const Bus::OnSignal onSignal = static_cast<BusMatch*>(owner)->onSignal;
    try {
        onSignal(message);
    } catch (const std::exception& problem) {
        LINUX_LOG(TORU_DBG_ERROR, "signal: %s", problem.what());
    }
    return 0;
}

int Bus::AddMatch(sd_bus_slot** slot, const std::string& rule, sd_bus_message_handler_t onMessage,
                  void* owner) {
    return connected
               ? sd_bus_add_match_async(bus.get(), slot, rule.c_str(), onMessage, nullptr, owner)
               : -ENOTCONN;
}

}  // namespace binding
