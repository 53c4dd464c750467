// A system bus whose daemons are the test.
#pragma once

#include <systemd/sd-bus.h>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "bindings/posix/files/file_io.h"

/// It takes one connection at a time. Everything happens in Serve.
class FakeBus {
  public:
    using Append = std::function<int(sd_bus_message* message)>;
    /// Answers a call: sends a reply or an error, or nothing. Returns a negative errno on failure.
    using Answer = std::function<int(sd_bus_message* call)>;

    /// Makes the socket, at which nobody listens until Listen is called.
    explicit FakeBus(std::filesystem::path newPath);
    ~FakeBus();
    FakeBus(const FakeBus&) = delete;
    FakeBus& operator=(const FakeBus&) = delete;

    void Listen();

    /// Takes a connection if one has come, and answers the calls that have come.
    void Serve();
    bool IsConnected() const { return connection != nullptr; }

    /// Sends a signal of the daemon @p service.
    void Signal(const std::string& service, const std::string& path, const std::string& interface,
                const std::string& member, const Append& append);
    /// The same for a daemon that has come (@p owner is its name on the bus) or gone (empty).
    void ChangeOwner(const std::string& service, const std::string& owner);
    /// Tells a change of the properties @p changes of a daemon.
    void ChangeProperties(const std::string& service, const std::string& path,
                          const std::string& interface, const std::vector<Append>& changes);

    /// What a method answers, by "PATH INTERFACE.MEMBER". A method that is not listed does not
    /// exist.
    std::map<std::string, Answer> methods;
    /// The properties of objects, by "PATH INTERFACE".
    std::map<std::string, std::vector<Append>> properties;
    /// Names on the bus, and the unique names of who has them.
    std::map<std::string, std::string> owners;
    /// Calls that have come, as "PATH INTERFACE.MEMBER".
    std::vector<std::string> calls;

  private:
    struct Closing {
        void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
    };

    static int OnMessage(sd_bus_message* message, void* owner, sd_bus_error* error);
    int Reply(sd_bus_message* call);
    void Accept();

    std::filesystem::path path;
    binding::FileDescriptor listener;
    std::unique_ptr<sd_bus, Closing> connection;
};

/// A property for FakeBus, whose @p values are those of its D-Bus @p type.
template <typename... Values>
FakeBus::Append Property(const std::string& name, const std::string& type, Values... values) {
    return [=](sd_bus_message* message) {
        return sd_bus_message_append(message, "{sv}", name.c_str(), type.c_str(), values...);
    };
}

/// Appends the dictionary of @p properties.
int AppendProperties(sd_bus_message* message, const std::vector<FakeBus::Append>& properties);

/// An answer that is the error @p name.
FakeBus::Answer Fails(const std::string& name, const std::string& text);

/// No answer at all.
int StaysSilent(sd_bus_message* call);
