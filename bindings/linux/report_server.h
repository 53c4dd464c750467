// Tells people what each source has told, over a socket.
#pragma once

#include <systemd/sd-event.h>

#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "bindings/linux/event.h"
#include "bindings/linux/source.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

/// The report on @p sources: name, state, since when (seconds since the epoch), why a source is
/// lost, and what each has told.
nlohmann::json ReportOn(const std::vector<std::unique_ptr<Source>>& sources);

/// Sends a report to each client that connects to a socket of the file system, and closes.
class ReportServer {
  public:
    using MakeReport = std::function<std::string()>;

    /// Listens at @p newPath, where only the own user can connect. Throws std::system_error.
    ReportServer(sd_event* newEvent, std::string newPath, MakeReport newMakeReport);
    ~ReportServer();
    ReportServer(const ReportServer&) = delete;
    ReportServer& operator=(const ReportServer&) = delete;

  private:
    struct Client;

    void AwaitClients();
    void Accept();
    void Send(const std::shared_ptr<Client>& client);
    void Drop(const std::shared_ptr<Client>& client);

    sd_event* event;
    std::string path;
    MakeReport makeReport;
    FileDescriptor listener;
    EventSource connections;
    std::vector<std::shared_ptr<Client>> clients;
};

}  // namespace binding
