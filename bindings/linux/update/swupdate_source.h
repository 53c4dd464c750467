// Software updates by SWUpdate.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "bindings/linux/event.h"
#include "bindings/linux/kernel/path_watch.h"
#include "bindings/linux/source.h"
#include "bindings/linux/update/swupdate_progress.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

class SwupdateSource : public Source {
  public:
    explicit SwupdateSource(Board& newBoard) : Source(newBoard, "swupdate") {}

    void Start() override;
    void Check() override;
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    void OnSocket();
    void Connect();
    void TryAgainLater();
    void Receive();
    void Disconnect(const std::string& why);

    std::optional<PathWatch> watch;
    std::optional<FileDescriptor> socket;
    SwupdateProgress progress;
    /// Whether it has been logged that something is wrong with the messages of this connection.
    bool complained = false;
    EventSource incoming;
    EventSource connecting;
    /// Microseconds to the next attempt.
    std::uint64_t retryAfter = 0;
};

}  // namespace binding
