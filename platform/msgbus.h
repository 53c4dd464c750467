// Common web library: the message bus.
#pragma once

#include <memory>
#include <string>

/// Result codes of MsgbusHandler that callers distinguish; every other one is an error.
enum msgbus_result_e : int {
    MSGBUS_SUCCESS = 0,
    /// The buffer is missing or too small; the size has been set to the one that is needed.
    MSGBUS_BUFFER_NEEDED = 4,
};

/// What a MsgbusHandler calls when a channel changes.
class MsgbusCallbackInterface;

/// A client of the message bus, on whose channels the services of the device publish their state.
class MsgbusHandler {
  public:
    /// @p callback is null for a client that only reads.
    explicit MsgbusHandler(MsgbusCallbackInterface* callback);
    ~MsgbusHandler();
    MsgbusHandler(const MsgbusHandler&) = delete;
    MsgbusHandler& operator=(const MsgbusHandler&) = delete;

    /// Joins the bus. Returns MSGBUS_SUCCESS on success.
    int Initialize();

    /// Copies what was last published on @p channel to @p buffer, which has room for @p size bytes,
    /// sets @p size to the number of bytes copied and returns MSGBUS_SUCCESS. If the buffer is null
    /// or too small, sets @p size to the size that is needed and returns MSGBUS_BUFFER_NEEDED. On
    /// any other failure, writes nothing and returns another code. It fails for a client that has
    /// not joined or has left, and on a channel on which nothing has been published.
    int GetData(const std::string& channel, void* buffer, unsigned int& size);

    /// Leaves the bus. Returns MSGBUS_SUCCESS on success. Callers also leave when they could not
    /// join.
    int Uninitialize();

  private:
    struct State;
    std::unique_ptr<State> state;
};
