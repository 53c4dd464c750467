// Daemons whose sockets the test serves itself.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "bindings/linux/text.h"
#include "bindings/posix/files/file_io.h"

/// A hostapd of one network.
class FakeHostapd {
  public:
    /// Makes its control socket, and the folders on the way to it.
    explicit FakeHostapd(std::filesystem::path newPath);
    ~FakeHostapd();
    FakeHostapd(const FakeHostapd&) = delete;
    FakeHostapd& operator=(const FakeHostapd&) = delete;

    /// Answers the commands that have come.
    void Serve();

    /// Sends an event to who has asked for events.
    void Say(const std::string& event);

    std::string state = "ENABLED";
    std::set<binding::MacAddress> stations;
    bool silent = false;
    /// How often it refuses to go on with the list of stations.
    int refusals = 0;
    /// Whether the list of stations goes on for ever.
    bool endless = false;
    /// What it answers to STATUS, in place of a status.
    std::string nonsense;
    int statuses = 0;  ///< how often it was asked for its status
    /// Is told of each command before it is answered.
    std::function<void(std::string_view command)> asked;
    /// What it answers to ATTACH.
    std::string attached = "OK\n";

  private:
    std::string ReplyTo(std::string_view command);
    std::string NextStation(binding::MacAddress after);

    std::filesystem::path path;
    binding::FileDescriptor socket;
    sockaddr_un peer{};
    socklen_t peerSize = 0;
};

/// Something that listens and takes one connection at a time.
class FakeServer {
  public:
    /// Listens at a port of this machine, any free one.
    FakeServer();
    /// Listens at a socket of the file system; makes the folders on the way to it.
    explicit FakeServer(const std::filesystem::path& path);

    /// A socket at which nobody listens until Listen is called.
    enum class Start { later };
    FakeServer(const std::filesystem::path& path, Start start);
    void Listen();

    ~FakeServer();
    FakeServer(const FakeServer&) = delete;
    FakeServer& operator=(const FakeServer&) = delete;

    int Port() const { return port; }

    /// Takes a new connection if one has come, and sends the greeting; reads what has come.
    void Serve();
    void Say(std::string_view bytes);
    /// Ends the connection.
    void Drop() { connection.reset(); }

    /// What is sent at the begin of a connection.
    std::string greeting;
    /// What has come.
    std::string heard;
    int connections = 0;

  private:
    binding::FileDescriptor listener;
    std::filesystem::path file;
    int port = 0;
    std::optional<binding::FileDescriptor> connection;
};
