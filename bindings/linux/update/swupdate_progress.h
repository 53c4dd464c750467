// The messages of SWUpdate's progress socket.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "bindings/linux/update/update_state.h"

namespace binding {

/// Collects the bytes that SWUpdate sends until a message is whole.
class SwupdateProgress {
  public:
    /// Takes bytes over. Returns whether the state has changed.
    bool Read(std::span<const std::byte> bytes);

    /// Forgets the begun message, because the connection is a new one, and what was under way: an
    /// SWUpdate that has been killed does not go on with it, and one that still runs tells of it
    /// with its next message. A result stays: SWUpdate ends after an update, too.
    void Restart();

    /// What was wrong with the messages read last; empty when nothing was.
    const std::string& Problem() const { return problem; }

    const UpdateState& State() const { return state; }

  private:
    void TakeMessages();
    /// Returns whether the message is one that is known.
    bool Take(std::span<const std::byte> message);

    std::vector<std::byte> begun;
    bool greeted = false;
    std::string problem;
    UpdateState state;
};

}  // namespace binding
