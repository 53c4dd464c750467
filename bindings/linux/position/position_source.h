// Positioning: gpsd.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "bindings/linux/event.h"
#include "bindings/linux/position/gpsd_report.h"
#include "bindings/linux/source.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

class PositionSource : public Source {
  public:
    explicit PositionSource(Board& newBoard) : Source(newBoard, "position") {}

    void Start() override;
    void Check() override;
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    void Connect();
    void OnConnected();
    void Receive();
    void Send(const char* request);
    void ExpectAnswer();
    void NoteFlaws();
    void Disconnect(const std::string& why);

    std::optional<FileDescriptor> socket;
    bool connected = false;
    /// The line that has begun.
    std::string line;
    GpsReceivers receivers;
    /// What has been logged of this connection.
    GpsFlaws complained;
    EventSource traffic;
    EventSource limit;
    EventSource retry;
    /// Microseconds to the next attempt; 0 while gpsd answers.
    std::uint64_t retryAfter = 0;
};

}  // namespace binding
