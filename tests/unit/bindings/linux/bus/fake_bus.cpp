#include "tests/unit/bindings/linux/bus/fake_bus.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <stdexcept>

namespace {

constexpr const char* kBusName = "org.freedesktop.DBus";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr const char* kOwnName = ":1.1";

int NewSocket(const std::filesystem::path& path) {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.string().copy(address.sun_path, sizeof(address.sun_path) - 1);
    if (descriptor < 0 ||
        bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        throw std::runtime_error("no socket for the test");
    }
    return descriptor;
}

void Check(int result) {
    if (result < 0) {
        throw std::runtime_error("the bus of the test does not work");
    }
}

struct MessageDeleter {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

}  // namespace

int AppendProperties(sd_bus_message* message, const std::vector<FakeBus::Append>& properties) {
    int result = sd_bus_message_open_container(message, 'a', "{sv}");
    for (const auto& append : properties) {
        result = result < 0 ? result : append(message);
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

FakeBus::Answer Fails(const std::string& name, const std::string& text) {
    return [name, text](sd_bus_message* call) {
        return sd_bus_reply_method_errorf(call, name.c_str(), "%s", text.c_str());
    };
}

int StaysSilent(sd_bus_message* /*call*/) {
    return 0;
}

FakeBus::FakeBus(std::filesystem::path newPath)
    : path(std::move(newPath)), listener(NewSocket(path)) {}

FakeBus::~FakeBus() {
    std::filesystem::remove(path);
}

void FakeBus::Listen() {
    if (listen(listener.Number(), 8) != 0) {
        throw std::runtime_error("no socket for the test");
    }
}

void FakeBus::Accept() {
    const int descriptor =
        accept4(listener.Number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (descriptor < 0) {
        return;
    }
    sd_bus* bus = nullptr;
    Check(sd_bus_new(&bus));
    connection.reset(bus);
    Check(sd_bus_set_fd(bus, descriptor, descriptor));
    sd_id128_t id{};
    Check(sd_id128_randomize(&id));
    Check(sd_bus_set_server(bus, 1, id));
    Check(sd_bus_add_filter(bus, nullptr, OnMessage, this));
    Check(sd_bus_start(bus));
}

void FakeBus::Serve() {
    Accept();
    int result = 1;
    while (connection && result > 0) {
        result = sd_bus_process(connection.get(), nullptr);
    }
    if (result < 0) {
        connection.reset();
    }
}

int FakeBus::OnMessage(sd_bus_message* message, void* owner, sd_bus_error* /*error*/) {
    std::uint8_t type = 0;
    (void)sd_bus_message_get_type(message, &type);
    if (type != SD_BUS_MESSAGE_METHOD_CALL) {
        return 0;
    }
    const int result = static_cast<FakeBus*>(owner)->Reply(message);
    return result < 0 ? result : 1;
}

int FakeBus::Reply(sd_bus_message* call) {
    const std::string object = sd_bus_message_get_path(call);
    const std::string interface = sd_bus_message_get_interface(call);
    const std::string member = sd_bus_message_get_member(call);
    if (interface == kBusName) {
        if (member == "Hello") {
            return sd_bus_reply_method_return(call, "s", kOwnName);
        }
        if (member == "GetNameOwner") {
            const char* name = nullptr;
            (void)sd_bus_message_read(call, "s", &name);
            const auto found = owners.find(name);
            return found == owners.end()
                       ? sd_bus_reply_method_errorf(
                             call, "org.freedesktop.DBus.Error.NameHasNoOwner", "nobody")
                       : sd_bus_reply_method_return(call, "s", found->second.c_str());
        }
        return sd_bus_reply_method_return(call, "");
    }
    const std::string method = object + " " + interface + "." + member;
    calls.push_back(method);
    if (const auto found = methods.find(method); found != methods.end()) {
        return found->second(call);
    }
    const char* of = nullptr;
    if (interface == kProperties && member == "GetAll" && sd_bus_message_read(call, "s", &of) > 0) {
        if (const auto found = properties.find(object + " " + of); found != properties.end()) {
            sd_bus_message* reply = nullptr;
            Check(sd_bus_message_new_method_return(call, &reply));
            const std::unique_ptr<sd_bus_message, MessageDeleter> kept(reply);
            Check(AppendProperties(reply, found->second));
            return sd_bus_send(connection.get(), reply, nullptr);
        }
    }
    return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_METHOD, "no such method");
}

void FakeBus::Signal(const std::string& service, const std::string& object,
                     const std::string& interface, const std::string& member,
                     const Append& append) {
    sd_bus_message* signal = nullptr;
    Check(sd_bus_message_new_signal(connection.get(), &signal, object.c_str(), interface.c_str(),
                                    member.c_str()));
    const std::unique_ptr<sd_bus_message, MessageDeleter> kept(signal);
    Check(sd_bus_message_set_sender(signal,
                                    service == kBusName ? kBusName : owners.at(service).c_str()));
    Check(append(signal));
    Check(sd_bus_send(connection.get(), signal, nullptr));
}

void FakeBus::ChangeOwner(const std::string& service, const std::string& owner) {
    const std::string before = std::exchange(owners[service], owner);
    if (owner.empty()) {
        owners.erase(service);
    }
    Signal(kBusName, "/org/freedesktop/DBus", kBusName, "NameOwnerChanged",
           [&](sd_bus_message* message) {
               return sd_bus_message_append(message, "sss", service.c_str(), before.c_str(),
                                            owner.c_str());
           });
}

void FakeBus::ChangeProperties(const std::string& service, const std::string& object,
                               const std::string& interface, const std::vector<Append>& changes) {
    Signal(service, object, kProperties, "PropertiesChanged", [&](sd_bus_message* message) {
        const int begun = sd_bus_message_append(message, "s", interface.c_str());
        const int changed = begun < 0 ? begun : AppendProperties(message, changes);
        return changed < 0 ? changed : sd_bus_message_append(message, "as", 0);
    });
}
